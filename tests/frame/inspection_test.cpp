// SPDX-License-Identifier: MIT
// Looking into font files without registering them: names, what a register is told, font-info files.
#include "describe/client_font_entity.hpp"
#include "describe/font_info.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/font_builder.hpp"
#include "support/framework_resources.hpp"
#include "support/installed_fonts.hpp"
#include "support/named_font.hpp"
#include "support/packed_fonts.hpp"
#include "support/type1_font.hpp"
#include "support/values.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class Inspection : public ::testing::Test {
public:
    Inspection() { Resources(); }

    // The folder of font-info files is looked for once in a process: all tests have the same.
    static const TempDir &Resources() {
        static const FrameworkResources kResources;
        static const std::string kFolder = kResources.Folder().MakeFolder("FontInfo");
        return kResources.Folder();
    }

    static Ref<const ValURL> WithFragment(const Ref<const ValURL> &url, std::string_view fragment) {
        return Adopt(ValURLCopyWithFragment(url.Get(), String(fragment).Get()));
    }

    static std::vector<std::string> NamesOf(const Ref<const ValURL> &url,
                                            const ValString *key = kVLFontPropertyName) {
        const auto names = Adopt(VLCopyNamesForFont(url.Get(), key));
        return names ? Texts(names) : std::vector<std::string>{"(null)"};
    }

    static Ref<const ValDictionary> InfoOf(const Ref<const ValURL> &url, bool use_font_info = false) {
        return Adopt(VLCopyRegistrationInfoForFont(url.Get(), use_font_info));
    }
    static std::string NameIn(const Ref<const ValDictionary> &info) {
        return TextOf(ValDictionaryGetValue(info.Get(), kVLFontPropertyName));
    }
    static uint32_t FlagsIn(const Ref<const ValDictionary> &info) {
        return static_cast<uint32_t>(ReadSInt32(ValDictionaryGetValue(info.Get(), kVLFontPropertyFlags)));
    }

    // Makes the font-info file of a font and puts it where it is looked for. Its name.
    static std::string Install(const Ref<const ValURL> &url) {
        const ValString *name = nullptr;
        const auto content = Adopt(VLCreateFontInfoForFontFile(url.Get(), &name));
        const auto owned = Adopt(name);
        EXPECT_TRUE(content) << TextOf(ValURLGetString(url.Get()));
        Put(TextOf(owned), content);
        return TextOf(owned);
    }
    static void Put(const std::string &name, const Ref<const ValData> &content) {
        const uint8_t *bytes = ValDataGetBytes(content.Get());
        Resources().Write("FontInfo/" + name, Bytes(bytes, bytes + ValDataGetLength(content.Get())));
    }

    ~Inspection() override {
        EXPECT_FALSE(TLocalGlyphary::IsCreated());
        EXPECT_FALSE(TGlobalGlyphary::IsCreated());
    }

    FontFolder folder;
    const Ref<const ValURL> collection = folder.Add("ab.ttc", MakeCollection({{"A"}, {"B", "Bold"}}));
    const Ref<const ValURL> nothing[4] = {nullptr, folder.URLOf("none.ttf"),
                                          FileURL(folder.Write("text.ttf", "no font")),
                                          MakeURL("http://example.org/a.ttf")};
};

// ---- names ------------------------------------------------------------------------------------------

TEST_F(Inspection, FindsEveryNameOfAKind) {
    const auto url = folder.Add(
        "a.ttf", FontBuilder()
                     .Names({MacintoshName(6, "Mac"), WindowsName(6, "Win"), WindowsName(1, "Plain"),
                             WindowsName(16, "Pref"), WindowsName(2, "Bold"), WindowsName(4, "Full"),
                             WindowsName(5, "Version"), WindowsName(0, "Right")})
                     .Build());
    EXPECT_THAT(NamesOf(url), ElementsAre("Win", "Mac"));
    EXPECT_THAT(NamesOf(url, kVLFontPropertyFamilyName), ElementsAre("Pref", "Plain"));
    EXPECT_THAT(NamesOf(url, kVLFontPropertySubfamilyName), ElementsAre("Bold"));
    EXPECT_THAT(NamesOf(url, kVLFontPropertyFullName), ElementsAre("Full"));
    EXPECT_THAT(NamesOf(url, kVLFontPropertyVersionName), ElementsAre("Version"));
    EXPECT_THAT(NamesOf(url, kVLFontPropertyCopyrightName), ElementsAre("Right"));
    EXPECT_THAT(NamesOf(url, String("KSFontFamilyAttribute").Get()), ElementsAre("Pref", "Plain"));
}

