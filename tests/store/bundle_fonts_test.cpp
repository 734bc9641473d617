// SPDX-License-Identifier: MIT
// The fonts that a program ships in its bundle.
#include "frame/handles/glyphary.hpp"
#include "store/bundle_fonts.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <filesystem>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// A register that writes down what is registered: the files' names, "+" between those of one batch, with
// the flags and the scope.
class RecordingRegister final : public TGlypharyHandle<TLocalGlypharyImp> {
public:
    bool RegisterFont(const ValURL *url, const ValDictionary *, VLFontFlags flags,
                      VLScope scope) const override {
        calls.push_back("one " + NameOf(url) + Asked(flags, scope));
        return true;
    }
    bool RegisterFonts(const ValArray *urls, const ValDictionary *, VLFontFlags flags, VLScope scope,
                       ErrorArray) const override {
        std::string names;
        for (size_t i = 0; i < ValArrayGetCount(urls); ++i)
            names += (i > 0 ? "+" : "") + NameOf(static_cast<const ValURL *>(ValArrayGetValue(urls, i)));
        calls.push_back("batch " + names + Asked(flags, scope));
        return true;
    }

    mutable std::vector<std::string> calls;

private:
    const TLocalGlypharyImp &Current() const override { return register_; }
    static std::string NameOf(const ValURL *url) {
        return std::filesystem::path(TextOf(ValURLGetString(url))).filename();
    }
    static std::string Asked(VLFontFlags flags, VLScope scope) {
        return " flags " + std::to_string(flags) + " scope " + std::to_string(scope);
    }

    TLocalGlypharyImp register_;
};

class BundleFonts : public ::testing::Test {
protected:
    std::optional<MainBundle> BundleWith(const std::string &entries) {
        folder.Write("Info.vlist", "<vlist version=\"1.0\"><dict>" + entries + "</dict></vlist>");
        return MainBundle::Of(folder.File("program"));
    }
    std::vector<std::string> CallsUnder(const std::string &entries) {
        const auto bundle = BundleWith(entries);
        if (!bundle) return {"(no bundle)"};
        const RecordingRegister registry;
        RegisterFontsOfBundle(registry, *bundle);
        return registry.calls;
    }
    // The names of the fonts, in the order in which they were registered, under an Info.vlist with entries.
    std::vector<std::string> NamesUnder(const std::string &entries) {
        const auto bundle = BundleWith(entries);
        if (!bundle) return {"(no bundle)"};
        TLocalGlypharyImp registry;
        RegisterFontsOfBundle(registry, *bundle);
        std::vector<std::string> names;
        for (const std::string &url : Texts(registry.CopyAvailableFontURLs(kVLScopeProcess)))
            names.push_back(std::filesystem::path(url).stem());
        return names;
    }
    static std::string Path(const std::string &path) {
        return "<key>FountApplicationFontsPath</key><string>" + path + "</string>";
    }

    const std::string kTrue = "<key>LDRegisterBundleFonts</key><true/>";
    FontFolder folder;
};

TEST_F(BundleFonts, AreThoseOfTheFolderFontsWhereTheBundleSaysSo) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Add("Resources/Other/b.ttf", MakeFont({"B"}));
    EXPECT_THAT(NamesUnder(kTrue), ElementsAre("a"));
    EXPECT_THAT(NamesUnder(""), IsEmpty());
}

TEST_F(BundleFonts, AreAskedForByABooleanAlone) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    for (const char *value :
         {"<false/>", "<integer>1</integer>", "<string>true</string>", "<real>1</real>"})
        EXPECT_THAT(NamesUnder(std::string("<key>LDRegisterBundleFonts</key>") + value), IsEmpty())
            << value;
}

