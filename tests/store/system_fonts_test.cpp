// SPDX-License-Identifier: MIT
#include "store/local_glyphary_imp.hpp"
#include "store/system_fonts.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

// A font tree of the test's own, which the environment names.
class SystemFonts : public ::testing::Test {
protected:
    SystemFonts() { ::setenv("VELLUM_FONTS_ROOT", root.Path().c_str(), 1); }

    std::vector<std::string> RegisteredNames() {
        TLocalGlypharyImp registry;
        RegisterSystemFontsLocally(registry);
        return Texts(registry.CopyAvailableFontNames(kVLScopeProcess));
    }

    FontFolder root;
};

TEST_F(SystemFonts, ComeFromTheTwoFoldersUnderTheRootWithTheirDoubledSlash) {
    EXPECT_THAT(SystemFontDirectories(),
                ElementsAre(root.Path() + "//usr/share/fonts", root.Path() + "//usr/local/share/fonts"));
}

TEST_F(SystemFonts, AreReadFlatAndInTheOrderOfTheirNames) {
    root.Add("usr/share/fonts/b.ttf", NamedFace{"B"});
    root.Add("usr/share/fonts/a.ttf", NamedFace{"A"});
    root.Add("usr/share/fonts/below/c.ttf", NamedFace{"C"});
    root.Add("usr/local/share/fonts/d.ttf", NamedFace{"D"});
    EXPECT_THAT(RegisteredNames(), ElementsAre("A-Regular", "B-Regular", "D-Regular"));
}

TEST_F(SystemFonts, FilesThatAreNoFontsArePassedOver) {
    root.Write("usr/share/fonts/README", "no font");
    root.Add("usr/share/fonts/a.ttf", NamedFace{"A"});
    EXPECT_THAT(RegisteredNames(), ElementsAre("A-Regular"));
}

TEST_F(SystemFonts, KeepTheDoubledSlashInTheirURLs) {
    root.Add("usr/share/fonts/a.ttf", NamedFace{"A"});
    TLocalGlypharyImp registry;
    RegisterSystemFontsLocally(registry);
    EXPECT_THAT(Texts(registry.CopyAvailableFontURLs(kVLScopeProcess)),
                ElementsAre("file://" + root.Path() + "//usr/share/fonts/a.ttf"));
    EXPECT_TRUE(registry.IsFontRegistered(root.URLOf("usr/share/fonts/a.ttf").Get()));
}

TEST_F(SystemFonts, ARootThatCanNotBeOpenedChangesNothing) {
    ::setenv("VELLUM_FONTS_ROOT", root.File("none").c_str(), 1);
    EXPECT_EQ(SystemFontDirectories().front(), "/usr/share/fonts");
    EXPECT_THAT(SystemFontDirectories(), Contains("/usr/local/share/fonts"));
}

} // namespace
} // namespace vellum::test