TEST_F(Inspection, FindsTheNamesOfTheFaceThatTheURLNames) {
    EXPECT_THAT(NamesOf(collection), ElementsAre("A-Regular"));
    EXPECT_THAT(NamesOf(WithFragment(collection, "postscript-name=B-Bold")), ElementsAre("B-Bold"));
    EXPECT_THAT(NamesOf(WithFragment(collection, "postscript-name=C")), ElementsAre("(null)"));
    EXPECT_THAT(NamesOf(WithFragment(collection, "unknown=B-Bold")), ElementsAre("A-Regular"));
}

TEST_F(Inspection, FindsNoNamesUnderOtherKeysAndInOtherFiles) {
    for (const ValString *key :
         {kVLFontPropertyInstanceName, kVLFontPropertyLocalizedNames, kVLFontPropertyURL,
          kVLFontPropertyDesignLanguages, kVLFontPropertyVariationAxes, kVLFontPropertyUnicodeRanges,
          kVLFontPropertyManufacturerName, kVLFontPropertyDesignerName, kVLFontTraitWeight})
        EXPECT_THAT(NamesOf(collection, key), ElementsAre("(null)")) << TextOf(key);
    EXPECT_THAT(NamesOf(collection, nullptr), ElementsAre("(null)"));
    EXPECT_THAT(NamesOf(collection, String("Name").Get()), ElementsAre("(null)"));
    EXPECT_THAT(NamesOf(collection, kVLFontPropertyCopyrightName), ElementsAre("(null)"));
    for (const auto &url : nothing) EXPECT_THAT(NamesOf(url), ElementsAre("(null)"));
    EXPECT_THAT(NamesOf(FileURL(folder.Path())), ElementsAre("(null)"));
}

TEST_F(Inspection, FindsWhatALiveFontInMemoryTells) {
    TGxFont font(AsData(MakeFont({"Foo"})).Get());
    const auto url = font.CopyURL();
    EXPECT_THAT(NamesOf(url), ElementsAre("Foo-Regular"));
    EXPECT_EQ(NameIn(InfoOf(url)), "Foo-Regular");
    EXPECT_EQ(FlagsIn(InfoOf(url)), 0x40u);
    EXPECT_FALSE(InfoOf(MakeURL("file://inMemory_0x1#postscript-name=Foo-Regular")));
}

// ---- what a register is told ------------------------------------------------------------------------

TEST_F(Inspection, TellsOfTheFaceThatTheURLNamesOrOfTheFirst) {
    for (const bool use_font_info : {false, true}) {
        EXPECT_EQ(NameIn(InfoOf(collection, use_font_info)), "A-Regular");
        const auto second = WithFragment(collection, "postscript-name=B-Bold");
        EXPECT_EQ(NameIn(InfoOf(second, use_font_info)), "B-Bold");
        EXPECT_TRUE(ValEqual(ValDictionaryGetValue(InfoOf(second, use_font_info).Get(), kVLFontPropertyURL),
                             second.Get()));
        EXPECT_EQ(NameIn(InfoOf(WithFragment(collection, "unknown=B-Bold"), use_font_info)), "A-Regular");
        EXPECT_FALSE(InfoOf(WithFragment(collection, "postscript-name=C"), use_font_info));
    }
}

TEST_F(Inspection, TellsWhatTheFaceItselfTells) {
    const auto fonts = CreateFontsFromURL(collection.Get());
    for (size_t i = 0; i < 2; ++i) {
        const TClientFontEntity face(Retain(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), i))));
        EXPECT_TRUE(ValEqual(InfoOf(face.CopyURL()).Get(), face.CopyRegistrationProperties().Get()));
    }
}

TEST_F(Inspection, TellsNothingOfOtherFiles) {
    for (const bool use_font_info : {false, true}) {
        for (const auto &url : nothing) EXPECT_FALSE(InfoOf(url, use_font_info));
        EXPECT_FALSE(InfoOf(FileURL(folder.Path()), use_font_info));
    }
}

