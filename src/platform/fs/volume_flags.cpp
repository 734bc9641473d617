// SPDX-License-Identifier: MIT
#include "platform/fs/volume_flags.hpp"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace vellum {

namespace {

// statfs numbers of file systems that live on another machine. Those without a name in
// <linux/magic.h> carry the one that their kernel source gives them.
constexpr uint32_t kNetworkFileSystems[] = {
    NFS_SUPER_MAGIC, SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, AFS_SUPER_MAGIC,
    AFS_FS_MAGIC,    CODA_SUPER_MAGIC, NCP_SUPER_MAGIC,  V9FS_MAGIC,       CEPH_SUPER_MAGIC,
    0x0BD00BD0, // Lustre
};

constexpr uint32_t kFuseMagic = 0x65735546;

// Programs behind FUSE whose files lie on another machine, by the name that the mount gives.
constexpr std::string_view kRemoteFuse[] = {"fuse.sshfs",
                                            "fuse.s3fs",
                                            "fuse.davfs2",
                                            "fuse.gvfsd-fuse",
                                            "fuse.glusterfs",
                                            "fuse.rclone",
                                            "fuse.curlftpfs",
                                            "fuse.cephfs",
                                            "fuse.ceph-fuse",
                                            "fuse.juicefs",
                                            "fuse.google-drive-ocamlfuse"};

// The type of the mount with a device number, from the kernel's list of mounts; empty if unknown.
// A line reads: id parent major:minor root mount-point options [fields] - type source options.
std::string MountType(dev_t device) {
    const std::string wanted =
        " " + std::to_string(major(device)) + ":" + std::to_string(minor(device)) + " ";
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        if (line.find(wanted) == std::string::npos) continue;
        const size_t dash = line.find(" - ");
        if (dash == std::string::npos) continue;
        return line.substr(dash + 3, line.find(' ', dash + 3) - dash - 3);
    }
    return {};
}

} // namespace

bool IsNetworkFileSystem(uint32_t magic, std::string_view mount_type) noexcept {
    if (magic == kFuseMagic) return std::ranges::find(kRemoteFuse, mount_type) != std::end(kRemoteFuse);
    return std::ranges::find(kNetworkFileSystems, magic) != std::end(kNetworkFileSystems);
}

uint32_t GetVolumeFlags(const char *path) noexcept {
    try {
        struct statfs file_system;
        struct stat file, root;
        if (::statfs(path, &file_system) != 0 || ::stat(path, &file) != 0 || ::stat("/", &root) != 0)
            return 0;
        const auto magic = static_cast<uint32_t>(file_system.f_type);
        if (IsNetworkFileSystem(magic, magic == kFuseMagic ? MountType(file.st_dev) : "")) return 0;
        return file.st_dev == root.st_dev ? kVolumeIsLocal | kVolumeIsRoot : kVolumeIsLocal;
    } catch (...) { // out of memory while reading the list of mounts
        return 0;
    }
}

} // namespace vellum
