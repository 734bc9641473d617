// SPDX-License-Identifier: MIT
// What a face answers besides its names: which key asks for what, and what a register is told.
#include "describe/basic_font_entity.hpp"
#include "describe/entities.hpp"
#include "describe/metadata_files.hpp"
#include "values/val_bookmark.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace vellum::test {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAreArray;

// What makes every property that a face can have: a variable font with these.
const MetadataEntries &FullMetadata() {
    static const MetadataEntries kMetadata = {
        {"Repertoire_PrimaryScriptLanguages", Strings({"ja", "en"})},
        {"Repertoire_SupportedLanguages", Strings({"de", "fr"})},
        {"info_IgnoreScriptAnalysis", String("TRUE")},
    };
    return kMetadata;
}

FontBuilder FullFont() {
    auto names = PlainNames("Test", "Regular", "Test-Regular");
    names.push_back(WindowsName(0, "Copyright"));
    names.push_back(WindowsName(5, "Version 1"));
    names.push_back(WindowsName(256, "Weight"));
    return FontBuilder().Names(names).Table("fvar", FvarTable({{"wght", 100, 400, 900, 256}}, {}));
}

std::string TextOfURL(const ValURL *url) {
    return TextOf(ValURLGetString(url));
}

// Where a bookmark leads.
std::string Followed(const Ref<const ValData> &bookmark) {
    return std::string(TValBookmark(bookmark).Resolve().Text());
}

class EntityPropertiesOfAFile : public ::testing::Test {
protected:
    FontFolder folder;
    const Ref<const ValURL> url = folder.Add("full.ttf", FullFont().Build());
};

// ---- keys -------------------------------------------------------------------------------------------

using Ask = std::function<Ref<const void>(const TClientFontEntity &)>;

// The key with each identifier, and what answers it; none where nothing does.
struct KeyRow {
    const ValString *key;
    Ask ask;
};

std::vector<KeyRow> KeyRows(bool all) {
    const auto name = [all](Ref<const void> (TClientFontEntity::*copy)(bool) const) -> Ask {
        return [=](const TClientFontEntity &entity) { return (entity.*copy)(all); };
    };
    const auto property = [](auto copy) -> Ask {
        return [=](const TClientFontEntity &entity) { return (entity.*copy)(); };
    };
    static const auto kAlmostAKey = String("KSFontNameAttribut");
    using E = TClientFontEntity;
    return {{kVLFontPropertyName, name(&E::CopyPostScriptName)},
            {kVLFontPropertyFamilyName, name(&E::CopyFamilyName)},
            {kVLFontPropertyFullName, name(&E::CopyFullName)},
            {kVLFontPropertySubfamilyName, name(&E::CopySubfamilyName)},
            {kVLFontPropertyVersionName, name(&E::CopyVersionName)},
            {kVLFontPropertyCopyrightName, name(&E::CopyCopyrightName)},
            {kVLFontPropertyInstanceName, nullptr},
            {kVLFontPropertyLocalizedNames, property(&E::CopyLocalizedNames)},
            {kVLFontPropertyTraits, property(&E::CopyTraits)},
            {kVLFontPropertyURL, property(&E::CopyURL)},
            {kVLFontPropertyUUID, nullptr},
            {kVLFontPropertyBookmark, property(&E::CopyBookmark)},
            {kVLFontPropertyCharacterSet, property(&E::CopyCharacterSet)},
            {kVLFontPropertyVariationAxes, property(&E::CopyVariationAxes)},
            {kVLFontPropertyVariations, property(&E::CopyVariations)},
            {kVLFontPropertySupportedLanguages, property(&E::CopySupportedLanguages)},
            {kVLFontPropertyDesignLanguages, property(&E::CopyDesignLanguages)},
            {kVLFontPropertyEnabled, nullptr},
            {kVLFontPropertyPriority, nullptr},
            {kVLFontPropertyFormat, property(&E::CopyFormat)},
            {kVLFontPropertyStringEncoding, property(&E::CopyStringEncoding)},
            {kVLFontPropertyIgnoreScriptAnalysis, property(&E::CopyIgnoreScriptAnalysis)},
            {kVLFontPropertyFontRef, nullptr},
            {kVLFontPropertyDirectory, nullptr},
            {kVLFontPropertyScope, nullptr},
            {kVLFontPropertyFlags, property(&E::CopyFlags)},
            {kVLFontPropertyUnicodeRanges, property(&E::CopyUnicodeRanges)},
            {kVLFontPropertyManufacturerName, nullptr},
            {kVLFontPropertyDesignerName, nullptr},
            {kVLFontPropertyPrimaryLanguage, nullptr},
            {kAlmostAKey.Get(), nullptr},
            {nullptr, nullptr}};
}