// ---- font-info files --------------------------------------------------------------------------------

TEST_F(Inspection, NamesAFontInfoFileByTheFontsNameAndSize) {
    const Bytes font = MakeFont({"Foo"});
    char name[64];
    std::snprintf(name, sizeof name, "Foo bar.ttf.%zX_0.fontinfo", font.size());
    EXPECT_EQ(Install(folder.Add("Foo bar.ttf", font)), name);
}

TEST_F(Inspection, MakesAFontInfoFileOfAllFacesWhicheverTheURLNames) {
    const ValString *name = nullptr;
    const auto whole = Adopt(VLCreateFontInfoForFontFile(collection.Get(), &name));
    const auto first = Adopt(name);
    const auto second = WithFragment(collection, "postscript-name=B-Bold");
    EXPECT_TRUE(ValEqual(whole.Get(), Adopt(VLCreateFontInfoForFontFile(second.Get(), &name)).Get()));
    EXPECT_TRUE(ValEqual(first.Get(), Adopt(name).Get()));
}

TEST_F(Inspection, MakesNoFontInfoFileOfOtherFiles) {
    for (const auto &url : nothing) {
        const auto untouched = String("untouched");
        const ValString *name = untouched.Get();
        EXPECT_FALSE(VLCreateFontInfoForFontFile(url.Get(), &name));
        EXPECT_EQ(name, untouched.Get());
        EXPECT_FALSE(VLCreateFontInfoForFontFile(url.Get(), nullptr));
    }
}

TEST_F(Inspection, SurvivesThatNobodyWantsTheNameOfAFontInfoFile) {
    const auto content = Adopt(VLCreateFontInfoForFontFile(collection.Get(), nullptr));
    EXPECT_TRUE(!content || ValDataGetLength(content.Get()) > 0);
}

// Says of every face in a file that its font-info file tells what the font told, and of the volume.
void ExpectFontInfoToTellTheSame(const Ref<const ValURL> &file) {
    const auto directory_flags = VLGetFontFlagsForDirFlags(VLGetDirectoryFlags(file.Get()));
    const auto fonts = CreateFontsFromURL(file.Get());
    ASSERT_TRUE(fonts);
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) {
        const auto url = GxFontCopyURL(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), i)));
        SCOPED_TRACE(TextOf(ValURLGetString(url.Get())));
        const auto computed = Adopt(VLCopyRegistrationInfoForFont(url.Get(), false));
        const auto stored = Adopt(VLCopyRegistrationInfoForFont(url.Get(), true));
        EXPECT_EQ(ValDictionaryGetCount(stored.Get()), ValDictionaryGetCount(computed.Get()));
        for (const auto &[key, value] : TValDict(computed)) {
            const void *told = ValDictionaryGetValue(stored.Get(), key);
            if (key == kVLFontPropertyFlags) {
                const auto flags = static_cast<uint32_t>(ReadSInt32(value)) | directory_flags;
                EXPECT_EQ(static_cast<uint32_t>(ReadSInt32(told)), flags);
            } else {
                EXPECT_TRUE(ValEqual(told, value)) << TextOf(key);
            }
        }
    }
}

TEST_F(Inspection, ReadsBackWhatItMadeOfEveryKindOfFile) {
    const auto bdf = BuildBdf({});
    const std::pair<const char *, Bytes> files[] = {
        {"plain.ttf", MakeFont({"Foo"})},
        {"hidden.ttf", MakeFont({".Foo"})},
        {"a b%20#c.ttf", MakeFont({"Foo"})},
        {"several.ttc", MakeCollection({{"A"}, {"B", "Bold"}, {"C; D=E#%"}})},
        {"variable.ttf", MakeVariableFont({"Foo"}, {100, 700})},
        {"axes.ttf", VariableFont().Build()},
        {"nameless.ttf", FontBuilder().Without("name").Build()},
        {"outlines.otf",
         FontBuilder().Without("glyf").Table("CFF ", {0}).Flavor(FontBuilder::kOpenType).Build()},
        {"everything.ttf", FontBuilder().Characters({{' ', 0x2FF}, {0x1F600, 0x1F64F}}).Build()},
        {"program.pfb", BuildPfb()},
        {"bits.pcf", BuildPcf({})},
        {"bits.bdf", Bytes(bdf.begin(), bdf.end())},
        {"packed.woff", BuildWoff(MakeFont({"Foo"}))},
    };
    for (const auto &[name, bytes] : files) {
        const auto url = folder.Add(name, bytes);
        Install(url);
        ExpectFontInfoToTellTheSame(url);
    }
}

