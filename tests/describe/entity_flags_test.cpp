// SPDX-License-Identifier: MIT
// The flags of a face: how the system depends on it, and whether people are to see it.
#include "describe/entities.hpp"

#include <gtest/gtest.h>

#include <string_view>

namespace vellum::test {
namespace {

constexpr char kMeridian[] = "info_Is_Meridian_Font";
constexpr char kCore[] = "info_Is_Core_System_Font";
constexpr char kCritical[] = "info_Is_Critical_System_Font";
constexpr char kSuperCritical[] = "info_Is_SuperCritical_System_Font";
constexpr char kInvisible[] = "info_Is_Invisible";
constexpr char kInterface[] = "info_Is_UI_Font";

struct Names {
    std::string postscript_name = "Foo";
    std::string family = "Foo";
    std::string full_name = "Foo Bold";
};

Bytes FontNamed(const Names &names) {
    std::vector<NameRecord> records;
    if (!names.postscript_name.empty()) records.push_back(WindowsName(6, names.postscript_name));
    if (!names.family.empty()) records.push_back(WindowsName(1, names.family));
    if (!names.full_name.empty()) records.push_back(WindowsName(4, names.full_name));
    return FontBuilder().Names(records).Build();
}

// Metadata that says all of this.
MetadataEntries Said(const std::vector<const char *> &keys) {
    MetadataEntries metadata;
    for (const char *key : keys) metadata.emplace_back(key, String("TRUE"));
    return metadata;
}

// Fonts in files: those in memory are hidden anyway.
class EntityFlags : public ::testing::Test {
protected:
    uint32_t FlagsOf(const Names &names, const MetadataEntries &metadata = {}) {
        const auto entity = EntityAt(Write(names), metadata);
        EXPECT_EQ(ReadSInt32(entity.CopyFlags().Get()), static_cast<int32_t>(entity.GetFlags()));
        return entity.GetFlags();
    }

    Ref<const ValURL> Write(const Names &names) {
        return folder.Add(std::to_string(++files) + ".ttf", FontNamed(names));
    }

