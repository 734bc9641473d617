// SPDX-License-Identifier: MIT
// Strings that are constants of the program: made by the compiler, never counted, never freed.
//
//     constinit const StaticString kName("name");
//     ... kName.Get() ...                            // const ValString *
//
// They stand in the library's data with their lengths and hash; no code runs for them at load.
#pragma once

#include "platform/val/string.hpp"

namespace vellum {

template <size_t N>
struct StaticString : ValString {
    consteval StaticString(const char (&text)[N]) noexcept
        : ValString(N - 1, ScanText({text, N - 1}), HashText({text, N - 1}), kImmortal) {
        for (size_t i = 0; i < N; ++i) bytes[i] = text[i];
    }
    StaticString(const StaticString &) = delete;
    StaticString &operator=(const StaticString &) = delete;

    const ValString *Get() const noexcept { return this; }

    char bytes[N] = {};
};

// Text() looks for the bytes right behind the ValString.
static_assert(sizeof(StaticString<8>) == sizeof(ValString) + 8);

} // namespace vellum
