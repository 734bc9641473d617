// SPDX-License-Identifier: MIT
#include "platform/fs/copy_file.hpp"

#include "platform/fs/file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace vellum {

namespace {

constexpr size_t kChunk = size_t{64} << 10;

// The copy in the making: removed again unless it gets its name.
class PartialCopy {
public:
    explicit PartialCopy(const std::string &destination) {
        const size_t name = destination.rfind('/') + 1;
        path_ = destination.substr(0, name) + ".vellum-copy-XXXXXX";
        descriptor_ = TDescriptor(::mkostemp(path_.data(), O_CLOEXEC));
    }
    PartialCopy(const PartialCopy &) = delete;
    PartialCopy &operator=(const PartialCopy &) = delete;
    ~PartialCopy() {
        if (descriptor_.IsOpen() && !is_named_) ::unlink(path_.c_str());
    }

    bool IsOpen() const noexcept { return descriptor_.IsOpen(); }
    int Descriptor() const noexcept { return descriptor_.Get(); }

    bool GiveName(const std::string &destination) noexcept {
        is_named_ = ::rename(path_.c_str(), destination.c_str()) == 0;
        return is_named_;
    }

private:
    std::string path_;
    TDescriptor descriptor_;
    bool is_named_ = false;
};

bool WriteFully(int descriptor, const char *bytes, size_t length) noexcept {
    while (length > 0) {
        const ssize_t written = ::write(descriptor, bytes, length);
        if (written < 0 && errno == EINTR) continue;
        if (written == 0) errno = EIO;
        if (written <= 0) return false;
        bytes += written;
        length -= static_cast<size_t>(written);
    }
    return true;
}

bool CopyBytes(int from, int to) noexcept {
    std::array<char, kChunk> chunk;
    for (;;) {
        const ssize_t got = ::read(from, chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return got == 0;
        if (!WriteFully(to, chunk.data(), static_cast<size_t>(got))) return false;
    }
}

// Failures that mean that the destination has no place for an attribute, or not for one of ours.
bool IsRefusal(int error) noexcept {
    return error == ENOTSUP || error == EPERM || error == EACCES || error == EINVAL || error == ENODATA;
}

// The attribute or the names of them, by a function that says how much room it takes; false with errno set.
template <class Get>
bool ReadSized(std::vector<char> &out, Get get) {
    for (;;) {
        const ssize_t size = get(nullptr, 0);
        if (size < 0) return false;
        out.resize(static_cast<size_t>(size));
        const ssize_t got = size == 0 ? 0 : get(out.data(), out.size());
        if (got < 0 && errno == ERANGE) continue; // it has grown meanwhile
        if (got < 0) return false;
        out.resize(static_cast<size_t>(got));
        return true;
    }
}

bool CopyAttribute(int from, int to, const char *name) {
    std::vector<char> value;
    if (!ReadSized(value, [&](char *out, size_t size) { return ::fgetxattr(from, name, out, size); }))
        return IsRefusal(errno);
    return ::fsetxattr(to, name, value.data(), value.size(), 0) == 0 || IsRefusal(errno);
}

// Access control lists are attributes, too. The names stand one behind the other, each with a zero.
bool CopyAttributes(int from, int to) {
    std::vector<char> names;
    if (!ReadSized(names, [&](char *out, size_t size) { return ::flistxattr(from, out, size); }))
        return IsRefusal(errno);
    for (auto name = names.begin(); name != names.end(); name = std::find(name, names.end(), '\0') + 1)
        if (!CopyAttribute(from, to, &*name)) return false;
    return true;
}

// The copy is the copier's own. Times come last: what is written before would move them.
bool CopyStatus(const struct stat &status, int to) noexcept {
    if (::fchmod(to, status.st_mode & 0777) != 0) return false;
    const timespec times[] = {status.st_atim, status.st_mtim};
    return ::futimens(to, times) == 0;
}

bool CopyEverything(int from, const struct stat &status, int to) {
    return CopyBytes(from, to) && CopyAttributes(from, to) && CopyStatus(status, to);
}

} // namespace

int CopyFile(const std::string &source, const std::string &destination) {
    const TDescriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (!from.IsOpen() || ::fstat(from.Get(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    PartialCopy copy(destination);
    if (!copy.IsOpen() || !CopyEverything(from.Get(), status, copy.Descriptor())) return errno;
    return copy.GiveName(destination) ? 0 : errno;
}

int RemoveFile(const std::string &path) noexcept {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

bool HaveEqualBytes(const std::string &a, const std::string &b) {
    TFileIdentity of_a, of_b;
    const TDescriptor file_a = OpenRegularFile(a.c_str(), UINT64_MAX, &of_a);
    const TDescriptor file_b = OpenRegularFile(b.c_str(), UINT64_MAX, &of_b);
    if (!file_a.IsOpen() || !file_b.IsOpen() || of_a.size != of_b.size) return false;
    TBuffer bytes_a(kChunk), bytes_b(kChunk);
    for (uint64_t offset = 0; offset < of_a.size; offset += kChunk) {
        const TReadResult from_a = ReadFully(file_a.Get(), offset, bytes_a.Writable());
        const TReadResult from_b = ReadFully(file_b.Get(), offset, bytes_b.Writable());
        if (from_a.failed || from_b.failed || from_a.length != from_b.length) return false;
        if (!std::ranges::equal(bytes_a.View().first(from_a.length), bytes_b.View().first(from_b.length)))
            return false;
    }
    return true;
}

} // namespace vellum
