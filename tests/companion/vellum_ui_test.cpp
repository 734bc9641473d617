// SPDX-License-Identifier: MIT
// The library's way to the companion. It is looked for once in a process, so that each test has its own.
#include "autoactivation/vellum_ui.hpp"
#include "support/framework_resources.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

std::string Confirm(const ValArray *fonts) {
    const auto request = Adopt(ValDictionaryCreate(nullptr, nullptr, 0));
    bool remembers = true;
    const TVellumUI companion;
    EXPECT_TRUE(companion.ApplicationIsReadyForAutoActivation());
    const auto confirmed =
        companion.CopyConfirmedFontsForAutoActivationRequest(request.Get(), fonts, remembers);
    return (confirmed ? std::to_string(ValArrayGetCount(confirmed.Get())) : "none") +
           (remembers ? "+" : "");
}

TEST(CompanionLibrary, CountsAsRefusingWhereThereIsNone) {
    const FrameworkResources resources;
    EXPECT_EQ(Confirm(Array({FileURL("/a.ttf")}).Get()), "none");
}

TEST(CompanionLibrary, CountsAsRefusingWhereItIsNoLibrary) {
    const FrameworkResources resources;
    resources.Folder().Write("libGlypharyUI.so", "no library");
    EXPECT_EQ(Confirm(Array({FileURL("/a.ttf")}).Get()), "none");
}

TEST(CompanionLibrary, IsNotLoadedFromARelativeFolder) {
    const TempDir folder;
    folder.MakeFolder("resources");
    std::filesystem::copy(VELLUM_COMPANION_UNDER_TEST, folder.File("resources/libGlypharyUI.so"));
    std::filesystem::current_path(folder.Path());
    ::setenv("VL_FRAMEWORK_RESOURCES_PATH", "resources", 1);
    const TVellumUIImp companion;
    EXPECT_FALSE(companion.copy_confirmed_fonts);
}

TEST(CompanionLibrary, HasItsFunctionsByName) {
    const FrameworkResources resources;
    std::filesystem::create_symlink(VELLUM_COMPANION_UNDER_TEST,
                                    resources.Folder().File("libGlypharyUI.so"));
    const TVellumUIImp companion;
    EXPECT_TRUE(companion.copy_confirmed_fonts);
    EXPECT_TRUE(companion.warn_of_guarded_fonts);
    EXPECT_TRUE(companion.confirm_override);
}

TEST(CompanionLibrary, PassesQuestionsOnAndAnswersBack) {
    const FrameworkResources resources;
    std::filesystem::create_symlink(VELLUM_COMPANION_UNDER_TEST,
                                    resources.Folder().File("libGlypharyUI.so"));
    const TempDir home;
    home.Write("answer", "echo always\n");
    ::setenv("HOME", home.Path().c_str(), 1);
    ::setenv("DISPLAY", ":4711", 1);
    EXPECT_EQ(Confirm(Array({FileURL("/a.ttf"), FileURL("/b.ttf")}).Get()), "2+");
    home.Write("answer", "echo never\n");
    EXPECT_EQ(Confirm(Array({FileURL("/a.ttf")}).Get()), "none+");
    EXPECT_EQ(Confirm(Array({}).Get()), "none");
}

} // namespace
} // namespace vellum::test
