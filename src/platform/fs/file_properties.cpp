// SPDX-License-Identifier: MIT
#include "platform/fs/file_properties.hpp"

#include "platform/fs/file_fork.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace vellum {

namespace {

constexpr unsigned kAsked = STATX_TYPE | STATX_INO | STATX_SIZE | STATX_MTIME | STATX_BTIME;

TFileKind KindOf(const struct statx &status) noexcept {
    if (S_ISREG(status.stx_mode)) return TFileKind::kRegular;
    return S_ISDIR(status.stx_mode) ? TFileKind::kFolder : TFileKind::kOther;
}

TFileTime TimeOf(const struct statx_timestamp &time) noexcept {
    return {time.tv_sec, time.tv_nsec};
}

std::string WithoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

} // namespace

std::optional<TFileProperties> ReadFileProperties(const std::string &path) {
    struct statx status;
    if (!path.starts_with('/') ||
        statx(AT_FDCWD, path.c_str(), AT_STATX_SYNC_AS_STAT, kAsked, &status) != 0)
        return std::nullopt;
    const std::string plain = WithoutTrailingSlashes(path);
    const size_t name = plain.rfind('/') + 1;
    TFileProperties properties;
    properties.name = plain.substr(name);
    properties.parent = WithoutTrailingSlashes(plain.substr(0, name));
    properties.kind = KindOf(status);
    properties.device = makedev(status.stx_dev_major, status.stx_dev_minor);
    properties.inode = status.stx_ino;
    properties.modified = TimeOf(status.stx_mtime);
    if (status.stx_mask & STATX_BTIME) properties.created = TimeOf(status.stx_btime);
    if (properties.kind == TFileKind::kRegular) {
        properties.size = status.stx_size;
        properties.fork_size = ForkSize(plain);
    }
    return properties;
}

} // namespace vellum
