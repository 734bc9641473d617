// SPDX-License-Identifier: MIT
// A text under construction.
#include "platform/val/text_buffer.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {

TextBuffer::~TextBuffer() {
    if (bytes_ != in_place_) std::free(bytes_);
}

bool TextBuffer::Grow(size_t more) noexcept {
    if (failed_) return false;
    failed_ = true; // until there is memory
    if (more > kMaximumSize / 2 - length_) return false;
    size_t capacity = std::max(capacity_ * 2, length_ + more);
    void *grown = Reallocate(bytes_ == in_place_ ? nullptr : bytes_, capacity);
    if (!grown) return false;
    if (bytes_ == in_place_) std::memcpy(grown, in_place_, length_);
    bytes_ = static_cast<char *>(grown);
    capacity_ = capacity;
    failed_ = false;
    return true;
}

void TextBuffer::Append(std::string_view bytes) noexcept {
    if (bytes.empty() || (bytes.size() > capacity_ - length_ && !Grow(bytes.size()))) return;
    std::memcpy(bytes_ + length_, bytes.data(), bytes.size());
    length_ += bytes.size();
}

void TextBuffer::Append(const TextBuffer &other) noexcept {
    failed_ = failed_ || other.failed_;
    Append(other.View());
}

void TextBuffer::AppendEncoded(char32_t c) noexcept {
    char encoded[4];
    Append({encoded, EncodeCharacter(c, encoded)});
}

const char *TextBuffer::CString() noexcept {
    if (failed_ || (length_ == capacity_ && !Grow(1))) return nullptr;
    bytes_[length_] = '\0';
    return bytes_;
}

Ref<const ValString> TextBuffer::MakeString() const noexcept {
    return failed_ ? nullptr : vellum::MakeString(View());
}

} // namespace vellum
