// SPDX-License-Identifier: MIT
// What is searched for, what is taken of it, and what was refused.
#include "autoactivation/auto_activation_manager.hpp"
#include "platform/fs/volume_root.hpp"
#include "support/named_font.hpp"
#include "support/resource_fork.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

using Manager = TAutoActivationManager;

Ref<const ValDictionary> RequestFor(const std::string &name) {
    const void *key = kVLFontPropertyName;
    const auto text = String(name);
    const void *value = text.Get();
    return Adopt(ValDictionaryCreate(&key, &value, 1));
}

TEST(RefusedRequests, AreTheRequestsThatAreEqualToOneThatWasRefused) {
    EXPECT_FALSE(Manager::IsRequestDisallowed(RequestFor("A").Get()));
    Manager::DisallowRequestInTheFuture(RequestFor("A").Get());
    Manager::DisallowRequestInTheFuture(RequestFor("B").Get());
    Manager::DisallowRequestInTheFuture(RequestFor("A").Get());
    EXPECT_TRUE(Manager::IsRequestDisallowed(RequestFor("A").Get()));
    EXPECT_TRUE(Manager::IsRequestDisallowed(RequestFor("B").Get()));
    EXPECT_FALSE(Manager::IsRequestDisallowed(RequestFor("a").Get()));
    EXPECT_FALSE(Manager::IsRequestDisallowed(nullptr));
    Manager::DisallowRequestInTheFuture(nullptr);
}

// One that loses the race is asked about once more, and refused again.
TEST(RefusedRequests, ConcurrentThreadsAddWithoutLosingWhatWasThere) {
    Manager::DisallowRequestInTheFuture(RequestFor("kept").Get());
    OnEveryThread([](size_t thread) {
        for (int n = 0; n < 50; ++n) {
            const auto request = RequestFor(std::to_string(thread) + "/" + std::to_string(n));
            while (!Manager::IsRequestDisallowed(request.Get()))
                Manager::DisallowRequestInTheFuture(request.Get());
            EXPECT_TRUE(Manager::IsRequestDisallowed(RequestFor("kept").Get()));
        }
    });
    for (size_t thread = 0; thread < kThreads; ++thread)
        EXPECT_TRUE(Manager::IsRequestDisallowed(RequestFor(std::to_string(thread) + "/0").Get()));
}

TEST(SearchedNames, AreNotEmptyAndNeitherBeginNorEndWithASpace) {
    for (const ValString *key : {kVLFontPropertyName, kVLFontPropertyFamilyName,
                                 kVLFontPropertySubfamilyName, kVLFontPropertyFullName}) {
        EXPECT_FALSE(Manager::IsValidNameToQuery(nullptr, key));
        for (const char *name : {"", " ", " A", "A ", " A "})
            EXPECT_FALSE(Manager::IsValidNameToQuery(String(name).Get(), key)) << name;
        EXPECT_TRUE(Manager::IsValidNameToQuery(String("A").Get(), key));
        EXPECT_TRUE(Manager::IsValidNameToQuery(String("A-Bold").Get(), key));
    }
}

TEST(SearchedNames, AreOfPrintableCharactersWithoutDelimitersWhenTheyArePostScriptNames) {
    const auto valid = [](const std::string &name, const ValString *key) {
        return Manager::IsValidNameToQuery(String(name).Get(), key);
    };
    for (int c = 1; c < 128; ++c) {
        const std::string name = std::string("A") + static_cast<char>(c) + "B";
        const bool is_delimiter = std::string_view("{}<>[]()/%\"").find(name[1]) != std::string_view::npos;
        EXPECT_EQ(valid(name, kVLFontPropertyName), c >= 33 && c <= 126 && !is_delimiter) << c;
        EXPECT_TRUE(valid(name, kVLFontPropertyFamilyName)) << c;
    }
    EXPECT_FALSE(valid("Ä", kVLFontPropertyName));
    EXPECT_TRUE(valid("Ä \"B\"", kVLFontPropertyFullName));
    // The key is told by its text.
    EXPECT_FALSE(valid("A B", String(TextOf(kVLFontPropertyName)).Get()));
}

class ActivatedFiles : public ::testing::Test {
protected:
    bool IsValid(const std::string &name) const {
        return Manager::IsValidFileForAutoActivation(FileURL(folder.File(name)).Get());
    }
    FontFolder folder;
};

TEST_F(ActivatedFiles, LieInFoldersThatNobodyMarked) {
    folder.Add("a/a.ttf", MakeFont({"A"}));
    folder.Add("a/b/b.ttf", MakeFont({"B"}));
    EXPECT_TRUE(IsValid("a/a.ttf"));
    EXPECT_TRUE(IsValid("a/b/b.ttf"));
    folder.Write("a/.FountDoNotAutoActivate", "");
    EXPECT_FALSE(IsValid("a/a.ttf"));
    EXPECT_TRUE(IsValid("a/b/b.ttf"));
    std::filesystem::create_symlink("nowhere", folder.File("a/b/.FountDoNotAutoActivate"));
    EXPECT_FALSE(IsValid("a/b/b.ttf"));
}

TEST_F(ActivatedFiles, AreFilesThatAreThere) {
    EXPECT_FALSE(IsValid("absent.ttf"));
    EXPECT_FALSE(Manager::IsValidFileForAutoActivation(nullptr));
    EXPECT_FALSE(Manager::IsValidFileForAutoActivation(MakeURL("https://example.org/a.ttf").Get()));
}

TEST_F(ActivatedFiles, AreNoPrintersFonts) {
    folder.Write("Outline", "");
    folder.Write("Other", "");
    folder.Write(".rsrc/Outline", ResourceFork({"POST"}));
    EXPECT_FALSE(IsValid("Outline"));
    EXPECT_TRUE(IsValid("Other"));
}

// A volume of the test's own, which nobody else sees and which goes away with it.
TEST_F(ActivatedFiles, LieOnVolumesThatNobodyMarked) {
    const std::string volume = folder.MakeFolder("volume");
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", volume.c_str(), "tmpfs", 0, nullptr) != 0)
        GTEST_SKIP() << "this user may not mount volumes";
    folder.Add("volume/deep/in/a.ttf", MakeFont({"A"}));
    folder.Add("b.ttf", MakeFont({"B"}));
    EXPECT_EQ(VolumeRoot(folder.File("volume/deep/in/a.ttf")), std::filesystem::canonical(volume));
    EXPECT_TRUE(IsValid("volume/deep/in/a.ttf"));
    folder.Write("volume/.FountDoNotAutoActivate", "");
    EXPECT_FALSE(IsValid("volume/deep/in/a.ttf"));
    EXPECT_TRUE(IsValid("b.ttf"));
    std::filesystem::create_symlink(folder.File("volume/deep/in/a.ttf"), folder.File("link.ttf"));
    EXPECT_FALSE(IsValid("link.ttf"));
    EXPECT_EQ(::umount(volume.c_str()), 0);
}

} // namespace
} // namespace vellum::test
