// SPDX-License-Identifier: MIT
// Where a session finds the framework of the legacy font service and its resources.
#include "ipc/session/session_manager.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *kNone = "(null)";

struct Paths {
    std::string framework;
    std::string resources;
    bool operator==(const Paths &) const = default;
};

void PrintTo(const Paths &paths, std::ostream *out) {
    *out << "framework " << paths.framework << ", resources " << paths.resources;
}

class FrameworkPaths : public ::testing::Test {
protected:
    // With a framework of its own as the one that is built in.
    Paths Find(const char *resources) const { return Find(resources, framework_); }
    Paths Find(const std::string &resources) const { return Find(resources.c_str()); }

    static Paths Find(const char *resources, const std::string &built_in) {
        const TSessionManagerImp session({nullptr, resources, built_in.c_str()});
        return {TextOf(session.GetFrameworkDirPath()), TextOf(session.GetFrameworkResourcesDirPath())};
    }

    const TempDir folder_;
    const std::string real_ = fs::canonical(folder_.Path());
    const std::string framework_ = folder_.MakeFolder("lib/Fount.framework");
    const std::string english_ = folder_.MakeFolder("lib/Fount.framework/Resources/en");
    const Paths built_in_{framework_, real_ + "/lib/Fount.framework/Resources"};
};

TEST_F(FrameworkPaths, AreTheBuiltInOnesWithoutTheVariable) {
    EXPECT_EQ(Find(nullptr), built_in_);
    EXPECT_EQ(Find(""), built_in_);
}

TEST_F(FrameworkPaths, AreWhereTheVariableSays) {
    const std::string resources = folder_.MakeFolder("other/Fount.framework/Versions/A/Resources");
    EXPECT_EQ(Find(resources), (Paths{folder_.File("other/Fount.framework"), resources}));
}

TEST_F(FrameworkPaths, MayBeTheFrameworkItself) {
    const std::string framework = folder_.MakeFolder("other/Fount.framework");
    EXPECT_EQ(Find(framework), (Paths{framework, framework}));
    EXPECT_EQ(Find(framework + "/"), (Paths{framework, framework + "/"}));
}

TEST_F(FrameworkPaths, TakeTheFirstPlaceOfTheFrameworksName) {
    const std::string resources = folder_.MakeFolder("My Fount.framework.old/Fount.framework/Resources");
    EXPECT_EQ(Find(resources), (Paths{folder_.File("My Fount.framework"), resources}));
}

TEST_F(FrameworkPaths, KeepTheBuiltInFrameworkWhenTheVariableNamesNone) {
    const std::string resources = folder_.MakeFolder("resources");
    EXPECT_EQ(Find(resources), (Paths{framework_, resources}));
}

TEST_F(FrameworkPaths, KeepBytesThatAreNoText) {
    const std::string resources = folder_.MakeFolder("\xFF/Fount.framework/Resources");
    EXPECT_EQ(Find(resources), (Paths{folder_.File("\xFF/Fount.framework"), resources}));
}

TEST_F(FrameworkPaths, IgnoreAVariableThatNamesNoFolder) {
    EXPECT_EQ(Find(folder_.Write("other/Fount.framework/file", "")), built_in_);
    EXPECT_EQ(Find(folder_.File("other/Fount.framework/none")), built_in_);
    EXPECT_EQ(Find(folder_.File("other/Fount.framework/file/")), built_in_);
}

TEST_F(FrameworkPaths, IgnoreAVariableThatNamesALinkToAFolder) {
    folder_.MakeFolder("other/Fount.framework/Resources");
    fs::create_directory_symlink("Resources", folder_.File("other/Fount.framework/link"));
    EXPECT_EQ(Find(folder_.File("other/Fount.framework/link")), built_in_);
    EXPECT_EQ(Find(folder_.File("other/Fount.framework/link/")), built_in_);
    EXPECT_EQ(Find(folder_.File("other/Fount.framework/link//")), built_in_);
}

TEST_F(FrameworkPaths, FollowLinksOnTheWayToTheVariablesFolder) {
    folder_.MakeFolder("other/Fount.framework/Resources");
    fs::create_directory_symlink("other", folder_.File("way"));
    const std::string resources = folder_.File("way/Fount.framework/Resources");
    EXPECT_EQ(Find(resources), (Paths{folder_.File("way/Fount.framework"), resources}));
}

TEST_F(FrameworkPaths, LeadToTheRealFolderOfTheBuiltInResources) {
    folder_.MakeFolder("share/vellum/en");
    const std::string framework = folder_.MakeFolder("installed/Fount.framework");
    fs::create_directory_symlink("../../share/vellum", framework + "/Resources");
    EXPECT_EQ(Find(nullptr, framework), (Paths{framework, real_ + "/share/vellum"}));
}

TEST_F(FrameworkPaths, HaveNoResourcesWithoutAnEnglishFolder) {
    fs::remove_all(english_);
    EXPECT_EQ(Find(nullptr), (Paths{framework_, kNone}));
    folder_.Write("lib/Fount.framework/Resources/en", "a file");
    EXPECT_EQ(Find(nullptr), (Paths{framework_, kNone}));
}

TEST_F(FrameworkPaths, HaveNoResourcesWithoutAFramework) {
    const std::string missing = folder_.File("missing/Fount.framework");
    EXPECT_EQ(Find(nullptr, missing), (Paths{missing, kNone}));
    fs::create_directory_symlink("nowhere", folder_.File("dangling"));
    EXPECT_EQ(Find(nullptr, folder_.File("dangling")), (Paths{folder_.File("dangling"), kNone}));
}

TEST_F(FrameworkPaths, AreNoneWhereNothingIsNamed) {
    EXPECT_EQ(Find(nullptr, ""), (Paths{kNone, kNone}));
    const TSessionManagerImp session({nullptr, nullptr, nullptr});
    EXPECT_EQ(session.GetFrameworkDirPath(), nullptr);
    EXPECT_EQ(session.GetFrameworkResourcesDirPath(), nullptr);
}

} // namespace
} // namespace vellum::test