TEST_F(EntityPropertiesOfAFile, AreEachAnsweredToTheirKey) {
    const auto entity = EntityAt(url, FullMetadata());
    for (const bool all : {false, true}) {
        for (const KeyRow &row : KeyRows(all)) {
            const auto answer = entity.CopyProperty(row.key, all);
            if (!row.ask) {
                EXPECT_FALSE(answer) << TextOf(row.key);
                continue;
            }
            ASSERT_TRUE(answer) << TextOf(row.key);
            EXPECT_TRUE(ValEqual(answer.Get(), row.ask(entity).Get())) << TextOf(row.key);
        }
    }
}

TEST_F(EntityPropertiesOfAFile, AreAnsweredToAnEqualKey) {
    const auto entity = EntityAt(url, FullMetadata());
    for (const KeyRow &row : KeyRows(false)) {
        if (!row.ask) continue;
        const auto key = String(TextOf(row.key));
        EXPECT_TRUE(ValEqual(entity.CopyProperty(key.Get(), false).Get(), row.ask(entity).Get()))
            << TextOf(row.key);
    }
}

TEST_F(EntityPropertiesOfAFile, AreTheirOwnHoweverManyAreAskedFor) {
    const auto entity = EntityAt(url, FullMetadata());
    std::vector<const ValString *> keys;
    size_t answered = 0;
    for (const KeyRow &row : KeyRows(true)) {
        if (row.key) keys.push_back(row.key);
        answered += row.ask != nullptr;
    }
    const auto properties = entity.CopyProperties(Keys(keys).Get(), true);
    EXPECT_EQ(ValDictionaryGetCount(properties.Get()), answered);
    for (const KeyRow &row : KeyRows(true)) {
        const void *answer = ValDictionaryGetValue(properties.Get(), row.key);
        EXPECT_TRUE(ValEqual(answer, row.ask ? row.ask(entity).Get() : nullptr)) << TextOf(row.key);
    }
}

// ---- what a register is told --------------------------------------------------------------------------

// All that describes a face to a register, but for the name of an instance, which no face tells.
std::vector<std::string> RegistrationKeys() {
    std::vector<std::string> keys;
    for (const ValString *key :
         {kVLFontPropertyURL, kVLFontPropertyBookmark, kVLFontPropertyName, kVLFontPropertyFamilyName,
          kVLFontPropertyFullName, kVLFontPropertySubfamilyName, kVLFontPropertyTraits,
          kVLFontPropertyLocalizedNames, kVLFontPropertyCharacterSet, kVLFontPropertyVariations,
          kVLFontPropertyVariationAxes, kVLFontPropertySupportedLanguages, kVLFontPropertyDesignLanguages,
          kVLFontPropertyFlags, kVLFontPropertyFormat, kVLFontPropertyStringEncoding,
          kVLFontPropertyIgnoreScriptAnalysis, kVLFontPropertyUnicodeRanges})
        keys.push_back(TextOf(key));
    return keys;
}

TEST_F(EntityPropertiesOfAFile, ForARegisterAreTheseAndNoOthers) {
    const auto properties = EntityAt(url, FullMetadata()).CopyRegistrationProperties();
    EXPECT_THAT(KeysOf(properties), UnorderedElementsAreArray(RegistrationKeys()));
    EXPECT_EQ(TextIn(properties.Get(), kVLFontPropertyName), "Test-Regular"); // one, and not a list
    for (const KeyRow &row : KeyRows(false)) {
        const void *value = row.key ? ValDictionaryGetValue(properties.Get(), row.key) : nullptr;
        EXPECT_TRUE(!value || ValEqual(value, row.ask(EntityAt(url, FullMetadata())).Get()))
            << TextOf(row.key);
    }
}

