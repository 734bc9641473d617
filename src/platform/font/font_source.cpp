// SPDX-License-Identifier: MIT
// Guarded opening and bounded reading of font files; see font_source.hpp for the rules.
#include "platform/font/font_source.hpp"

#include "platform/font/limits.hpp"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vellum {
namespace {

// Everything that pread will give of the stretch; a signal does not end it early.
size_t ReadFully(int descriptor, uint64_t offset, std::span<uint8_t> out) noexcept {
    size_t done = 0;
    while (done < out.size()) {
        const ssize_t got =
            pread(descriptor, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

} // namespace

TDescriptor::~TDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
}

TFileIdentity TFileIdentity::Of(const struct stat &status) noexcept {
    return {status.st_dev, status.st_ino, static_cast<uint64_t>(status.st_size), status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

TDescriptor OpenRegularFile(const char *path, TFileIdentity *identity) noexcept {
    TDescriptor descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (!descriptor.IsOpen() || fstat(descriptor.Get(), &status) != 0) return TDescriptor();
    if (!S_ISREG(status.st_mode) || static_cast<uint64_t>(status.st_size) > limits::kFileSize)
        return TDescriptor();
    *identity = TFileIdentity::Of(status);
    return descriptor;
}

size_t TReading::Read(uint64_t offset, std::span<uint8_t> out) const noexcept {
    if (offset >= size_) return 0;
    const size_t length = static_cast<size_t>(std::min<uint64_t>(out.size(), size_ - offset));
    if (descriptor_.IsOpen()) return ReadFully(descriptor_.Get(), offset, out.first(length));
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
    if (!descriptor_.IsOpen()) return TBuffer();
    const ssize_t size = fgetxattr(descriptor_.Get(), name, nullptr, 0);
    if (size <= 0 || static_cast<size_t>(size) > limit) return TBuffer();
    TBuffer buffer(static_cast<size_t>(size));
    const ssize_t got = fgetxattr(descriptor_.Get(), name, buffer.Writable().data(), buffer.Size());
    buffer.Cut(got < 0 ? 0 : static_cast<size_t>(got));
    return buffer;
}

TReading TFileSource::Open() const {
    TFileIdentity identity;
    TDescriptor descriptor = OpenRegularFile(path_.c_str(), &identity);
    if (!descriptor.IsOpen() || identity != identity_) return TReading();
    return TReading(std::move(descriptor), identity.size);
}

// The caller holds the source, and the source the data, for as long as the round lasts.
TReading TDataSource::Open() const {
    return TReading(TBytes(ValDataGetBytes(data_.Get()), ValDataGetLength(data_.Get())), nullptr);
}

} // namespace vellum
