// SPDX-License-Identifier: MIT
// What kind of volume a path lies on.
#pragma once

#include <cstdint>
#include <string_view>

namespace vellum {

enum : uint32_t {
    kVolumeIsLocal = 0x200,
    kVolumeIsRoot = 0x400,
};

// The flags of the volume that holds `path`: local unless the file system is one that lives on
// another machine, root when it is the volume of "/". A network volume has none; any failure gives 0.
uint32_t GetVolumeFlags(const char *path) noexcept;

// True when files of such a file system live on another machine: `magic` is statfs's number,
// `mount_type` the name that the mount carries, read for FUSE alone.
bool IsNetworkFileSystem(uint32_t magic, std::string_view mount_type) noexcept;

} // namespace vellum
