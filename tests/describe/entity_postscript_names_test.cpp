// SPDX-License-Identifier: MIT
// The PostScript names of a face: the parser's choice, and the first record of the name table that can be
// understood, whatever system it was written for.
#include "describe/entities.hpp"
#include "support/type1_font.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

Bytes Raw(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

Bytes Utf32(std::u32string_view text) {
    ByteWriter writer;
    for (const char32_t character : text) writer.U32(character);
    return writer;
}

// The names of a font whose first record for the PostScript name is this one, and whose English one comes
// last and is "Last".
std::vector<std::string> NamesBehind(uint16_t platform, uint16_t encoding, const Bytes &bytes) {
    const uint16_t language = platform == 3 ? kFrench : 1; // French in either numbering
    return All(
        WithNames({{platform, encoding, language, 6, bytes}, WindowsName(1, "Foo"), WindowsName(6, "Last")})
            .CopyPostScriptName(true));
}

struct Encoded {
    uint16_t platform;
    uint16_t encoding;
    Bytes bytes;
    std::string text;
};

TEST(EntityPostScriptNames, AreReadInEveryEncodingThatIsUnderstood) {
    const Encoded rows[] = {
        {0, 0, Utf16(u"Caf\u00E9"), "Caf\u00E9"},    {0, 3, Utf16(u"\u4E2D"), "\u4E2D"},
        {0, 4, Utf16(u"\U0001F600"), "\U0001F600"},  {0, 999, Utf16(u"Any"), "Any"},
        {1, 0, Raw("Caf\x8E"), "Caf\u00E9"},         {1, 1, Raw("\x83\x58"), "\u30B9"},
        {1, 2, Raw("\xA4\xA4"), "\u4E2D"},           {1, 3, Raw("\xB0\xA1"), "\uAC00"},
        {1, 25, Raw("\xD6\xD0"), "\u4E2D"},          {2, 0, Raw("Plain"), "Plain"},
        {2, 1, Utf16(u"Caf\u00E9"), "Caf\u00E9"},    {2, 2, Raw("Caf\xE9"), "Caf\u00E9"},
        {3, 0, Raw("Caf\x8E"), "Caf\u00E9"},         {3, 1, Utf16(u"Caf\u00E9"), "Caf\u00E9"},
        {3, 10, Utf32(U"\U0001F600"), "\U0001F600"},
    };
    for (const Encoded &row : rows)
        EXPECT_THAT(NamesBehind(row.platform, row.encoding, row.bytes), ElementsAre("Last", row.text))
            << row.platform << ' ' << row.encoding;
}

TEST(EntityPostScriptNames, ArePassedOverInEveryOtherEncoding) {
    std::vector<std::pair<uint16_t, uint16_t>> others = {{2, 3}, {2, 10}, {4, 0},
                                                         {4, 1}, {5, 1},  {0x100, 1}};
    for (uint16_t encoding = 2; encoding < 10; ++encoding) others.emplace_back(3, encoding);
    others.emplace_back(3, 11);
    for (const auto &[platform, encoding] : others)
        EXPECT_THAT(NamesBehind(platform, encoding, Utf16("Name")), ElementsAre("Last"))
            << platform << ' ' << encoding;
}

TEST(EntityPostScriptNames, HaveTheFirstRecordInTheFileAndNoneAfterIt) {
    const auto entity = WithNames({{4, 0, 0, 6, Raw("Skipped")},
                                   WindowsName(6, "French", kFrench),
                                   MacintoshName(6, "Macintosh"),
                                   WindowsName(6, "English")});
    EXPECT_EQ(TextOf(entity.CopyPostScriptName(false)), "English");
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("English", "French"));
}

TEST(EntityPostScriptNames, HaveOneObjectThatSeveralSourcesGive) {
    const auto entity = WithNames({MacintoshName(6, "Foo"), WindowsName(6, "Foo"), WindowsName(1, "F")});
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("Foo"));
}

TEST(EntityPostScriptNames, AreNotTakenFromOtherNames) {
    const auto entity =
        WithNames({WindowsName(1, "Foo"), WindowsName(4, "Foo Bold"), WindowsName(20, "CID")});
    EXPECT_FALSE(entity.CopyPostScriptName(true));
}

TEST(EntityPostScriptNames, EndWithTheAliases) {
    const auto entity = WithNames({MacintoshName(6, "Mac"), WindowsName(6, "Win"), WindowsName(1, "F")},
                                  {{"ID_PostScriptName_Aliases", Strings({"Mac", "Alias"})}});
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("Win", "Mac", "Mac", "Alias"));
}

TEST(EntityPostScriptNames, OfAFontWithoutANameTableAreThoseOfTheFontItself) {
    const TClientFontEntity entity(FontOf(BuildPfb()), nullptr);
    EXPECT_EQ(TextOf(entity.CopyPostScriptName(false)), "TestType-Oblique");
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("TestType-Oblique"));
}

TEST(EntityPostScriptNames, OfAnInstanceBeginWithItsOwn) {
    const FontFolder folder;
    const auto url = folder.Add("v.ttf", VariableFont().Build());
    const auto fonts = CreateFontsFromURL(url.Get());
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 3u);
    const auto bold = FaceOf(fonts, 1);
    EXPECT_EQ(TextOf(bold.CopyPostScriptName(false)), "Test-BoldStated");
    // The file's record is of the whole file.
    EXPECT_THAT(All(bold.CopyPostScriptName(true)), ElementsAre("Test-BoldStated", "Test-Regular"));
}

TEST(EntityPostScriptNames, SurviveATableThatEndsAnywhere) {
    const Bytes whole = NameTable({MacintoshName(6, "Mac"), WindowsName(6, "Win")});
    for (size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const auto names = All(EntityOf(FontBuilder().Table("name", cut)).CopyPostScriptName(true));
        if (length >= 6 + 12) continue; // the first record is whole
        EXPECT_THAT(names, ElementsAre("(null)")) << length;
    }
}

} // namespace
} // namespace vellum::test
