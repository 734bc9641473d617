// SPDX-License-Identifier: MIT
// Strings from bytes in other encodings.
#include "platform/val/text_buffer.hpp"

#include <errno.h>
#include <iconv.h>

#include <algorithm>
#include <iterator>

namespace vellum {
namespace {

using Decoder = bool (*)(std::string_view bytes, TextBuffer &text) noexcept;

// The upper half of script code 0. 0xDB is the euro sign and 0xF0 the private-use logo.
constexpr char16_t kRomanUpperHalf[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, // 80
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8, // 88
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, // 90
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, // 98
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF, // A0
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, // A8
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, // B0
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, // B8
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, // C0
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, // C8
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, // D0
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, // D8
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, // E0
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, // E8
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC, // F0
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7, // F8
};

char32_t Byte(std::string_view bytes, size_t at) noexcept {
    return static_cast<unsigned char>(bytes[at]);
}

bool DecodeRoman(std::string_view bytes, TextBuffer &text) noexcept {
    for (size_t i = 0; i < bytes.size(); ++i) {
        char32_t byte = Byte(bytes, i);
        text.AppendCharacter(byte < 0x80 ? byte : kRomanUpperHalf[byte - 0x80]);
    }
    return true;
}

bool DecodeLatin1(std::string_view bytes, TextBuffer &text) noexcept {
    for (size_t i = 0; i < bytes.size(); ++i) text.AppendCharacter(Byte(bytes, i));
    return true;
}

bool DecodeAscii(std::string_view bytes, TextBuffer &text) noexcept {
    text.Append(bytes);
    return AsciiPrefixLength(bytes) == bytes.size();
}

bool DecodeUtf8(std::string_view bytes, TextBuffer &text) noexcept {
    text.Append(bytes);
    return ScanText(bytes).is_unicode;
}

// Joins surrogates that come as a pair and keeps the others.
class SurrogateJoiner {
public:
    explicit SurrogateJoiner(TextBuffer &text) noexcept : text_(text) {}
    ~SurrogateJoiner() { Flush(); }

    void Add(char32_t unit) noexcept {
        if (high_ && unit >= 0xDC00 && unit <= 0xDFFF) {
            text_.AppendCharacter(0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
            high_ = 0;
            return;
        }
        Flush();
        if (unit >= 0xD800 && unit <= 0xDBFF)
            high_ = unit;
        else
            text_.AppendCharacter(unit);
    }

private:
    void Flush() noexcept {
        if (high_) text_.AppendCharacter(high_);
        high_ = 0;
    }

    TextBuffer &text_;
    char32_t high_ = 0; // a high surrogate that waits for its partner
};

bool DecodeUtf16BE(std::string_view bytes, TextBuffer &text) noexcept {
    if (bytes.size() % 2) return false;
    SurrogateJoiner joiner(text);
    for (size_t i = 0; i < bytes.size(); i += 2) joiner.Add(Byte(bytes, i) << 8 | Byte(bytes, i + 1));
    return true;
}

bool DecodeUtf32BE(std::string_view bytes, TextBuffer &text) noexcept {
    if (bytes.size() % 4) return false;
    for (size_t i = 0; i < bytes.size(); i += 4) {
        char32_t c =
            Byte(bytes, i) << 24 | Byte(bytes, i + 1) << 16 | Byte(bytes, i + 2) << 8 | Byte(bytes, i + 3);
        if (!IsScalar(c)) return false;
        text.AppendCharacter(c);
    }
    return true;
}

// What is decoded here.
struct DecoderRow {
    ValStringEncoding encoding;
    Decoder decode;
};
constexpr DecoderRow kDecoders[] = {
    {kValStringEncodingRoman, DecodeRoman},     {kValStringEncodingUnicode, DecodeUtf16BE},
    {kValStringEncodingUTF16BE, DecodeUtf16BE}, {kValStringEncodingUTF32BE, DecodeUtf32BE},
    {kValStringEncodingUTF8, DecodeUtf8},       {kValStringEncodingASCII, DecodeAscii},
    {kValStringEncodingLatin1, DecodeLatin1},
};

// Script codes that the C library decodes; for each the widest charset that it has. There is none
// for Arabic, Hebrew, Greek and the Indic scripts.
struct CharsetRow {
    ValStringEncoding encoding;
    const char *charset;
};
constexpr CharsetRow kCharsets[] = {
    {kValStringEncodingJapanese, "CP932"},
    {kValStringEncodingTraditionalChinese, "BIG5"},
    {kValStringEncodingKorean, "CP949"},
    {7, "MAC-CYRILLIC"},
    {21, "CP874"}, // Thai
    {kValStringEncodingSimplifiedChinese, "GBK"},
    {29, "MAC-CENTRALEUROPE"},
};

class Converter {
public:
    explicit Converter(const char *charset) noexcept : handle_(iconv_open("UTF-8", charset)) {}
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;
    ~Converter() {
        if (IsOpen()) iconv_close(handle_);
    }

    bool Convert(std::string_view bytes, TextBuffer &text) noexcept {
        char *in = const_cast<char *>(bytes.data()); // iconv only reads it
        size_t left = bytes.size();
        return IsOpen() && Run(&in, &left, text) && Run(nullptr, nullptr, text);
    }

private:
    bool IsOpen() const noexcept { return handle_ != reinterpret_cast<iconv_t>(-1); }

    bool Run(char **in, size_t *left, TextBuffer &text) noexcept {
        for (;;) {
            char piece[256];
            char *out = piece;
            size_t room = sizeof piece;
            size_t result = iconv(handle_, in, left, &out, &room);
            bool full = result == static_cast<size_t>(-1) && errno == E2BIG;
            text.Append({piece, sizeof piece - room});
            if (!full) return result != static_cast<size_t>(-1);
        }
    }

    iconv_t handle_;
};

bool Decode(std::string_view bytes, ValStringEncoding encoding, TextBuffer &text) noexcept {
    auto *decoder = std::ranges::find(kDecoders, encoding, &DecoderRow::encoding);
    if (decoder != std::end(kDecoders)) return decoder->decode(bytes, text);
    auto *charset = std::ranges::find(kCharsets, encoding, &CharsetRow::encoding);
    return charset != std::end(kCharsets) && Converter(charset->charset).Convert(bytes, text);
}

} // namespace
} // namespace vellum

using namespace vellum;

const ValString *ValStringCreateWithUTF16(const uint16_t *units, size_t count) noexcept {
    if (!units) return nullptr;
    TextBuffer text;
    {
        SurrogateJoiner joiner(text);
        for (size_t i = 0; i < count; ++i) joiner.Add(units[i]);
    }
    return text.MakeString().Release();
}

const ValString *ValStringCreateWithBytes(const void *bytes, size_t length,
                                          ValStringEncoding encoding) noexcept {
    if (!bytes) return nullptr;
    TextBuffer text;
    return Decode({static_cast<const char *>(bytes), length}, encoding, text) ? text.MakeString().Release()
                                                                              : nullptr;
}
