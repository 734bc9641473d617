// SPDX-License-Identifier: MIT
// gzip, LZW and bzip2 through FreeType's stream filters, chunk by chunk.
#include "platform/font/inflate.hpp"

#include "platform/font/freetype_library.hpp"
#include "platform/font/freetype_stream.hpp"
#include "platform/font/limits.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr size_t kChunk = 64u << 10;

FT_Error OpenFilter(TFontKind kind, FT_Stream filter, FT_Stream source) noexcept {
    switch (kind) {
    case TFontKind::kGzip:
        return FT_Stream_OpenGzip(filter, source);
    case TFontKind::kLzw:
        return FT_Stream_OpenLZW(filter, source);
    case TFontKind::kBzip2:
        return FT_Stream_OpenBzip2(filter, source);
    default:
        return FT_Err_Unimplemented_Feature;
    }
}

// A filter over a round; closed at the end. Small files it unpacks at once into its own memory.
class TFilter {
public:
    TFilter(const TReading &reading, TFontKind kind) noexcept : source_(reading) {
        source_.Get()->memory = TFreeType::Memory();
        filter_.memory = TFreeType::Memory();
        open_ = OpenFilter(kind, &filter_, source_.Get()) == 0;
    }
    ~TFilter() {
        if (open_ && filter_.close) filter_.close(&filter_);
    }
    TFilter(const TFilter &) = delete;
    TFilter &operator=(const TFilter &) = delete;

    // Reads on; less than asked for at the end.
    size_t Read(std::span<uint8_t> out) noexcept {
        if (!open_) return 0;
        const size_t got = filter_.read ? ReadFilter(out) : ReadMemory(out);
        position_ += got;
        return got;
    }

private:
    size_t ReadFilter(std::span<uint8_t> out) noexcept {
        return std::min<size_t>(filter_.read(&filter_, position_, out.data(), out.size()), out.size());
    }

    size_t ReadMemory(std::span<uint8_t> out) const noexcept {
        const TBytes rest = Slice(TBytes(filter_.base, filter_.size), position_, out.size());
        if (!rest.empty()) std::memcpy(out.data(), rest.data(), rest.size());
        return rest.size();
    }

    TFreeTypeStream source_;
    FT_StreamRec filter_ = {};
    size_t position_ = 0;
    bool open_ = false;
};

} // namespace

TBuffer InflateHead(const TFreeType &, const TReading &reading, TFontKind kind, size_t limit) {
    TFilter filter(reading, kind);
    TBuffer head(limit);
    head.Cut(filter.Read(head.Writable()));
    return head;
}

// The room for the largest answer is asked for at once: what is not written to costs nothing.
std::optional<TBuffer> Inflate(const TFreeType &, const TReading &reading, TFontKind kind) {
    TFilter filter(reading, kind);
    TBuffer bytes(limits::kInflatedBytes + kChunk);
    size_t size = 0;
    for (size_t got = kChunk; got == kChunk; size += got) {
        if (size > limits::kInflatedBytes) return std::nullopt;
        got = filter.Read(bytes.Writable().subspan(size, kChunk));
    }
    if (size == 0 || size > limits::kInflatedBytes) return std::nullopt;
    bytes.Cut(size);
    return bytes;
}

} // namespace vellum
