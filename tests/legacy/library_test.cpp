// SPDX-License-Identifier: MIT
// The way from the library's interface to fontconfig, through the bundle in the framework that the
// environment names.
#include "service_fixture.hpp"

#include <cstdlib>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LibraryAndService : public LegacyTest {
protected:
    LibraryAndService() {
        const std::string bundle = VELLUM_FOUNT;
        const std::string resources = bundle.substr(0, bundle.rfind('/')) + "/Resources";
        setenv("VL_FRAMEWORK_RESOURCES_PATH", resources.c_str(), 1);
    }
};

TEST_F(LibraryAndService, HaveAFontFoundThatAnotherRegisterNeverHad) {
    const auto url = FileURL(WriteFont("a.ttf", "Ours"));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    VLUnregisterFont(url.Get(), 0, kVLScopeSession);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_EQ(VLGetScopeForFont(url.Get()), VLScope{kVLScopeProcess});
}

TEST_F(LibraryAndService, HaveAFontFoundThatCouldNotBeReadAtFirstUntilItIsUnregistered) {
    const auto url = FileURL(fonts_.Write("a.ttf", "half of it"));
    ASSERT_FALSE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    WriteFont("a.ttf", "Ours");
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    ASSERT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(LibraryAndService, HaveAFolderGoAsAWhole) {
    const auto url = FileURL(WriteFont("folder/a.ttf", "Ours"));
    const auto folder = FileURL(fonts_.File("folder"));
    const void *const item = folder.Get();
    const auto folders = Adopt(ValArrayCreate(&item, 1));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    VLDisableFonts(folders.Get(), 0, kVLScopeProcess);
    EXPECT_THAT(Fonts(), IsEmpty());
    VLEnableFonts(folders.Get(), 0, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    ASSERT_TRUE(VLUnregisterFonts(folders.Get(), 0, kVLScopeProcess, nullptr));
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(LibraryAndService, HaveAFontFoundByFontconfigAsLongAsItIsRegistered) {
    const auto url = FileURL(WriteFont("a.ttf", "Ours"));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    ASSERT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), IsEmpty());
}

} // namespace
} // namespace vellum::test
