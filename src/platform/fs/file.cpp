// SPDX-License-Identifier: MIT
#include "platform/fs/file.hpp"

#include "platform/process/passing_failures.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <new>

namespace vellum {
namespace {

// Whether a file may well be there although it could not be opened.
bool IsPassing(int error) noexcept {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EINTR || error == EAGAIN;
}

} // namespace

TDescriptor::~TDescriptor() {
    if (descriptor_ >= 0) close(descriptor_);
}

TFileIdentity TFileIdentity::Of(const struct stat &status) noexcept {
    return {status.st_dev, status.st_ino, static_cast<uint64_t>(status.st_size), status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

TDescriptor OpenRegularFile(const char *path, uint64_t limit, TFileIdentity *identity) noexcept {
    TDescriptor descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (!descriptor.IsOpen() && IsPassing(errno)) ++tPassingFailures;
    if (!descriptor.IsOpen() || fstat(descriptor.Get(), &status) != 0) return TDescriptor();
    if (!S_ISREG(status.st_mode) || static_cast<uint64_t>(status.st_size) > limit) return TDescriptor();
    *identity = TFileIdentity::Of(status);
    return descriptor;
}

TReadResult ReadFully(int descriptor, uint64_t offset, std::span<uint8_t> out) noexcept {
    TReadResult result;
    while (result.length < out.size()) {
        const ssize_t got = pread(descriptor, out.data() + result.length, out.size() - result.length,
                                  static_cast<off_t>(offset + result.length));
        if (got < 0 && errno == EINTR) continue;
        result.failed = got < 0;
        if (got <= 0) break;
        result.length += static_cast<size_t>(got);
    }
    return result;
}

std::optional<TBuffer> ReadWholeFile(const char *path, uint64_t limit) noexcept {
    TFileIdentity identity;
    const TDescriptor descriptor = OpenRegularFile(path, limit, &identity);
    if (!descriptor.IsOpen()) return std::nullopt;
    try {
        TBuffer content(static_cast<size_t>(identity.size));
        const TReadResult result = ReadFully(descriptor.Get(), 0, content.Writable());
        if (result.failed) {
            ++tPassingFailures;
            return std::nullopt;
        }
        content.Cut(result.length);
        return content;
    } catch (const std::bad_alloc &) {
        ++tPassingFailures;
        return std::nullopt;
    }
}

} // namespace vellum
