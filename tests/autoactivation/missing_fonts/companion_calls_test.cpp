// SPDX-License-Identifier: MIT
// What goes on in a program while its user is asked.
#include "machine.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

// The user may take minutes, and a fork waits for every thread that is inside the library.
TEST(UsersWhoAreAsked, HoldUpNoForkOfOtherThreads) {
    Machine machine;
    machine.Files().Add("foo.ttf", NamedFace{"Foo"});
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    machine.InstallCompanion(VELLUM_FORKING_COMPANION);
    machine.Start();
    Application application("org.example.App");
    EXPECT_EQ(application.Do("find Foo-Regular"), machine.Files().File("foo.ttf"));
}

} // namespace
} // namespace vellum::test
