// SPDX-License-Identifier: MIT
#include "platform/fs/volume_flags.hpp"

#include <gtest/gtest.h>
#include <linux/magic.h>

namespace vellum::test {
namespace {

TEST(VolumeFlags, TheRootVolumeIsLocalAndRoot) {
    EXPECT_EQ(GetVolumeFlags("/"), 0x600u);
}

TEST(VolumeFlags, AnotherLocalVolumeIsLocalAlone) {
    EXPECT_EQ(GetVolumeFlags("/proc"), 0x200u);
}

TEST(VolumeFlags, APathThatDoesNotExistHasNone) {
    EXPECT_EQ(GetVolumeFlags("/no/such/path"), 0u);
}

TEST(NetworkFileSystems, AreToldByTheirNumber) {
    for (const uint32_t magic :
         {0x6969u, 0x517Bu, 0xFF534D42u, 0xFE534D42u, 0x5346414Fu, 0x01021997u, 0x00C36400u, 0x0BD00BD0u})
        EXPECT_TRUE(IsNetworkFileSystem(magic, "")) << std::hex << magic;
    for (const uint32_t magic : {0xEF53u, 0x9123683Eu, 0x58465342u, 0x01021994u, 0x794C7630u})
        EXPECT_FALSE(IsNetworkFileSystem(magic, "")) << std::hex << magic;
}

TEST(NetworkFileSystems, BehindFuseAreToldByTheMountsType) {
    constexpr uint32_t kFuse = 0x65735546;
    EXPECT_TRUE(IsNetworkFileSystem(kFuse, "fuse.sshfs"));
    EXPECT_TRUE(IsNetworkFileSystem(kFuse, "fuse.rclone"));
    EXPECT_FALSE(IsNetworkFileSystem(kFuse, "fuseblk"));
    EXPECT_FALSE(IsNetworkFileSystem(kFuse, "fuse.ntfs"));
    EXPECT_FALSE(IsNetworkFileSystem(kFuse, ""));
    EXPECT_FALSE(IsNetworkFileSystem(0xEF53, "fuse.sshfs"));
}

} // namespace
} // namespace vellum::test
