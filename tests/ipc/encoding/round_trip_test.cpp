// SPDX-License-Identifier: MIT
// Writer and reader against models of values, and against a second reader, on values and bytes made at
// random. Failures print a seed; VELLUM_TEST_SEED begins with another one than usual.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/flattened_size.hpp"
#include "ipc/encoding/generator.hpp"
#include "ipc/encoding/losses.hpp"
#include "ipc/encoding/model_of_value.hpp"
#include "ipc/encoding/reference_decoder.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "support/captured_log.hpp"

#include <gtest/gtest.h>

#include <deque>
#include <exception>
#include <ostream>
#include <utility>
#include <vector>

namespace vellum::test {
namespace {

constexpr uint64_t kCases = 10'000;

// Stops at the first case that fails: one is enough to read. The log of the case is kept from the
// output.
template <class Check>
void ForEachCase(Check check, uint64_t cases = kCases) {
    for (uint64_t seed = FirstSeed(), end = seed + cases; seed != end; ++seed) {
        const CapturedLog log;
        Random random(seed);
        try {
            check(random);
        } catch (const std::exception &exception) {
            ADD_FAILURE() << exception.what();
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "again with VELLUM_TEST_SEED=" << seed;
            return;
        }
    }
}

// Bytes that are printed in hex, whole, and only when a test has failed.
struct Dump {
    Bytes bytes;
    bool operator==(const Dump &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Dump &dump) {
    for (const uint8_t byte : dump.bytes) {
        out << "0123456789abcdef"[byte >> 4] << "0123456789abcdef"[byte & 15];
    }
    return out;
}

// An item, and how many bytes were left behind it.
struct Step {
    Model item;
    size_t left = 0;
    bool operator==(const Step &) const = default;
};

// What a reader made of bytes.
struct Reading {
    std::deque<Step> steps;
    bool refused = false;
    bool operator==(const Reading &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Reading &reading) {
    for (const auto &[item, left] : reading.steps) out << "  " << item << ", bytes left: " << left << '\n';
    return out << (reading.refused ? "  refused\n" : "  all read\n");
}

std::vector<Model> Items(const Reading &reading) {
    std::vector<Model> items;
    for (const Step &step : reading.steps) items.push_back(step.item);
    return items;
}

// Reads until the bytes are used up or refused; a reader that does not move ends it as well.
template <class Next, class Left, class IsRefused>
Reading ReadAll(size_t length, Next next, Left left, IsRefused is_refused) {
    Reading reading;
    for (size_t before = length; before > 0; before = left()) {
        Model item = next();
        reading.refused = is_refused();
        if (reading.refused) {
            EXPECT_TRUE(item.IsNull()) << "a part of what was refused: " << item;
            EXPECT_TRUE(next().IsNull()) << "an item behind what was refused";
            break;
        }
        reading.steps.push_back({std::move(item), left()});
        if (left() >= before) break;
    }
    return reading;
}

Reading ReadByReader(const Bytes &bytes) {
    const Bytes copy(bytes); // in memory of just their size
    TValResurrectContext context(copy.data(), copy.size());
    return ReadAll(
        copy.size(), [&] { return ModelOf(context.Resurrect().Get()); },
        [&] { return context.BytesLeft(); }, [&] { return context.IsRefused(); });
}

Reading ReadByReference(const Bytes &bytes) {
    ReferenceDecoder decoder(bytes);
    return ReadAll(
        bytes.size(), [&] { return decoder.Next(); }, [&] { return decoder.BytesLeft(); },
        [&] { return decoder.IsRefused(); });
}

// True when both readers could read to the end.
bool ExpectAgreement(const Bytes &bytes) {
    const CapturedLog log;
    const Reading read = ReadByReader(bytes);
    const Reading reference = ReadByReference(bytes);
    EXPECT_EQ(read, reference) << Dump{bytes};
    EXPECT_LE(log.Records().size(), TValResurrectContext::kMaximumLogLines + 1) << Dump{bytes};
    return !read.refused;
}

// Both readings to the end and refusals must be among the cases, or else the bytes are not what the
// test is for.
void ExpectAgreementOn(Bytes (*make)(Random &)) {
    uint64_t refused = 0;
    ForEachCase([&](Random &random) { refused += ExpectAgreement(make(random)) ? 0U : 1U; });
    if (testing::Test::HasFailure()) return;
    EXPECT_GT(refused, kCases / 20);
    EXPECT_LT(refused, kCases - kCases / 20);
}

// True when the value comes out as it went in.
bool LosesNothing(const Model &value) {
    return AfterTheWay(value) == std::vector<Model>{value};
}

TEST(RoundTrip, ReadsWhatWasWrittenButForTheKnownLosses) {
    uint64_t kept = 0;
    uint64_t unwritable = 0;
    uint64_t split = 0;
    ForEachCase([&](Random &random) {
        const auto value = RandomValue(random);
        const Model model = ModelOf(value.Get());
        const std::vector<Model> expected = AfterTheWay(model);
        const Bytes bytes = Flattened(value);
        const Reading read = ReadByReader(bytes);
        EXPECT_FALSE(read.refused) << Dump{bytes};
        EXPECT_EQ(Items(read), expected) << Dump{bytes};
        kept += expected == std::vector<Model>{model};
        unwritable += expected.empty();
        split += expected.size() > 1;
    });
    if (HasFailure()) return;
    EXPECT_GT(kept, kCases / 10);
    EXPECT_LT(kept, kCases - kCases / 10);
    EXPECT_GT(unwritable, kCases / 1000);
    EXPECT_GT(split, kCases / 100);
}

TEST(RoundTrip, IsReadAlikeByBothReaders) {
    ForEachCase([](Random &random) {
        const Bytes bytes = Flattened(RandomValue(random));
        EXPECT_TRUE(ExpectAgreement(bytes)) << Dump{bytes};
    });
}

TEST(RoundTrip, WritesTheSameBytesAgainWhenNothingWasLost) {
    ForEachCase([&](Random &random) {
        const auto value = RandomValue(random);
        if (!LosesNothing(ModelOf(value.Get()))) return;
        const Bytes bytes = Flattened(value);
        EXPECT_EQ(Dump{Flattened(Resurrected(bytes))}, Dump{bytes});
    });
}

// The second writing leaves out the nulls that were empty data at first, which may make two members of
// a set equal; after it there is nothing more to lose.
TEST(RoundTrip, IsStableFromTheSecondTimeOn) {
    ForEachCase([](Random &random) {
        const auto first = Resurrected(Flattened(RandomValue(random)));
        const auto second = Resurrected(Flattened(first));
        const Bytes bytes = Flattened(second);
        const auto third = Resurrected(bytes);
        EXPECT_EQ(ModelOf(third.Get()), ModelOf(second.Get())) << Dump{bytes};
        EXPECT_EQ(Dump{Flattened(third)}, Dump{bytes});
    });
}

TEST(RoundTrip, TakesNoMoreBytesThanEstimated) {
    ForEachCase([](Random &random) {
        const auto value = RandomValue(random);
        const Bytes bytes = Flattened(value);
        EXPECT_GE(EstimateFlattenedSize(value.Get()), bytes.size()) << Dump{bytes};
    });
}

// What stands too deep is written not at all, but estimated.
TEST(RoundTrip, TakesTheBytesEstimatedWhenThereIsNoString) {
    uint64_t written = 0;
    ForEachCase([&](Random &random) {
        const auto value = RandomValueWithoutStrings(random);
        const Bytes bytes = Flattened(value);
        if (bytes.empty()) return;
        EXPECT_EQ(EstimateFlattenedSize(value.Get()), bytes.size()) << Dump{bytes};
        ++written;
    });
    if (HasFailure()) return;
    EXPECT_GT(written, kCases * 9 / 10);
}

// Every block costs the system's time: many values share one.
TEST(RoundTrip, TakesTheSameBytesInMemoryThatTravels) {
    constexpr size_t kMostValues = 40;
    ForEachCase(
        [](Random &random) {
            std::vector<Ref<const void>> values(random.Between(1, kMostValues));
            for (auto &value : values) value = RandomValue(random);
            const auto list = List(values);
            const TValVMFlattenContext context(list.Get());
            const Bytes bytes(context.GetBytePtr(), context.GetBytePtr() + context.GetLength());
            EXPECT_EQ(Dump{bytes}, Dump{Flattened(list)});
        },
        2 * kCases / kMostValues);
}

TEST(RoundTrip, ReadsMutatedBytesAlikeByBothReaders) {
    ExpectAgreementOn(MutatedBytes);
}

TEST(RoundTrip, ReadsOddItemsAlikeByBothReaders) {
    ExpectAgreementOn(OddBytes);
}

TEST(RoundTrip, ReadsNoiseBehindTagsAlikeByBothReaders) {
    ExpectAgreementOn(NoisyBytes);
}

} // namespace
} // namespace vellum::test