TEST_F(Inspection, ReadsBackWhatItMadeOfInstalledFonts) {
    const auto fonts = InstalledFonts();
    ASSERT_THAT(fonts, SizeIs(::testing::Gt(500u)));
    constexpr size_t kSample = 40;
    for (size_t i = 0; i < kSample; ++i) {
        const auto &url = fonts[i * fonts.size() / kSample];
        Install(url);
        ExpectFontInfoToTellTheSame(url);
    }
}

TEST_F(Inspection, TakesTheFlagsOfTheVolumeFromFontInfoAlone) {
    const auto url = folder.Add("volume.ttf", MakeFont({".Foo"}));
    const auto directory_flags = VLGetFontFlagsForDirFlags(VLGetDirectoryFlags(url.Get()));
    ASSERT_NE(directory_flags, 0u);
    EXPECT_EQ(FlagsIn(InfoOf(url, true)), 0x40u); // there is none yet
    Install(url);
    EXPECT_EQ(FlagsIn(InfoOf(url, true)), 0x40u | directory_flags);
    EXPECT_EQ(FlagsIn(InfoOf(url, false)), 0x40u);
}

// A font file whose font-info file, for its only face, holds its URL and one property more.
Ref<const ValURL> Stored(const FontFolder &folder, const char *name, const ValString *key,
                         const void *value) {
    const auto url = folder.Add(name, MakeFont({"Foo"}));
    TValMutableDict face;
    face.Set(kVLFontPropertyURL, url.Get());
    face.Set(key, value);
    const auto stored = face.Publish();
    const void *const faces[] = {stored.Get()};
    Inspection::Put(Inspection::Install(url),
                    TFontInfo::FlattenFontInfo(Adopt(ValArrayCreate(faces, 1)).Get()));
    return url;
}

TEST_F(Inspection, BelievesFontInfo) {
    const auto url = Stored(folder, "believed.ttf", kVLFontPropertyName, String("Stored").Get());
    EXPECT_EQ(NameIn(InfoOf(url, true)), "Stored");
    EXPECT_EQ(NameIn(InfoOf(url, false)), "Foo-Regular");
}

TEST_F(Inspection, PassesOnFromFontInfoOnlyWhatDescribesAFaceToARegister) {
    for (const ValString *key :
         {kVLFontPropertyPriority, kVLFontPropertyVersionName, kVLFontPropertyUUID}) {
        const auto value = key == kVLFontPropertyPriority ? Ref<const void>(MakeNumber(int64_t{1}))
                           : key == kVLFontPropertyUUID   ? Ref<const void>(Adopt(ValUUIDCreate()))
                                                          : Ref<const void>(String("Version"));
        const auto url = Stored(folder, "more.ttf", key, value.Get());
        EXPECT_TRUE(InfoOf(url, true));
        EXPECT_FALSE(ValDictionaryContainsKey(InfoOf(url, true).Get(), key)) << TextOf(key);
    }
}

TEST_F(Inspection, ComputesWhatABrokenFontInfoFileDoesNotTell) {
    const auto url = folder.Add("broken.ttf", MakeFont({"Foo"}));
    Resources().Write("FontInfo/" + Install(url), "broken");
    EXPECT_TRUE(ValEqual(InfoOf(url, true).Get(), InfoOf(url, false).Get()));
    EXPECT_EQ(NameIn(InfoOf(url, true)), "Foo-Regular");
}

TEST_F(Inspection, ComputesAnewForAFileThatGrew) {
    Bytes font = MakeFont({"Foo"});
    const auto url = folder.Add("growing.ttf", font);
    Install(url);
    EXPECT_NE(FlagsIn(InfoOf(url, true)), 0u);
    font.push_back(0);
    folder.Add("growing.ttf", font);
    EXPECT_EQ(FlagsIn(InfoOf(url, true)), 0u);
    EXPECT_EQ(NameIn(InfoOf(url, true)), "Foo-Regular");
}

} // namespace
} // namespace vellum::test
