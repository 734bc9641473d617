// SPDX-License-Identifier: MIT
// The strings that a reader met lately: keys repeat from dictionary to dictionary, and the pool of
// names is behind a mutex.
#pragma once

#include <vellum/values.hpp>

#include <array>
#include <cstddef>
#include <string_view>

namespace vellum {

class TRecentStrings {
public:
    // The pool's string with this text, which is valid UTF-8 or else gives the empty string. Null
    // when memory is exhausted.
    Ref<const ValString> GetUniqueString(std::string_view text) noexcept;

private:
    // A string stands in one of two places next to each other, which its hash picks.
    static constexpr size_t kPlaces = 64;

    std::array<Ref<const ValString>, kPlaces> strings_;
};

} // namespace vellum
