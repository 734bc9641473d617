// SPDX-License-Identifier: MIT
// Those who have lost a service hear when it rings, and wait without looking.
#include "platform/port/doorbell.hpp"
#include "platform/port/service_address.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <thread>

namespace vellum::test {
namespace {

constexpr char kService[] = "com.orrery.Test";
constexpr std::chrono::milliseconds kMoment(5);
constexpr std::chrono::minutes kForEver(1); // what waits so long fails by the test's time limit

class Doorbells : public ::testing::Test {
protected:
    Doorbells() {
        ::chmod(runtime.Path().c_str(), 0700);
        ::setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1);
    }

    std::string MakeServicesFolder() const { return ServicesFolder(IfMissing::kMake); }

    TempDir runtime;
};

TEST_F(Doorbells, AreHeardByEverybodyWhoWaits) {
    MakeServicesFolder();
    Doorbell one(kService), other(kService);
    EXPECT_TRUE(one.IsOpen() && other.IsOpen());
    EXPECT_FALSE(one.Wait(kMoment));
    RingDoorbell(kService);
    EXPECT_TRUE(one.Wait(kForEver));
    EXPECT_TRUE(other.Wait(kForEver));
}

TEST_F(Doorbells, AreHeardOnceForEachRing) {
    MakeServicesFolder();
    Doorbell bell(kService);
    for (int i = 0; i < 3; ++i) {
        RingDoorbell(kService);
        EXPECT_TRUE(bell.Wait(kForEver));
        EXPECT_FALSE(bell.Wait(kMoment));
    }
}

TEST_F(Doorbells, AreNotHeardByWhoComesAfterwards) {
    MakeServicesFolder();
    const Doorbell former(kService); // whose pipe stays
    RingDoorbell(kService);
    Doorbell bell(kService);
    EXPECT_TRUE(bell.IsOpen());
    EXPECT_FALSE(bell.Wait(kMoment));
}

TEST_F(Doorbells, WakeWhoIsWaitingConcurrently) {
    MakeServicesFolder();
    Doorbell bell(kService);
    std::thread ringer([] { RingDoorbell(kService); });
    EXPECT_TRUE(bell.Wait(kForEver));
    ringer.join();
}

TEST_F(Doorbells, AreOfOneServiceAlone) {
    MakeServicesFolder();
    Doorbell bell(kService);
    RingDoorbell("com.orrery.Other");
    EXPECT_FALSE(bell.Wait(kMoment));
}

TEST_F(Doorbells, AreClosedWhereThereIsNoFolderAndForNamesThatLeadElsewhere) {
    EXPECT_FALSE(Doorbell(kService).IsOpen());
    MakeServicesFolder();
    for (const char *name : {"", ".hidden", "a/b"}) {
        EXPECT_FALSE(Doorbell(name).IsOpen()) << name;
        RingDoorbell(name);
    }
}

TEST_F(Doorbells, AreNoOtherFilesOfTheirName) {
    MakeServicesFolder();
    const std::string path = runtime.Write(std::string("vellum/") + kService + ".bell", "kept");
    EXPECT_FALSE(Doorbell(kService).IsOpen());
    RingDoorbell(kService);
    struct stat status;
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode) && status.st_size == 4);
}

} // namespace
} // namespace vellum::test
