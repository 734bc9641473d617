// SPDX-License-Identifier: MIT
#include "platform/app/main_bundle.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace vellum::test {
namespace {

constexpr char kInfo[] = "<vlist version=\"1.0\"><dict><key>Name</key><string>App</string></dict></vlist>";

std::string NameOf(const MainBundle &bundle) {
    return TextOf(ValDictionaryGetValue(bundle.info.Get(), String("Name").Get()));
}

TEST(MainBundles, AreTheNearestFolderAtOrAboveTheExecutable) {
    const TempDir folder;
    folder.Write("App/Info.vlist", kInfo);
    folder.MakeFolder("App/bin/deep");
    const auto bundle = MainBundle::Of(folder.File("App/bin/deep/program"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->folder, folder.File("App"));
    EXPECT_EQ(NameOf(*bundle), "App");

    folder.Write("App/bin/Info.vlist", "<vlist version=\"1.0\"><dict/></vlist>");
    EXPECT_EQ(MainBundle::Of(folder.File("App/bin/deep/program"))->folder, folder.File("App/bin"));
    EXPECT_EQ(MainBundle::Of(folder.File("App/program"))->folder, folder.File("App"));
}

TEST(MainBundles, AreNoneWithoutTheFile) {
    const TempDir folder;
    EXPECT_FALSE(MainBundle::Of(folder.File("program")));
    EXPECT_FALSE(MainBundle::Of(""));
    EXPECT_FALSE(MainBundle::Of("program"));
}

TEST(MainBundles, AreNoneWhereTheFileIsNotADictionary) {
    const TempDir folder;
    folder.Write("Info.vlist", "<vlist version=\"1.0\"><array/></vlist>");
    EXPECT_FALSE(MainBundle::Of(folder.File("program")));
    folder.Write("Info.vlist", "not a list");
    EXPECT_FALSE(MainBundle::Of(folder.File("program")));
}

// Anybody may put a file into a folder for all, such as /tmp.
TEST(MainBundles, AreNotBelievedWhenTheFileBelongsToSomebodyElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
    const TempDir folder;
    const std::string path = folder.Write("Info.vlist", kInfo);
    EXPECT_TRUE(MainBundle::Of(folder.File("program")));
    ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    EXPECT_FALSE(MainBundle::Of(folder.File("program")));
}

TEST(MainBundles, AreNotBelievedWhenEverybodyMayWriteToTheFile) {
    const TempDir folder;
    const std::string path = folder.Write("Info.vlist", kInfo);
    ASSERT_EQ(::chmod(path.c_str(), 0646), 0);
    EXPECT_FALSE(MainBundle::Of(folder.File("program")));
    ASSERT_EQ(::chmod(path.c_str(), 0664), 0);
    EXPECT_TRUE(MainBundle::Of(folder.File("program")));
}

TEST(MainBundles, HaveResources) {
    const TempDir folder;
    folder.Write("Info.vlist", kInfo);
    const auto bundle = MainBundle::Of(folder.File("program"));
    EXPECT_EQ(bundle->ResourcePath(""), "");
    folder.Write("Resources/Fonts/a.ttf", "x");
    EXPECT_EQ(bundle->ResourcePath(""), folder.File("Resources"));
    EXPECT_EQ(bundle->ResourcePath("Fonts"), folder.File("Resources/Fonts"));
    EXPECT_EQ(bundle->ResourcePath("Other"), "");
}

} // namespace
} // namespace vellum::test