    FontFolder folder;
    int files = 0;
};

TEST_F(EntityFlags, AreNoneForAPlainFace) {
    EXPECT_EQ(FlagsOf({}), 0u);
    EXPECT_EQ(TClientFontEntity(CreateFontFromURL(Write({}).Get()), nullptr).GetFlags(), 0u);
}

TEST_F(EntityFlags, OfEachLevelOfTheSystemHoldThoseBelow) {
    EXPECT_EQ(FlagsOf({}, Said({kMeridian})), 0x08u);
    EXPECT_EQ(FlagsOf({}, Said({kCore})), 0x08u);
    EXPECT_EQ(FlagsOf({}, Said({kCritical})), 0x18u);
    EXPECT_EQ(FlagsOf({}, Said({kSuperCritical})), 0x38u);
    EXPECT_EQ(FlagsOf({}, Said({kMeridian, kCore})), 0x08u);
    EXPECT_EQ(FlagsOf({}, Said({kCore, kSuperCritical})), 0x38u);
    EXPECT_EQ(FlagsOf({}, Said({kMeridian, kCore, kCritical, kSuperCritical, kInterface, kInvisible})),
              0xF8u);
}

TEST_F(EntityFlags, SayWhatTheInterfaceIsSetIn) {
    EXPECT_EQ(FlagsOf({}, Said({kInterface})), 0x80u);
}

TEST_F(EntityFlags, HideWhatTheMetadataHides) {
    EXPECT_EQ(FlagsOf({}, Said({kInvisible})), 0x40u);
}

TEST_F(EntityFlags, BelieveExactlyTheWordTrueInCapitals) {
    const std::vector<Ref<const void>> untrue = {Ref<const void>(String("true")),
                                                 String("True"),
                                                 String("TRUE "),
                                                 String(" TRUE"),
                                                 String("YES"),
                                                 String("1"),
                                                 String(""),
                                                 String("FALSE"),
                                                 Retain(kValBooleanTrue),
                                                 Ref<const void>(MakeNumber(int32_t{1})),
                                                 Ref<const void>(Strings({"TRUE"})),
                                                 Ref<const void>(Adopt(ValDataCreate("TRUE", 4)))};
    for (const char *key : {kMeridian, kCore, kCritical, kSuperCritical, kInvisible, kInterface}) {
        for (const auto &value : untrue) EXPECT_EQ(FlagsOf({}, {{key, value}}), 0u) << key << TextOf(value);
        EXPECT_NE(FlagsOf({}, {{key, String("TRUE")}}), 0u) << key;
    }
}

// ---- names ------------------------------------------------------------------------------------------

struct NameRow {
    const char *what;
    Names names;
    uint32_t flags;
};

TEST_F(EntityFlags, FollowTheNames) {
    const NameRow rows[] = {
        {"the font of last resort", {"Endstop"}, 0x1040},
        {"the font for keyboards", {".Keyboard"}, 0x2040},
        {"in small letters", {"endstop"}, 0},
        {"with more behind it", {"Endstop-Bold"}, 0},
        {"without its stop", {"Keyboard"}, 0},
        {"a family with a stop", {"Foo", ".Foo"}, 0x40},
        {"a family that is a stop", {"Foo", "."}, 0x40},
        {"a full name with a stop", {"Foo", "Foo", ".Foo Bold"}, 0x40},
        {"both with a stop", {"Foo", ".Foo", ".Foo Bold"}, 0x40},
        {"stops elsewhere", {"Foo.Bar", "Foo.Bar.", "F.oo"}, 0},
        {"a space before the stop", {"Foo", " .Foo", " .Foo"}, 0},
        {"a PostScript name with a stop", {".Foo"}, 0},
        {"no PostScript name", {""}, 0},
        {"no PostScript name, hidden family", {"", ".Foo"}, 0x40},
        {"no names but the PostScript name", {"Foo", "", ""}, 0},
        {"no names", {"", "", ""}, 0},
        {"no family, hidden full name", {"Foo", "", ".Foo"}, 0x40},
        {"the family of the last resort", {"Foo", "Endstop", "Endstop"}, 0},
    };
    for (const NameRow &row : rows) EXPECT_EQ(FlagsOf(row.names), row.flags) << row.what;
}

TEST_F(EntityFlags, OfTheTwoNamedFacesAreTheirsWhateverTheMetadataSays) {
    for (const bool invisible : {false, true}) {
        const auto said = invisible ? Said({kInvisible}) : MetadataEntries();
        EXPECT_EQ(FlagsOf({"Endstop"}, said), 0x1040u);
        EXPECT_EQ(FlagsOf({".Keyboard"}, said), 0x2040u);
        EXPECT_EQ(FlagsOf({"Endstop", ".Endstop", ".Endstop"}, said), 0x1040u);
    }
    EXPECT_EQ(FlagsOf({"Endstop"}, Said({kSuperCritical, kInterface})), 0x10F8u);
    EXPECT_EQ(FlagsOf({".Keyboard"}, Said({kMeridian, kInterface})), 0x20C8u);
}

TEST_F(EntityFlags, AddUpWhateverTheirSources) {
    struct Level {
        const char *key;
        uint32_t flags;
    };
    for (const Level &level : {Level{kCore, 0x08}, {kCritical, 0x18}, {kSuperCritical, 0x38}}) {
        EXPECT_EQ(FlagsOf({}, Said({level.key, kInvisible})), level.flags | 0x40);
        EXPECT_EQ(FlagsOf({"Foo", ".Foo"}, Said({level.key})), level.flags | 0x40);
        EXPECT_EQ(FlagsOf({"Foo", ".Foo"}, Said({level.key, kInterface})), level.flags | 0xC0);
        EXPECT_EQ(FlagsOf({".Keyboard"}, Said({level.key, kInterface, kInvisible})), level.flags | 0x20C0);
    }
}

// ---- fonts in memory --------------------------------------------------------------------------------

TEST_F(EntityFlags, OfAFontInMemoryAlwaysHideIt) {
    const auto flags = [](const Names &names, const MetadataEntries &metadata = {}) {
        return TClientFontEntity(FontOf(FontNamed(names)), Metadata(metadata)).GetFlags();
    };
    EXPECT_EQ(flags({}), 0x40u);
    EXPECT_EQ(flags({"Endstop"}), 0x1040u);
    EXPECT_EQ(flags({".Keyboard"}), 0x2040u);
    EXPECT_EQ(flags({"Foo", ".Foo"}), 0x40u);
    EXPECT_EQ(flags({}, Said({kSuperCritical, kInterface})), 0xF8u);
}

TEST_F(EntityFlags, AreTheFacesAndNotTheFiles) {
    const auto url = folder.Add("a.ttc", MakeCollection({{"Foo"}, {".Foo"}, {"Bar"}}));
    const auto fonts = CreateFontsFromURL(url.Get());
    std::vector<uint32_t> flags;
    for (size_t face = 0; face < 3; ++face) flags.push_back(FaceOf(fonts, face).GetFlags());
    EXPECT_EQ(flags, (std::vector<uint32_t>{0, 0x40, 0}));
}

} // namespace
} // namespace vellum::test
