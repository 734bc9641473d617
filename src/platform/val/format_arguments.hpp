// SPDX-License-Identifier: MIT
// The arguments of a format, one after the other.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace vellum {

// How wide a number is: the modifiers hh, h, l, ll, j, z, t and L.
enum class FormatLength { kNone, kChar, kShort, kLong, kLongLong, kMax, kSize, kDifference, kLongDouble };

// Reads from a copy: the caller's list stays where it is.
class FormatArguments {
public:
    explicit FormatArguments(va_list arguments) noexcept { va_copy(arguments_, arguments); }
    ~FormatArguments() { va_end(arguments_); }
    FormatArguments(const FormatArguments &) = delete;
    FormatArguments &operator=(const FormatArguments &) = delete;

    // `T` as it is passed: never narrower than int, never float.
    template <class T>
    T Next() noexcept {
        return va_arg(arguments_, T);
    }

    intmax_t NextSigned(FormatLength length) noexcept {
        switch (length) {
        case FormatLength::kChar:
            return static_cast<signed char>(Next<int>());
        case FormatLength::kShort:
            return static_cast<short>(Next<int>());
        case FormatLength::kLong:
            return Next<long>();
        case FormatLength::kLongLong:
        case FormatLength::kLongDouble:
            return Next<long long>();
        case FormatLength::kMax:
            return Next<intmax_t>();
        case FormatLength::kSize:
        case FormatLength::kDifference:
            return Next<ptrdiff_t>();
        case FormatLength::kNone:
            break;
        }
        return Next<int>();
    }

    uintmax_t NextUnsigned(FormatLength length) noexcept {
        switch (length) {
        case FormatLength::kChar:
            return static_cast<unsigned char>(Next<unsigned>());
        case FormatLength::kShort:
            return static_cast<unsigned short>(Next<unsigned>());
        case FormatLength::kLong:
            return Next<unsigned long>();
        case FormatLength::kLongLong:
        case FormatLength::kLongDouble:
            return Next<unsigned long long>();
        case FormatLength::kMax:
            return Next<uintmax_t>();
        case FormatLength::kSize:
        case FormatLength::kDifference:
            return Next<size_t>();
        case FormatLength::kNone:
            break;
        }
        return Next<unsigned>();
    }

private:
    va_list arguments_;
};

} // namespace vellum
