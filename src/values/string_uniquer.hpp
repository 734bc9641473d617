// SPDX-License-Identifier: MIT
// One string for each text: the process's pool of names.
#pragma once

#include <vellum/values.hpp>

#include <cstddef>
#include <mutex>
#include <span>
#include <string_view>

namespace vellum {

// A set of strings behind a mutex. When it has grown to twice what the last sweep left, in strings or in
// bytes, it drops the strings that it alone still holds: under the mutex, nobody else can come to hold one
// of those. Its hash is the process's own: strings come from strangers, who must not know which collide.
class TValStringUniquerImp {
public:
    // The least count, and the least number of bytes, at which the pool is swept.
    static constexpr size_t kSmallestSweep = 4096;
    static constexpr size_t kSmallestSweepBytes = size_t{1} << 20;

    // Begins with the constants, so that equal text becomes these very objects.
    explicit TValStringUniquerImp(std::span<const ValString *const> constants = {}) noexcept
        : constants_(constants) {}

    // The pool's string that is equal to `string`, which goes into the pool when there is none. When
    // memory is exhausted, `string` itself. Null for null.
    Ref<const ValString> GetUniqueString(const ValString *string) noexcept;

    // The same for a text: nothing is allocated when the pool has it. A text that is no valid UTF-8
    // gives the empty string. Null when memory is exhausted.
    Ref<const ValString> GetUniqueString(std::string_view text) noexcept;

    // How many strings there are, and how many bytes those have together that are no constants.
    size_t Count() noexcept;
    size_t CountBytes() noexcept;

private:
    bool MakeSet() noexcept;
    const ValString *FindOrAdd(const ValString *string) noexcept;
    Ref<const ValString> FindText(std::string_view text) noexcept;
    void SweepIfGrown() noexcept;

    const std::span<const ValString *const> constants_;
    std::mutex mutex_; // guards what follows
    Ref<ValSet> set_;  // made by the first call, with all of the constants
    size_t bytes_ = 0; // of the strings in the set but the constants
    size_t next_sweep_ = kSmallestSweep;
    size_t next_sweep_bytes_ = kSmallestSweepBytes;
};

// A handle on the pool of the process.
class TValStringUniquer {
public:
    TValStringUniquer() noexcept;

    Ref<const ValString> GetUniqueString(const ValString *string) noexcept {
        return imp_.GetUniqueString(string);
    }
    Ref<const ValString> GetUniqueString(std::string_view text) noexcept {
        return imp_.GetUniqueString(text);
    }

private:
    TValStringUniquerImp &imp_;
};

// The constants that the process's pool begins with. Defined where they are: describe/constants.cpp.
std::span<const ValString *const> PooledConstants() noexcept;

} // namespace vellum