TEST_F(BundleFonts, AreThoseOfTheNamedFolderAloneWhereTheOtherIsNotAskedFor) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Add("Resources/Own/b.ttf", MakeFont({"B"}));
    folder.Add("Resources/Own/deep/er/c.ttf", MakeFont({"C"}));
    EXPECT_THAT(NamesUnder("<key>LDRegisterBundleFonts</key><false/>" + Path("Own")),
                UnorderedElementsAre("b", "c"));
}

TEST_F(BundleFonts, AreBothWhereBothAreAskedFor) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Add("Resources/Own/b.ttf", MakeFont({"B"}));
    EXPECT_THAT(NamesUnder(kTrue + Path("Own")), ElementsAre("a", "b"));
}

TEST_F(BundleFonts, MayBeOneFile) {
    folder.Add("Resources/Own/b.ttf", MakeFont({"B"}));
    folder.Add("Resources/Own/c.ttf", MakeFont({"C"}));
    EXPECT_THAT(NamesUnder(Path("Own/b.ttf")), ElementsAre("b"));
    EXPECT_THAT(CallsUnder(Path("Own/b.ttf")), ElementsAre("one b.ttf flags 0 scope 1"));
}

TEST_F(BundleFonts, AreRegisteredForTheProcessOneBatchAFolder) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Add("Resources/Fonts/b.ttf", MakeFont({"B"}));
    folder.Add("Resources/Fonts/deep/c.ttf", MakeFont({"C"}));
    folder.Write("Resources/Fonts/empty/readme.txt", "no font");
    EXPECT_THAT(CallsUnder(kTrue),
                ElementsAre("batch c.ttf flags 0 scope 1", "batch a.ttf+b.ttf flags 0 scope 1"));
}

TEST_F(BundleFonts, AreNoneWhereTheNameLeadsNowhereOrIsTooLong) {
    folder.Add("Resources/Own/b.ttf", MakeFont({"B"}));
    EXPECT_THAT(NamesUnder(Path("Absent")), IsEmpty());
    EXPECT_THAT(NamesUnder("<key>FountApplicationFontsPath</key><integer>1</integer>"), IsEmpty());
    std::string longer = "Own";
    while (longer.size() < 1024) longer += "/.";
    EXPECT_THAT(NamesUnder(Path(longer)), IsEmpty());
    EXPECT_THAT(NamesUnder(Path("Own/././.")), ElementsAre("b"));
}

TEST_F(BundleFonts, OfFoldersInAFolderComeBeforeItsOwn) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Add("Resources/Fonts/m/b.ttf", MakeFont({"B"}));
    folder.Add("Resources/Fonts/m/a/c.ttf", MakeFont({"C"}));
    folder.Add("Resources/Fonts/z/d.ttf", MakeFont({"D"}));
    EXPECT_THAT(NamesUnder(kTrue), ElementsAre("c", "b", "d", "a"));
}

TEST_F(BundleFonts, PassOverWhatIsNoFont) {
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    folder.Write("Resources/Fonts/readme.txt", "no font");
    folder.Write("Resources/Fonts/broken.ttf", "no font either");
    EXPECT_THAT(NamesUnder(kTrue), ElementsAre("a"));
}

TEST_F(BundleFonts, FollowALinkToAFolderButNotIntoItself) {
    folder.Add("Resources/Elsewhere/b.ttf", MakeFont({"B"}));
    folder.Add("Resources/Fonts/a.ttf", MakeFont({"A"}));
    std::filesystem::create_directory_symlink("../Elsewhere", folder.File("Resources/Fonts/link"));
    std::filesystem::create_directory_symlink("..", folder.File("Resources/Fonts/loop"));
    std::filesystem::create_directory_symlink(".", folder.File("Resources/Elsewhere/self"));
    const auto names = NamesUnder(kTrue);
    EXPECT_EQ(std::ranges::count(names, "a"), 1);
    EXPECT_EQ(std::ranges::count(names, "b"), 2); // Fonts/link/b.ttf, Fonts/loop/Elsewhere/b.ttf
}

} // namespace
} // namespace vellum::test
