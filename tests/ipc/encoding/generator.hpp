// SPDX-License-Identifier: MIT
// Values and bytes made at random, each from one seed, so that a case that failed can be made again.
#pragma once

#include "support/bytes.hpp"

#include <vellum/values.hpp>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace vellum::test {

// The first case's seed, and each further one's is one more: VELLUM_TEST_SEED of the environment, or
// else always the same.
inline uint64_t FirstSeed() {
    const char *seed = std::getenv("VELLUM_TEST_SEED");
    return seed ? std::strtoull(seed, nullptr, 0) : 1;
}

// The distributions of the standard library differ from one library to the next: these do not.
class Random {
public:
    explicit Random(uint64_t seed) : engine_(seed) {}

    uint64_t Bits() { return engine_(); }
    uint32_t Word() { return static_cast<uint32_t>(Bits()); }
    uint8_t Byte() { return static_cast<uint8_t>(Bits()); }

    // From 0 to one less than `end`, which is not 0.
    size_t Below(size_t end) { return Bits() % end; }
    size_t Between(size_t first, size_t last) { return first + Below(last - first + 1); }
    bool OneIn(size_t cases) { return Below(cases) == 0; }

    template <class T, size_t kCount>
    const T &Pick(const T (&table)[kCount]) {
        return table[Below(kCount)];
    }

    std::string String(size_t length) {
        std::string bytes(length, '\0');
        for (char &byte : bytes) byte = static_cast<char>(Byte());
        return bytes;
    }

private:
    std::mt19937_64 engine_;
};

// A value of any of the ten kinds: small for the most part, nested up to 6 deep; at times a chain of
// containers, one in the other, or a large value. A chain may be longer than what can be written.
Ref<const void> RandomValue(Random &random);

// Such a value without strings in it.
Ref<const void> RandomValueWithoutStrings(Random &random);

// The bytes of one or two values, changed in one to three places.
Bytes MutatedBytes(Random &random);

// Items nested in each other, of which every one may be odd in a way that a reader must tolerate, and a
// few in ways that refuse the reading.
Bytes OddBytes(Random &random);

// Valid tags, and noise behind each.
Bytes NoisyBytes(Random &random);

} // namespace vellum::test
