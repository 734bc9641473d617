// SPDX-License-Identifier: MIT
// What of a font-info file's content is passed on, and what is written into one.
#include "describe/font_info_files.hpp"
#include "values/val_number.hpp"

#include <gmock/gmock.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

TEST_F(FontInfo, HasTheStoredFacesInTheirOrder) {
    StoreFaces(Face("file:///a#1", {{kVLFontPropertyName, String("B")}}),
               Face("file:///a#2", {{kVLFontPropertyName, String("A")}}));
    EXPECT_THAT(NamesOf(Load()), ElementsAre("B", "A"));
}

TEST_F(FontInfo, OfNoFacesIsEmpty) {
    StoreFaces();
    const auto faces = Load();
    ASSERT_TRUE(faces);
    EXPECT_EQ(ValArrayGetCount(faces.Get()), 0u);
}

TEST_F(FontInfo, KeepsPropertiesOfEveryKind) {
    const auto names = ArrayOf(String("First"), String("Second"));
    const auto number = Ref<const void>(MakeNumber(int32_t{7}));
    const auto traits = Dictionary({{kVLFontTraitWeight, MakeNumber(0.4f)}});
    const auto localized =
        Dictionary({{String("en").Get(), Dictionary({{kVLFontPropertyFamilyName, String("Family")}})}});
    const auto unknown = String("Unknown");
    const std::vector<Property> stored = {
        {kVLFontPropertyName, String("Foo")},
        {kVLFontPropertyFamilyName, names},
        {kVLFontPropertyFullName, names},
        {kVLFontPropertySubfamilyName, String("Bold")},
        {kVLFontPropertyVersionName, names},
        {kVLFontPropertyCopyrightName, String("(c)")},
        {kVLFontPropertyInstanceName, String("Bold")},
        {kVLFontPropertyLocalizedNames, localized},
        {kVLFontPropertyTraits, traits},
        {kVLFontPropertyUUID, Adopt(ValUUIDCreate())},
        {kVLFontPropertyCharacterSet, Adopt(ValCharacterSetCreateWithRange('A', 'Z'))},
        {kVLFontPropertyVariationAxes, ArrayOf(traits)},
        {kVLFontPropertyVariations, Dictionary({{String("Weight").Get(), MakeNumber(700.0)}})},
        {kVLFontPropertySupportedLanguages, names},
        {kVLFontPropertyDesignLanguages, names},
        {kVLFontPropertyEnabled, number},
        {kVLFontPropertyPriority, MakeNumber(int64_t{60000})},
        {kVLFontPropertyFormat, number},
        {kVLFontPropertyStringEncoding, number},
        {kVLFontPropertyIgnoreScriptAnalysis, Retain(kValBooleanTrue)},
        {kVLFontPropertyFontRef, number},
        {kVLFontPropertyDirectory, MakeURL("file:///a/")},
        {kVLFontPropertyScope, MakeNumber(int64_t{2})},
        {kVLFontPropertyUnicodeRanges, ArrayOf(MakeNumber(int32_t{-1}), MakeNumber(int32_t{2}))},
        {unknown.Get(), names},
    };
    StoreFaces(Face("file:///a", stored));
    const auto faces = Load();
    ASSERT_EQ(ValArrayGetCount(faces.Get()), 1u);
    for (const Property &property : stored) {
        const auto *key = static_cast<const ValString *>(property.key);
        EXPECT_TRUE(ValEqual(PropertyOf(faces, 0, key), property.value.Get())) << TextOf(key);
    }
    // And URL, bookmark and flags.
    EXPECT_EQ(ValDictionaryGetCount(Cast<ValDictionary>(ValArrayGetValue(faces.Get(), 0))),
              stored.size() + 3);
}

// --- malformed files ----------------------------------------------------------------------------

TEST_F(FontInfo, IsNoneForAnythingButAnArray) {
    WriteFont("Foo.ttf");
    resources_.Folder().MakeFolder("FontInfo/Foo.ttf.5_0.fontinfo");
    EXPECT_FALSE(Load());
    fs::remove(resources_.Folder().File("FontInfo/Foo.ttf.5_0.fontinfo"));
    Store(Bytes());
    EXPECT_FALSE(Load());
    Store(ByteWriter().Text("no value"));
    EXPECT_FALSE(Load());
    Store(ByteWriter().U32(7).U32(3).Text("Foo")); // a string
    EXPECT_FALSE(Load());
    Store(ByteWriter().U32(16).U32(0)); // a dictionary
    EXPECT_FALSE(Load());
    Store(ByteWriter().U32(256).U32(0)); // a set
    EXPECT_FALSE(Load());
    Store(ByteWriter().U32(17).U32(0)); // an array
    EXPECT_TRUE(Load());
}

