// SPDX-License-Identifier: MIT
// Enabling, disabling, unregistering.
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

class Changes : public ::testing::Test {
protected:
    Ref<const ValURL> AddFile(const std::string &name, const Bytes &bytes) {
        auto url = folder.Add(name, bytes);
        EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
        return url;
    }
    bool Disable(const Ref<const ValURL> &url) { return registry.DisableFont(url.Get(), kVLScopeProcess); }
    bool Enable(const Ref<const ValURL> &url) { return registry.EnableFont(url.Get(), kVLScopeProcess); }
    bool Unregister(const Ref<const ValURL> &url) {
        return registry.UnregisterFont(url.Get(), kVLScopeProcess);
    }
    std::vector<std::string> Names() { return Texts(registry.CopyAvailableFontNames(kVLScopeProcess)); }

    FontFolder folder;
    TLocalGlypharyImp registry;
};

TEST_F(Changes, ADisabledFontIsNeitherRegisteredNorEnabledUntilItComesBack) {
    const auto url = AddFile("a.ttf", MakeFont({"Foo"}));
    EXPECT_TRUE(Disable(url));
    EXPECT_FALSE(registry.IsFontRegistered(url.Get()));
    EXPECT_FALSE(registry.IsFontEnabled(url.Get()));
    EXPECT_TRUE(Enable(url));
    EXPECT_TRUE(registry.IsFontRegistered(url.Get()));
    EXPECT_TRUE(registry.IsFontEnabled(url.Get()));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Changes, AFragmentDisablesOneFaceOfAFile) {
    const auto url = AddFile("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto face = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=b-regular").Get()));
    EXPECT_TRUE(Disable(face));
    EXPECT_THAT(Names(), ElementsAre("A-Regular"));
    EXPECT_TRUE(Enable(face));
    EXPECT_THAT(Names(), ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(Changes, AFragmentThatFitsNoFaceSucceedsAndMovesNothing) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    const auto face = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=Other").Get()));
    EXPECT_TRUE(Disable(face));
    EXPECT_TRUE(registry.IsFontEnabled(url.Get()));
}

TEST_F(Changes, AVariationFragmentDisablesOneInstance) {
    const auto url = AddFile("v.ttf", MakeVariableFont({"V"}, {300, 700}));
    const auto bold = Adopt(ValURLCopyWithFragment(url.Get(), String("var:wght=700").Get()));
    const size_t before = Texts(registry.CopyAvailableFontURLs(kVLScopeProcess)).size();
    EXPECT_TRUE(Disable(bold));
    EXPECT_EQ(Texts(registry.CopyAvailableFontURLs(kVLScopeProcess)).size(), before - 1);
}

TEST_F(Changes, AnUnknownURLIsNeitherDisabledNorEnabled) {
    EXPECT_FALSE(Disable(folder.URLOf("none.ttf")));
    EXPECT_FALSE(Enable(folder.URLOf("none.ttf")));
}

TEST_F(Changes, EnablingAFontThatWasNeverDisabledSucceedsIfItWasThereBeforeTheIndex) {
    const auto early = AddFile("a.ttf", MakeFont({"A"}));
    EXPECT_TRUE(Enable(early)); // makes the index, filled with what is enabled
    const auto late = AddFile("b.ttf", MakeFont({"B"}));
    EXPECT_FALSE(Enable(late));
}

TEST_F(Changes, DisablingAnythingAtAllMakesTheIndexOfDisabledFonts) {
    const auto early = AddFile("a.ttf", MakeFont({"A"}));
    EXPECT_FALSE(Disable(folder.URLOf("none.ttf")));
    const auto late = AddFile("b.ttf", MakeFont({"B"}));
    EXPECT_TRUE(Enable(early));
    EXPECT_FALSE(Enable(late));
}

TEST_F(Changes, UnregisteringAnUnknownURLSucceedsAndCounts) {
    EXPECT_TRUE(Unregister(folder.URLOf("none.ttf")));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Changes, UnregisteringTakesAllFacesOfAFileWhateverTheFragment) {
    const auto url = AddFile("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto face = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=A-Regular").Get()));
    EXPECT_TRUE(Unregister(face));
    EXPECT_FALSE(registry.IsFontRegistered(url.Get()));
}

TEST_F(Changes, AnUnregisteredFileCanBeRegisteredAgain) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    Unregister(url);
    EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
}

TEST_F(Changes, ADisabledFontThatIsUnregisteredIsFoundNoMoreButKeepsItsReference) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    const FontReference reference = registry.GetFontReference(url.Get());
    Disable(url);
    Unregister(url);
    EXPECT_FALSE(Enable(url));
    EXPECT_TRUE(registry.GetPossiblyDisabledFont(reference));
}

TEST_F(Changes, ADisabledFileCanBeRegisteredAgainAndThenHasBothFaces) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    Disable(url);
    EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
    Enable(url);
    EXPECT_EQ(References(registry.GetIndex(kPathIndex)->CopyFontsForKey(url.Get())).size(), 2u);
}

TEST_F(Changes, BatchesAnswerTheURLsThatChanged) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    const auto none = folder.URLOf("none.ttf");
    const auto disabled = registry.DisableFonts(Array({none, url}).Get(), kVLScopeProcess);
    EXPECT_THAT(Texts(disabled), ElementsAre(TextOf(ValURLGetString(url.Get()))));
    EXPECT_FALSE(registry.DisableFonts(Array({none}).Get(), kVLScopeProcess));
    EXPECT_TRUE(registry.EnableFonts(Array({url}).Get(), kVLScopeProcess));
}

TEST_F(Changes, DirectoriesAreNotForARegisterInAProcess) {
    EXPECT_FALSE(
        registry.RegisterFontDirectory(FileURL(folder.Path()).Get(), nullptr, 0, 0, kVLScopeUser, false));
    EXPECT_FALSE(registry.UnregisterFontDirectory(FileURL(folder.Path()).Get(), kVLScopeUser));
}

} // namespace
} // namespace vellum::test
