// SPDX-License-Identifier: MIT
// A text under construction. Short ones take no memory from the heap; when memory runs out, the
// buffer remembers it and its string is null, so that callers check once, at the end.
#pragma once

#include "platform/val/string.hpp"

namespace vellum {

class TextBuffer {
public:
    TextBuffer() noexcept = default;
    TextBuffer(const TextBuffer &) = delete;
    TextBuffer &operator=(const TextBuffer &) = delete;
    ~TextBuffer();

    void Append(std::string_view bytes) noexcept;
    void Append(const TextBuffer &other) noexcept;
    void AppendByte(char byte) noexcept { Append({&byte, 1}); }
    void AppendCharacter(char32_t c) noexcept {
        if (c < 0x80 && length_ < capacity_)
            bytes_[length_++] = static_cast<char>(c);
        else
            AppendEncoded(c);
    }

    // Cuts the text to its first `length` bytes.
    void Truncate(size_t length) noexcept { length_ = length < length_ ? length : length_; }

    // As if memory had run out.
    void Fail() noexcept { failed_ = true; }

    bool Failed() const noexcept { return failed_; }
    std::string_view View() const noexcept { return {bytes_, length_}; }

    // Zero-terminated; null when memory ran out. It dies at the next change.
    const char *CString() noexcept;

    // Null when memory ran out.
    Ref<const ValString> MakeString() const noexcept;

private:
    void AppendEncoded(char32_t c) noexcept;
    bool Grow(size_t more) noexcept;

    char in_place_[200];
    char *bytes_ = in_place_;
    size_t length_ = 0;
    size_t capacity_ = sizeof in_place_;
    bool failed_ = false;
};

} // namespace vellum