TEST_F(FontInfo, IsNoneForAFileThatIsCut) {
    const auto whole = Flatten(ArrayOf(Face("file:///a", {{kVLFontPropertyName, String("Foo")}})).Get());
    for (size_t size = 0; size < whole.size(); ++size) {
        Store(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        EXPECT_FALSE(Load()) << size;
    }
    Store(whole);
    EXPECT_TRUE(Load());
}

TEST_F(FontInfo, LeavesOutElementsThatAreNoFaces) {
    const auto name = [](std::string_view text) {
        return std::vector<Property>{{kVLFontPropertyName, String(text)}};
    };
    const auto with = [&](const ValString *key, Ref<const void> value, std::string_view text) {
        auto properties = name(text);
        properties.push_back({key, std::move(value)});
        return properties;
    };
    StoreFaces(Face("file:///a#1", name("first")), String("a string"), ArrayOf(), Dictionary({}),
               Dictionary(name("without a URL")),
               Dictionary(with(kVLFontPropertyURL, String("file:///a"), "no URL")),
               Face("file:///a#2", with(kVLFontPropertyFlags, String("8"), "flags in a string")),
               Face("file:///a#3", with(kVLFontPropertyFlags, ArrayOf(), "flags in an array")),
               Ref<const void>(), Face("file:///a#4", name("last")));
    EXPECT_THAT(NamesOf(Load()), ElementsAre("first", "last"));
}

TEST_F(FontInfo, LeavesOutPropertiesOfAnotherKind) {
    const auto string = Ref<const void>(String("text"));
    const auto number = Ref<const void>(MakeNumber(int32_t{1}));
    const auto strings = Ref<const void>(ArrayOf(string));
    const auto numbers = Ref<const void>(ArrayOf(string, number));
    const auto dictionary = Ref<const void>(Dictionary({{string.Get(), string}}));
    const auto strange_keys = Ref<const void>(Dictionary({{number.Get(), number}}));
    const std::vector<Property> wrong = {
        {kVLFontPropertyName, number},
        {kVLFontPropertyFamilyName, numbers},
        {kVLFontPropertyFullName, dictionary},
        {kVLFontPropertySubfamilyName, ArrayOf(strings)},
        {kVLFontPropertyVersionName, number},
        {kVLFontPropertyCopyrightName, number},
        {kVLFontPropertyInstanceName, strings},
        {kVLFontPropertyLocalizedNames, dictionary},
        {kVLFontPropertyTraits, dictionary},
        {kVLFontPropertyUUID, string},
        {kVLFontPropertyCharacterSet, string},
        {kVLFontPropertyVariationAxes, strings},
        {kVLFontPropertyVariations, strange_keys},
        {kVLFontPropertySupportedLanguages, string},
        {kVLFontPropertyDesignLanguages, numbers},
        {kVLFontPropertyEnabled, string},
        {kVLFontPropertyPriority, string},
        {kVLFontPropertyFormat, string},
        {kVLFontPropertyStringEncoding, string},
        {kVLFontPropertyIgnoreScriptAnalysis, number},
        {kVLFontPropertyFontRef, string},
        {kVLFontPropertyDirectory, string},
        {kVLFontPropertyScope, string},
        {kVLFontPropertyUnicodeRanges, strings},
        {number.Get(), string}, // a key that is no string
    };
    StoreFaces(Face("file:///a", wrong));
    const auto faces = Load();
    ASSERT_EQ(ValArrayGetCount(faces.Get()), 1u);
    std::vector<std::string> left;
    for (const auto &[key, value] : TValDict(Retain(Cast<ValDictionary>(ValArrayGetValue(faces.Get(), 0)))))
        left.push_back(TextOf(key));
    EXPECT_THAT(left,
                testing::UnorderedElementsAre(TextOf(kVLFontPropertyURL), TextOf(kVLFontPropertyFlags),
                                              TextOf(kVLFontPropertyBookmark)));
}

// --- the writer ---------------------------------------------------------------------------------

TEST(FlattenFontInfo, WritesTheFlattenedForm) {
    EXPECT_EQ(Flatten(ArrayOf().Get()), Bytes(ByteWriter().U32(17).U32(0)));
    const auto key = String("k"), value = String("v");
    EXPECT_EQ(
        Flatten(ArrayOf(Dictionary({{key.Get(), value}})).Get()),
        Bytes(ByteWriter().U32(17).U32(1).U32(16).U32(1).U32(7).U32(1).Text("k").U32(7).U32(1).Text("v")));
}

TEST(FlattenFontInfo, IsNoneForWhatCannotBeFlattened) {
    EXPECT_FALSE(TFontInfo::FlattenFontInfo(nullptr));
    auto nested = ArrayOf();
    for (int i = 0; i < 100; ++i) nested = ArrayOf(nested);
    EXPECT_FALSE(TFontInfo::FlattenFontInfo(nested.Get()));
}

// What is written is read.
TEST(FlattenFontInfo, IsNoneForMoreThanIsRead) {
    const auto data_of = [](size_t size) {
        auto data = Adopt(ValDataCreateMutable(0));
        ValDataSetLength(data.Get(), size);
        return Ref<const ValData>(std::move(data));
    };
    constexpr size_t kAround = 16; // array and data begin with two words each
    const auto largest = TFontInfo::FlattenFontInfo(ArrayOf(data_of(kMaximumFontInfoSize - kAround)).Get());
    EXPECT_EQ(ValDataGetLength(largest.Get()), kMaximumFontInfoSize);
    EXPECT_FALSE(TFontInfo::FlattenFontInfo(ArrayOf(data_of(kMaximumFontInfoSize - kAround + 1)).Get()));
}

} // namespace
} // namespace vellum::test
