// SPDX-License-Identifier: MIT
// The indexes of a register: made when first asked for, then kept current.
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/openings.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class Indexes : public ::testing::Test {
protected:
    Ref<const ValURL> AddFont(const std::string &name, const NamedFace &face) {
        auto url = folder.Add(name, face);
        EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
        return url;
    }
    std::vector<FontReference> Find(uint16_t index, const char *name) {
        return References(registry.GetIndex(index)->CopyFontsForKey(String(name).Get()));
    }
    FontReference ReferenceOf(const Ref<const ValURL> &url) { return registry.GetFontReference(url.Get()); }

    FontFolder folder;
    TLocalGlypharyImp registry;
};

TEST_F(Indexes, ThereAreSixFromZero) {
    uint16_t first = 7;
    EXPECT_EQ(registry.GetIndexCount(first), 6);
    EXPECT_EQ(first, 0);
}

TEST_F(Indexes, AnIndexIsMadeOnce) {
    for (uint16_t id = 0; id < kIndexCount; ++id) EXPECT_EQ(registry.GetIndex(id), registry.GetIndex(id));
    EXPECT_NE(registry.GetIndex(kPathIndex), registry.GetIndex(kDisabledPathIndex));
}

TEST_F(Indexes, AFontRegisteredBeforeAnIndexIsMadeIsInIt) {
    const auto url = AddFont("a.ttf", {"Foo", "Bold"});
    EXPECT_THAT(Find(kFamilyNameIndex, "foo"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kPostScriptNameIndex, "Foo-Bold"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kFullNameIndex, "Foo Bold"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kSubfamilyNameIndex, "BOLD"), ElementsAre(ReferenceOf(url)));
}

TEST_F(Indexes, AFontRegisteredAfterwardsIsEnteredAtOnce) {
    for (uint16_t id = 0; id < kIndexCount; ++id) registry.GetIndex(id);
    const auto url = AddFont("a.ttf", {"Foo", "Bold"});
    EXPECT_THAT(Find(kFamilyNameIndex, "Foo"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kPostScriptNameIndex, "Foo-Bold"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kFullNameIndex, "Foo Bold"), ElementsAre(ReferenceOf(url)));
    EXPECT_THAT(Find(kSubfamilyNameIndex, "Bold"), ElementsAre(ReferenceOf(url)));
}

TEST_F(Indexes, RegistrationNeverFeedsTheIndexOfDisabledFonts) {
    registry.GetIndex(kDisabledPathIndex);
    const auto url = AddFont("a.ttf", {"Foo"});
    EXPECT_FALSE(registry.GetIndex(kDisabledPathIndex)->CopyFontsForKey(url.Get()));
}

TEST_F(Indexes, TheIndexOfDisabledFontsStartsWithWhatIsEnabled) {
    const auto url = AddFont("a.ttf", {"Foo"});
    EXPECT_TRUE(registry.GetIndex(kDisabledPathIndex)->CopyFontsForKey(url.Get()));
}

TEST_F(Indexes, UnregisteringRemovesFromEveryIndex) {
    for (uint16_t id = 0; id < kIndexCount; ++id) registry.GetIndex(id);
    const auto url = AddFont("a.ttf", {"Foo", "Bold"});
    registry.UnregisterFont(url.Get(), kVLScopeProcess);
    EXPECT_THAT(Find(kFamilyNameIndex, "Foo"), IsEmpty());
    EXPECT_THAT(Find(kPostScriptNameIndex, "Foo-Bold"), IsEmpty());
    EXPECT_THAT(Find(kFullNameIndex, "Foo Bold"), IsEmpty());
    EXPECT_THAT(Find(kSubfamilyNameIndex, "Bold"), IsEmpty());
    EXPECT_FALSE(registry.GetIndex(kPathIndex)->CopyFontsForKey(url.Get()));
}

TEST_F(Indexes, TheKeysOfAFontLeaveWithItThoughItsFileIsGone) {
    for (uint16_t id = 0; id < kIndexCount; ++id) registry.GetIndex(id);
    const auto url = AddFont("a.ttf", {"Foo", "Bold"});
    ASSERT_EQ(::unlink((folder.File("a.ttf")).c_str()), 0);
    registry.UnregisterFont(url.Get(), kVLScopeProcess);
    for (uint16_t id = 0; id < kIndexCount; ++id)
        EXPECT_EQ(ValArrayGetCount(registry.GetIndex(id)->CopyAllKeys().Get()), 0u) << id;
}

TEST_F(Indexes, NamesThatDifferOnlyInLetterCaseAreFoundTogether) {
    const auto upper = AddFont("a.ttf", {"Foo", "Bold", "Foo-Bold"});
    const auto lower = AddFont("b.ttf", {"foo", "bold", "foo-bold"});
    EXPECT_THAT(Find(kPostScriptNameIndex, "FOO-bold"),
                UnorderedElementsAre(ReferenceOf(upper), ReferenceOf(lower)));
    registry.UnregisterFont(upper.Get(), kVLScopeProcess);
    EXPECT_THAT(Find(kPostScriptNameIndex, "Foo-Bold"), ElementsAre(ReferenceOf(lower)));
}

TEST_F(Indexes, AFontDisabledBeforeAnIndexIsMadeIsLeftOut) {
    const auto a = AddFont("a.ttf", {"A"});
    const auto b = AddFont("b.ttf", {"B"});
    ASSERT_TRUE(registry.DisableFont(a.Get(), kVLScopeProcess));
    EXPECT_THAT(Find(kFamilyNameIndex, "A"), IsEmpty());
    EXPECT_THAT(Find(kFamilyNameIndex, "B"), ElementsAre(ReferenceOf(b)));
}

TEST_F(Indexes, AFolderFindsTheFontsBeneathIt) {
    const auto a = AddFont("x/a.ttf", {"A"});
    const auto b = AddFont("x/y/b.ttf", {"B"});
    AddFont("z/c.ttf", {"C"});
    EXPECT_THAT(References(registry.GetIndex(kPathIndex)->CopyFontsForKey(folder.URLOf("x").Get())),
                UnorderedElementsAre(ReferenceOf(a), ReferenceOf(b)));
}

TEST_F(Indexes, EachIndexedPropertyHasItsIndexAndTheOthersNone) {
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyName), registry.GetIndex(1));
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyFullName), registry.GetIndex(2));
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyFamilyName), registry.GetIndex(3));
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertySubfamilyName), registry.GetIndex(4));
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyURL), registry.GetIndex(0));
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyTraits), nullptr);
    EXPECT_EQ(registry.GetIndexForProperty(kVLFontPropertyCharacterSet), nullptr);
    EXPECT_EQ(registry.GetIndexForProperty(nullptr), nullptr);
}

TEST_F(Indexes, AKeyStringThatIsAnotherObjectHasTheSameIndex) {
    EXPECT_EQ(registry.GetIndexForProperty(String("KSFontNameAttribute").Get()), registry.GetIndex(1));
}

TEST_F(Indexes, ThatAreThereOpenAFileThatIsRegisteredNotOnceMore) {
    for (uint16_t id = 0; id < kIndexCount; ++id) registry.GetIndex(id);
    const auto url = folder.Add("a.ttf", NamedFace{"Foo", "Bold"});
    Openings openings(folder.File("a.ttf"));
    ASSERT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
    EXPECT_EQ(openings.Count(), 1u);
    EXPECT_THAT(Find(kFullNameIndex, "Foo Bold"), ElementsAre(ReferenceOf(url)));
    EXPECT_EQ(openings.Count(), 1u);
}

} // namespace
} // namespace vellum::test