TEST_F(EntityPropertiesOfAFile, ForARegisterLeaveOutWhatTheFaceLacks) {
    std::vector<std::string> expected = RegistrationKeys();
    for (const ValString *key : {kVLFontPropertyBookmark, kVLFontPropertyVariations,
                                 kVLFontPropertyVariationAxes, kVLFontPropertySupportedLanguages,
                                 kVLFontPropertyDesignLanguages, kVLFontPropertyIgnoreScriptAnalysis})
        std::erase(expected, TextOf(key));
    const auto entity = EntityOf(FontBuilder().Characters({{'A', 'A'}}));
    EXPECT_THAT(KeysOf(entity.CopyRegistrationProperties()), UnorderedElementsAreArray(expected));
}

TEST(EntityProperties, OfAToldFaceForARegisterAreNineteenAtMost) {
    TValMutableDict told;
    for (const KeyRow &row : KeyRows(false)) told.Set(row.key, String("Value").Get());
    auto expected = RegistrationKeys();
    expected.push_back(TextOf(kVLFontPropertyInstanceName));
    const auto properties = TBasicFontEntity(told.Publish()).CopyRegistrationProperties();
    EXPECT_EQ(expected.size(), 19u);
    EXPECT_THAT(KeysOf(properties), UnorderedElementsAreArray(expected));
}

// ---- the file -----------------------------------------------------------------------------------------

TEST_F(EntityPropertiesOfAFile, HaveABookmarkThatLeadsBack) {
    const auto bookmark = EntityAt(url).CopyBookmark();
    ASSERT_TRUE(bookmark);
    EXPECT_EQ(Followed(bookmark), TextOfURL(url.Get()));
    std::filesystem::rename(folder.File("full.ttf"), folder.File("moved.ttf"));
    EXPECT_EQ(Followed(bookmark), TextOfURL(folder.URLOf("moved.ttf").Get()));
}

TEST_F(EntityPropertiesOfAFile, HaveABookmarkOfTheFileWhicheverTheFace) {
    const auto file = folder.Add("a.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto fonts = CreateFontsFromURL(file.Get());
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 2u);
    for (size_t face = 0; face < 2; ++face) {
        const auto entity = FaceOf(fonts, face);
        EXPECT_NE(TextOfURL(entity.GetURL()), TextOfURL(file.Get()));
        EXPECT_EQ(Followed(entity.CopyBookmark()), TextOfURL(file.Get()));
    }
}

TEST_F(EntityPropertiesOfAFile, HaveNoBookmarkWhereThereIsNoFile) {
    EXPECT_FALSE(EntityOf(FontBuilder()).CopyBookmark());
    const auto entity = EntityAt(url);
    std::filesystem::remove(folder.File("full.ttf"));
    EXPECT_FALSE(entity.CopyBookmark());
}

TEST_F(EntityPropertiesOfAFile, HaveTheURLThatTheFontHas) {
    const auto font = CreateFontFromURL(url.Get());
    const TClientFontEntity entity(font);
    EXPECT_TRUE(ValEqual(entity.CopyURL().Get(), GxFontCopyURL(font.Get()).Get()));
    EXPECT_EQ(entity.GetURL(), entity.CopyURL().Get());
    EXPECT_EQ(entity.CopyFont().Get(), font.Get());
}

TEST(EntityProperties, OfAFontInMemoryHaveAURLThatSaysSo) {
    const auto entity = EntityOf(FontBuilder());
    EXPECT_TRUE(TGxFont::IsInMemoryURL(entity.GetURL()));
    EXPECT_THAT(TextOfURL(entity.GetURL()), ::testing::EndsWith("#postscript-name=Test-Regular"));
}

TEST(EntityProperties, OfNoFontAreNone) {
    const TClientFontEntity entity(nullptr);
    for (const KeyRow &row : KeyRows(true)) {
        const auto answer = entity.CopyProperty(row.key, true);
        EXPECT_NE(ValGetType(answer.Get()), kValTypeURL) << TextOf(row.key);
    }
    EXPECT_FALSE(entity.CopyPostScriptName(true));
    EXPECT_FALSE(entity.CopyURL());
    EXPECT_FALSE(entity.CopyBookmark());
    EXPECT_FALSE(entity.CopyUUID());
}

