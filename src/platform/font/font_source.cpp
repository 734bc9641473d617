// SPDX-License-Identifier: MIT
// Guarded opening and bounded reading of font files; see font_source.hpp for the rules.
#include "platform/font/font_source.hpp"

#include "platform/font/guarded.hpp"
#include "platform/font/gx_font_round.hpp"
#include "platform/font/limits.hpp"

#include <sys/xattr.h>

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// Reads a file that was opened, and leaves it to the rest of the round.
TReading Begin(TDescriptor opened, const TFileIdentity &identity) {
    auto file = std::make_shared<const TDescriptor>(std::move(opened));
    GxFontRound::Keep(file, identity);
    return TReading(std::move(file), identity.size);
}

} // namespace

TDescriptor OpenRegularFile(const char *path, TFileIdentity *identity) noexcept {
    return OpenRegularFile(path, limits::kFileSize, identity);
}

TReading OpenFontFile(const char *path, TFileIdentity *identity) {
    TDescriptor opened = OpenRegularFile(path, identity);
    return opened.IsOpen() ? Begin(std::move(opened), *identity) : TReading();
}

size_t TReading::Read(uint64_t offset, std::span<uint8_t> out) const noexcept {
    if (offset >= size_) return 0;
    const size_t length = static_cast<size_t>(std::min<uint64_t>(out.size(), size_ - offset));
    if (descriptor_) {
        const TReadResult result = ReadFully(descriptor_->Get(), offset, out.first(length));
        if (result.failed) ++tPassingFailures;
        return result.length;
    }
    if (length != 0) std::memcpy(out.data(), memory_.data() + offset, length);
    return length;
}

TBuffer TReading::Copy(uint64_t offset, size_t length) const {
    if (offset >= size_) return TBuffer();
    TBuffer buffer(static_cast<size_t>(std::min<uint64_t>(length, size_ - offset)));
    buffer.Cut(Read(offset, buffer.Writable()));
    return buffer;
}

TBuffer TReading::CopyAttribute(const char *name, size_t limit) const {
    if (!descriptor_) return TBuffer();
    const ssize_t size = fgetxattr(descriptor_->Get(), name, nullptr, 0);
    if (size <= 0 || static_cast<size_t>(size) > limit) return TBuffer();
    TBuffer buffer(static_cast<size_t>(size));
    const ssize_t got = fgetxattr(descriptor_->Get(), name, buffer.Writable().data(), buffer.Size());
    buffer.Cut(got < 0 ? 0 : static_cast<size_t>(got));
    return buffer;
}

TReading TFileSource::Open() const {
    if (auto file = GxFontRound::Find(identity_)) return TReading(std::move(file), identity_.size);
    TFileIdentity identity;
    TDescriptor opened = OpenRegularFile(path_.c_str(), &identity);
    if (!opened.IsOpen() || identity != identity_) {
        ++tPassingFailures;
        return TReading();
    }
    return Begin(std::move(opened), identity);
}

// The caller holds the source, and the source the data, for as long as the round lasts.
TReading TDataSource::Open() const {
    return TReading(TBytes(ValDataGetBytes(data_.Get()), ValDataGetLength(data_.Get())), nullptr);
}

} // namespace vellum
