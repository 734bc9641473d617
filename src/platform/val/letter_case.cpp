// SPDX-License-Identifier: MIT
// Texts under a letter-case mapping: comparing and hashing them without writing them out.
#include "platform/val/letter_case.hpp"

#include "platform/val/byte_words.hpp"
#include "platform/val/lowercase_runs.hpp"

#include <algorithm>

namespace vellum {
namespace {

// Takes bytes one by one and hashes them eight at a time.
class ByteHasher {
public:
    void Add(char byte) noexcept {
        word_ |= static_cast<uint64_t>(static_cast<unsigned char>(byte)) << (8 * (length_ & 7));
        if ((++length_ & 7) == 0) Flush();
    }
    // Eight bytes, the first lowest; before any that are added one by one.
    void AddEight(uint64_t bytes) noexcept {
        hash_ = CombineHash(hash_, bytes);
        length_ += 8;
    }
    uint64_t Finish() noexcept {
        Flush();
        return CombineHash(hash_, length_);
    }

private:
    void Flush() noexcept {
        hash_ = CombineHash(hash_, word_);
        word_ = 0;
    }

    uint64_t hash_ = 0;
    uint64_t word_ = 0;
    uint64_t length_ = 0;
};

} // namespace

CaseMapping LowerCharacter(char32_t c) noexcept {
    if (c < 0x80) return {{static_cast<char32_t>(LowerAscii(static_cast<char>(c)))}, 1};
    if (c == 0x130) return {{0x69, 0x307}, 2};
    // GLib maps letters, but not the Roman numerals and circled letters, which have a case as well.
    if (c >= 0x2160 && c <= 0x216F) return {{c + 16}, 1};
    if (c >= 0x24B6 && c <= 0x24CF) return {{c + 26}, 1};
    return {{SimpleLowercase(c)}, 1};
}

char32_t MappedText::Next() noexcept {
    if (AtBoundary()) {
        Character c = DecodeCharacter(text_.substr(position_));
        position_ += c.length;
        mapping_ = mapper_(c.value);
        next_ = 0;
    }
    return mapping_.characters[next_++];
}

size_t CommonAsciiLength(std::string_view a, std::string_view b) noexcept {
    size_t shorter = std::min(a.size(), b.size());
    size_t at = 0;
    while (at < shorter && static_cast<signed char>(a[at]) >= 0 && LowerAscii(a[at]) == LowerAscii(b[at]))
        ++at;
    return at;
}

int CompareMapped(std::string_view a, std::string_view b, CaseMapper mapper) noexcept {
    size_t common = CommonAsciiLength(a, b);
    MappedText left(a.substr(common), mapper);
    MappedText right(b.substr(common), mapper);
    while (!left.AtEnd() && !right.AtEnd()) {
        char32_t x = left.Next();
        char32_t y = right.Next();
        if (x != y) return x < y ? -1 : 1;
    }
    return static_cast<int>(right.AtEnd()) - static_cast<int>(left.AtEnd());
}

uint64_t HashLowercase(std::string_view text) noexcept {
    ByteHasher hasher;
    size_t ascii = AsciiPrefixLength(text);
    size_t at = 0;
    for (; ascii - at >= 8; at += 8) hasher.AddEight(LowerAsciiWord(LoadBytes(text.data() + at, 8)));
    for (char byte : text.substr(at, ascii - at)) hasher.Add(LowerAscii(byte));
    MappedText rest(text.substr(ascii), LowerCharacter);
    while (!rest.AtEnd()) {
        char encoded[4];
        size_t length = EncodeCharacter(rest.Next(), encoded);
        for (size_t i = 0; i < length; ++i) hasher.Add(encoded[i]);
    }
    return hasher.Finish();
}

} // namespace vellum