// ---- axes ---------------------------------------------------------------------------------------------

TEST(EntityProperties, OfAVariableFontHaveItsPlaceOnEachAxis) {
    FontFolder folder;
    const auto fonts = CreateFontsFromURL(folder.Add("v.ttf", VariableFont().Build()).Get());
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 3u);
    const auto weight = [&](size_t face) {
        const auto entity = FaceOf(fonts, face);
        const auto variations = entity.CopyVariations();
        EXPECT_EQ(ValArrayGetCount(entity.CopyVariationAxes().Get()), 2u);
        return ReadFloat64(ValDictionaryGetValue(variations.Get(), String("Weight").Get()));
    };
    EXPECT_EQ(weight(0), 400);
    EXPECT_EQ(weight(1), 700);
    EXPECT_EQ(weight(2), 400);
}

TEST(EntityProperties, OfEachAxisAreFive) {
    const auto axes = EntityOf(VariableFont()).CopyVariationAxes();
    for (const void *axis : Elements(axes.Get())) {
        const auto *of_axis = Cast<ValDictionary>(axis);
        EXPECT_EQ(ValDictionaryGetCount(of_axis), 5u);
        const auto type = [&](const ValString *key) {
            return ValNumberGetNumberType(Cast<ValNumber>(ValDictionaryGetValue(of_axis, key)));
        };
        EXPECT_EQ(type(kVLVariationAxisIdentifier), ValNumberType{kValNumberTypeSInt32});
        EXPECT_EQ(type(kVLVariationAxisMinValue), ValNumberType{kValNumberTypeFloat64});
        EXPECT_EQ(type(kVLVariationAxisDefaultValue), ValNumberType{kValNumberTypeFloat64});
        EXPECT_EQ(type(kVLVariationAxisMaxValue), ValNumberType{kValNumberTypeFloat64});
    }
    EXPECT_EQ(TextIn(ValArrayGetValue(axes.Get(), 1), kVLVariationAxisName), "Width");
}

// ---- metadata in a file -------------------------------------------------------------------------------

// In a process of its own: the folder of metadata is looked for once.
class EntityMetadata : public FontMetadata {};

TEST_F(EntityMetadata, IsFoundByTheFacesURL) {
    const auto face = [](std::string_view name, std::string_view pairs) {
        return Dict(Key("MTD_Typeface_ID_sfnt_PostscriptName", Text(name)) + std::string(pairs));
    };
    WriteFaces(face("A-Regular", Key("MTD_Typeface_info_Is_UI_Font", Text("TRUE"))) +
               face("B-Regular", Key("MTD_Typeface_ID_FullName_Aliases", Array(Text("Alias"))) +
                                     Key("MTD_Typeface_Style_Fount_Class", Text("sans-serif"))));
    FontFolder folder;
    const auto fonts = CreateFontsFromURL(folder.Add("Foo.ttf", MakeCollection({{"A"}, {"B"}})).Get());
    const auto entity = [&](size_t index) { return FaceOf(fonts, index); };
    EXPECT_EQ(entity(0).GetFlags(), 0x80u);
    EXPECT_EQ(entity(1).GetFlags(), 0u);
    EXPECT_THAT(All(entity(0).CopyFullName(true)), ::testing::ElementsAre("A Regular"));
    EXPECT_THAT(All(entity(1).CopyFullName(true)), ::testing::ElementsAre("B Regular", "Alias"));
    const auto traits = [&](size_t index) {
        return static_cast<uint32_t>(
            ReadSInt32(ValDictionaryGetValue(entity(index).CopyTraits().Get(), kVLFontTraitSymbolic)));
    };
    EXPECT_EQ(traits(0) >> 28, 0u);
    EXPECT_EQ(traits(1) >> 28, 8u);
    // What another caller brings along goes before, and is kept with the entity alone.
    EXPECT_EQ(TClientFontEntity(entity(0).CopyFont(), nullptr).GetFlags(), 0u);
    EXPECT_EQ(entity(0).GetFlags(), 0x80u);
}

} // namespace
} // namespace vellum::test
