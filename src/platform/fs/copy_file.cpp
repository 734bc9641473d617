// SPDX-License-Identifier: MIT
#include "platform/fs/copy_file.hpp"

#include "platform/fs/file.hpp"
#include "platform/fs/file_fork.hpp"

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
#include <utility>
#include <vector>

namespace vellum {

namespace {

constexpr size_t kChunk = size_t{64} << 10;

// The copy in the making: removed again unless it gets its name.
class PartialCopy {
public:
    PartialCopy() noexcept = default;
    explicit PartialCopy(const std::string &destination) : destination_(destination) {
        const size_t name = destination.rfind('/') + 1;
        path_ = destination.substr(0, name) + ".vellum-copy-XXXXXX";
        descriptor_ = TDescriptor(::mkostemp(path_.data(), O_CLOEXEC));
    }
    PartialCopy(PartialCopy &&other) noexcept { *this = std::move(other); }
    PartialCopy &operator=(PartialCopy &&other) noexcept {
        std::swap(destination_, other.destination_);
        std::swap(path_, other.path_);
        std::swap(descriptor_, other.descriptor_);
        std::swap(is_named_, other.is_named_);
        return *this;
    }
    ~PartialCopy() {
        if (descriptor_.IsOpen() && !is_named_) ::unlink(path_.c_str());
    }

    bool IsOpen() const noexcept { return descriptor_.IsOpen(); }
    int Descriptor() const noexcept { return descriptor_.Get(); }

    bool GetName() noexcept {
        is_named_ = ::rename(path_.c_str(), destination_.c_str()) == 0;
        return is_named_;
    }

private:
    std::string destination_, path_;
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
        if (kForkAttribute != std::string_view(&*name) && !CopyAttribute(from, to, &*name)) return false;
    return true;
}

// The copy is the copier's own. Times come last: what is written before would move them.
bool CopyStatus(const struct stat &status, int to) noexcept {
    if (::fchmod(to, status.st_mode & 0777) != 0) return false;
    const timespec times[] = {status.st_atim, status.st_mtim};
    return ::futimens(to, times) == 0;
}

// The file of a fork in the making, its folder made; closed, with errno set, when that fails.
PartialCopy StartForkFile(const std::string &destination) {
    const std::string path = ForkFileOf(destination);
    if (::mkdir(path.substr(0, path.rfind('/')).c_str(), 0777) != 0 && errno != EEXIST)
        return PartialCopy();
    return PartialCopy(path);
}

// The fork that is an attribute: as one of the copy's or, where it can't be, as a file.
bool CopyForkAttribute(const std::vector<char> &fork, int to, const std::string &destination,
                       PartialCopy &file) {
    if (::fsetxattr(to, kForkAttribute, fork.data(), fork.size(), 0) == 0) return true;
    file = StartForkFile(destination);
    return file.IsOpen() && WriteFully(file.Descriptor(), fork.data(), fork.size());
}

// Failures that mean that there is no such file, and can't be.
bool IsAbsence(int error) noexcept {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

// The fork that is a file.
bool CopyForkFile(const std::string &source, const std::string &destination, PartialCopy &file) {
    const TDescriptor from(
        ::open(ForkFileOf(source).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (!from.IsOpen()) return IsAbsence(errno);
    if (::fstat(from.Get(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) return true;
    file = StartForkFile(destination);
    return file.IsOpen() && CopyBytes(from.Get(), file.Descriptor());
}

// The second fork of a file, in `file` if it is not in the copy; false with errno set.
bool CopyFork(int from, const std::string &source, int to, const std::string &destination,
              PartialCopy &file) {
    std::vector<char> fork;
    const auto get = [from](char *out, size_t size) {
        return ::fgetxattr(from, kForkAttribute, out, size);
    };
    if (ReadSized(fork, get) && !fork.empty()) return CopyForkAttribute(fork, to, destination, file);
    return CopyForkFile(source, destination, file);
}

// The fork of what lay there before is not the copy's.
bool RemoveForkFile(const std::string &destination) {
    const int error = RemoveFile(ForkFileOf(destination));
    errno = error;
    return error == 0 || IsAbsence(error);
}

} // namespace

int CopyFile(const std::string &source, const std::string &destination) {
    const TDescriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (!from.IsOpen() || ::fstat(from.Get(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    PartialCopy copy(destination), fork;
    if (!copy.IsOpen() || !CopyBytes(from.Get(), copy.Descriptor()) ||
        !CopyAttributes(from.Get(), copy.Descriptor()) ||
        !CopyFork(from.Get(), source, copy.Descriptor(), destination, fork) ||
        !CopyStatus(status, copy.Descriptor()) ||
        (fork.IsOpen() && !CopyStatus(status, fork.Descriptor())) || !copy.GetName())
        return errno;
    return (fork.IsOpen() ? fork.GetName() : RemoveForkFile(destination)) ? 0 : errno;
}

int RemoveFile(const std::string &path) noexcept {
    return ::unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

bool AreSameFile(const std::string &a, const std::string &b) noexcept {
    struct stat of_a, of_b;
    return ::stat(a.c_str(), &of_a) == 0 && ::stat(b.c_str(), &of_b) == 0 && of_a.st_dev == of_b.st_dev &&
           of_a.st_ino == of_b.st_ino;
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
