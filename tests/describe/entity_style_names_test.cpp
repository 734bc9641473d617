// SPDX-License-Identifier: MIT
// The style of a face whose name table has none: what its full name adds to its family's.
#include "describe/entities.hpp"
#include "support/type1_font.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

// A face without names of its style, and with a PostScript name.
std::vector<NameRecord> Unstyled(std::optional<std::string_view> family,
                                 std::optional<std::string_view> full) {
    std::vector<NameRecord> names = {WindowsName(6, "PostScript")};
    if (family) names.push_back(WindowsName(1, *family));
    if (full) names.push_back(WindowsName(4, *full));
    return names;
}

struct StyleRow {
    std::optional<std::string_view> family;
    std::optional<std::string_view> full;
    std::string style; // "(null)" for none
};

TEST(EntityStyleNames, AreWhatTheFullNameAddsToTheFamily) {
    const StyleRow rows[] = {
        // the same
        {"Foo", "Foo", "Regular"},
        // one more than the other
        {"Foo", "Foo Bold", "Bold"},
        {"Foo", "Foo Bold Italic", "Bold Italic"},
        {"Foo", "FooBold", "Bold"},
        {"Foo", "Foo-Italic", "Italic"},
        {"Foo", "Foo--Italic--", "Italic"},
        {"Foo", "Bold Foo", "Bold"},
        {"Foo", "Foo Bold Foo", "Bold"},
        {"Foo", "FooFoo Bold", "Bold"},
        {"Foo Bar", "Foo Bar  \tBold ", "Bold"},
        // the order in which the ends are trimmed
        {"Foo", "Foo - Bold", "- Bold"},
        {"Foo", "Foo- Bold -", "Bold"},
        // nothing to trim
        {"Foo", "Bar", "Bar"},
        {"Foo", "The Foo Bold", "The Foo Bold"},
        {"Foo", "foo Bold", "foo Bold"},
        {"Foo Bold", "Foo", "Foo"},
        // nothing left
        {"Foo", "Foo ", "(null)"},
        {"Foo", "Foo-", "(null)"},
        {"Foo", "FooFoo", "(null)"},
        {"Foo", "Foo Foo", "(null)"}, // from both ends
        // one of them alone
        {"Foo", std::nullopt, "PostScript"},
        {std::nullopt, "Foo Bold", "Foo Bold"},
        {std::nullopt, "-Foo- ", "-Foo- "},
    };
    for (const StyleRow &row : rows) {
        const auto entity = WithNames(Unstyled(row.family, row.full));
        const auto where =
            std::string(row.family.value_or("(none)")) + "/" + std::string(row.full.value_or("(none)"));
        EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), row.style) << where;
        EXPECT_THAT(All(entity.CopySubfamilyName(true)), ElementsAre(row.style)) << where;
    }
}

TEST(EntityStyleNames, AreDerivedOnlyWhereTheNameTableHasNone) {
    for (const uint16_t id : {uint16_t{2}, uint16_t{17}}) {
        auto names = Unstyled("Foo", "Foo Bold");
        names.push_back(WindowsName(id, "Heavy"));
        EXPECT_EQ(TextOf(WithNames(names).CopySubfamilyName(false)), "Heavy");
        EXPECT_THAT(All(WithNames(names).CopySubfamilyName(true)), ElementsAre("Heavy"));
    }
}

TEST(EntityStyleNames, InAnyLanguageAreEnough) {
    auto names = Unstyled("Foo", "Foo Bold");
    names.push_back(WindowsName(2, "Fett", kGerman));
    EXPECT_EQ(TextOf(WithNames(names).CopySubfamilyName(false)), "Fett");
    EXPECT_THAT(All(WithNames(names).CopySubfamilyName(true)), ElementsAre("Fett"));
}

TEST(EntityStyleNames, ThatAreDerivedStandBeforeTheAliases) {
    const MetadataEntries alias = {{"ID_StyleName_Aliases", String("Alias")}};
    EXPECT_THAT(All(WithNames(Unstyled("Foo", "Foo Bold"), alias).CopySubfamilyName(true)),
                ElementsAre("Bold", "Alias"));
    EXPECT_THAT(All(WithNames(Unstyled("Foo", "Foo-"), alias).CopySubfamilyName(true)),
                ElementsAre("Alias"));
    EXPECT_EQ(TextOf(WithNames(Unstyled("Foo", "Foo Bold"), alias).CopySubfamilyName(false)), "Bold");
}

TEST(EntityStyleNames, ThatAreDerivedAreOneObjectOfDifferentFaces) {
    const auto a = WithNames(Unstyled("Foo", "Foo Bold")), b = WithNames(Unstyled("Bar", "Bar-Bold"));
    EXPECT_EQ(a.CopySubfamilyName(false).Get(), b.CopySubfamilyName(false).Get());
}

TEST(EntityStyleNames, OfAFontWithoutANameTableAreDerivedFromWhatTheFontSays) {
    const TClientFontEntity entity(FontOf(BuildPfb()), nullptr);
    EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), "Oblique");
    const TClientFontEntity regular(FontOf(BuildPfb({.full_name = "Test Type"})), nullptr);
    EXPECT_EQ(TextOf(regular.CopySubfamilyName(false)), "Regular");
}

} // namespace
} // namespace vellum::test
