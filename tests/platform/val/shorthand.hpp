// SPDX-License-Identifier: MIT
// Short ways of making values and of looking into them, for the value model's own tests.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum {

using StringRef = Ref<const ValString>;

// Text that may hold zeros: S("a\0b"sv).
inline StringRef S(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

// A file name of any bytes.
inline StringRef Name(std::string_view bytes) {
    return Adopt(ValStringCreateWithFileSystemRepresentation(bytes.data(), bytes.size()));
}

inline StringRef Utf16(std::initializer_list<uint16_t> units) {
    return Adopt(ValStringCreateWithUTF16(units.begin(), units.size()));
}

inline StringRef Encoded(std::string_view bytes, ValStringEncoding encoding) {
    return Adopt(ValStringCreateWithBytes(bytes.data(), bytes.size(), encoding));
}

inline Ref<const ValNumber> N(int32_t value) {
    return Adopt(ValNumberCreateSInt32(value));
}
inline Ref<const ValNumber> F(double value) {
    return Adopt(ValNumberCreateFloat64(value));
}

inline Ref<const ValURL> U(std::string_view text, const Ref<const ValURL> &base = nullptr) {
    return Adopt(ValURLCreateWithString(S(text).Get(), base.Get()));
}

inline Ref<const ValArray> A(std::initializer_list<const void *> items) {
    return Adopt(ValArrayCreate(items.begin(), items.size()));
}

// The bytes of a string; "(null)" for null, so that a test says what it saw.
inline std::string TextOf(const ValString *string) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(string, &length);
    return bytes ? std::string(bytes, length) : "(null)";
}
inline std::string TextOf(const StringRef &string) {
    return TextOf(string.Get());
}

inline std::vector<std::string> Texts(const ValArray *array) {
    std::vector<std::string> texts;
    for (size_t i = 0; i < ValArrayGetCount(array); ++i) {
        texts.push_back(TextOf(static_cast<const ValString *>(ValArrayGetValue(array, i))));
    }
    return texts;
}

inline std::string AbsoluteTextOf(const Ref<const ValURL> &url) {
    return TextOf(ValURLGetString(Adopt(ValURLCopyAbsolute(url.Get())).Get()));
}

using Ranges = std::vector<std::pair<uint32_t, uint32_t>>;

inline Ranges RangesOf(const ValCharacterSet *set) {
    Ranges ranges;
    uint32_t first = 0;
    uint32_t last = UINT32_MAX;
    while (ValCharacterSetNextRange(set, &first, &last)) ranges.emplace_back(first, last);
    return ranges;
}

inline Ref<ValCharacterSet> MutableSetOf(const Ranges &ranges) {
    auto set = Adopt(ValCharacterSetCreateMutable());
    for (auto [first, last] : ranges) ValCharacterSetAddRange(set.Get(), first, last);
    return set;
}

// A pointer-sized item of raw containers.
inline const void *Raw(uintptr_t number) {
    return reinterpret_cast<const void *>(number);
}

} // namespace vellum
