// SPDX-License-Identifier: MIT
// Which text encoding a name record is in, and its decoding by the value model or by iconv.
#include "platform/font/name_decoding.hpp"

#include "platform/font/limits.hpp"

#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

namespace vellum {
namespace {

enum TPlatform : uint16_t { kUnicode = 0, kMacintosh = 1, kIso = 2, kWindows = 3 };

// Windows' encodings 2 to 6, which only old East Asian fonts use, by the names that iconv knows.
constexpr const char *kWindowsCodePages[] = {"CP932", "GB18030", "BIG5", "CP949", "JOHAB"};
constexpr uint16_t kFirstCodePage = 2;
constexpr uint16_t kLastCodePage = 6;

std::optional<ValStringEncoding> IsoEncoding(uint16_t encoding) noexcept {
    constexpr ValStringEncoding kEncodings[] = {kValStringEncodingASCII, kValStringEncodingUTF16BE,
                                                kValStringEncodingLatin1};
    if (encoding >= std::size(kEncodings)) return std::nullopt;
    return kEncodings[encoding];
}

// Windows' encoding 10 is UTF-16 too: every font that has such names writes them so.
std::optional<ValStringEncoding> EncodingOf(uint16_t platform, uint16_t encoding) noexcept {
    switch (platform) {
    case kUnicode:
        return kValStringEncodingUTF16BE;
    case kMacintosh:
        return encoding <= 32 ? std::optional<ValStringEncoding>(encoding) : std::nullopt;
    case kIso:
        return IsoEncoding(encoding);
    case kWindows:
        if (encoding <= 1 || encoding == 10) return kValStringEncodingUTF16BE;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

class TConverter {
public:
    explicit TConverter(const char *from) noexcept : handle_(iconv_open("UTF-8", from)) {}
    ~TConverter() {
        if (IsOpen()) iconv_close(handle_);
    }
    TConverter(const TConverter &) = delete;
    TConverter &operator=(const TConverter &) = delete;

    bool IsOpen() const noexcept { return handle_ != reinterpret_cast<iconv_t>(-1); }

    std::optional<std::string> Convert(TBytes bytes) {
        std::string text(bytes.size() * 4, '\0');
        std::string source(bytes.begin(), bytes.end());
        char *in = source.data();
        char *out = text.data();
        size_t in_left = source.size();
        size_t out_left = text.size();
        if (iconv(handle_, &in, &in_left, &out, &out_left) == static_cast<size_t>(-1)) return std::nullopt;
        text.resize(text.size() - out_left);
        return text;
    }

private:
    iconv_t handle_;
};

Ref<const ValString> DecodeCodePage(uint16_t encoding, TBytes bytes) {
    TConverter converter(kWindowsCodePages[encoding - kFirstCodePage]);
    if (!converter.IsOpen()) return nullptr;
    const std::optional<std::string> text = converter.Convert(bytes);
    return text ? Adopt(ValStringCreateWithUTF8(text->data(), text->size())) : nullptr;
}

// Zeros are padding: of a fixed field, or of one-byte characters stored as two bytes.
Ref<const ValString> WithoutZeros(Ref<const ValString> text) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(text.Get(), &length);
    if (!bytes || !std::memchr(bytes, 0, length)) return text;
    std::string kept(bytes, length);
    std::erase(kept, '\0');
    return Adopt(ValStringCreateWithUTF8(kept.data(), kept.size()));
}

bool IsUsable(const Ref<const ValString> &text) noexcept {
    size_t length = 0;
    return ValStringGetBytes(text.Get(), &length) && length != 0 && length <= limits::kNameLength;
}

} // namespace

Ref<const ValString> DecodeName(uint16_t platform, uint16_t encoding, TBytes bytes) {
    const bool code_page = platform == kWindows && encoding >= kFirstCodePage && encoding <= kLastCodePage;
    Ref<const ValString> text;
    if (code_page) {
        text = DecodeCodePage(encoding, bytes);
    } else if (const auto form = EncodingOf(platform, encoding)) {
        // Half a unit at the end is padding as well.
        const size_t length = *form == kValStringEncodingUTF16BE ? bytes.size() & ~size_t{1} : bytes.size();
        text = Adopt(ValStringCreateWithBytes(bytes.data(), length, *form));
    }
    text = WithoutZeros(std::move(text));
    return IsUsable(text) ? text : nullptr;
}

} // namespace vellum
