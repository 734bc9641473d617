// SPDX-License-Identifier: MIT
// Fonts in memory, and the URLs that name them.
#include "describe/gx_font_wrapper.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

class DataFonts : public ::testing::Test {
protected:
    bool Add(const Ref<const ValData> &data, uint32_t container = 0) {
        return registry.RegisterDataFont(data.Get(), container, 0, kVLScopeProcess);
    }
    bool Remove(const Ref<const ValData> &data) {
        return registry.UnregisterDataFont(data.Get(), kVLScopeProcess);
    }
    Ref<const ValURL> URLOf(const Ref<const ValData> &data) {
        return registry.CopyURLForDataFont(data.Get(), 0);
    }
    Ref<const ValSet> Named(const char *name) {
        return registry.GetIndex(kPostScriptNameIndex)->CopyFontsForKey(String(name).Get());
    }

    TLocalGlypharyImp registry;
    Ref<const ValData> foo = AsData(MakeFont({"Foo", "Bold"}));
};

TEST_F(DataFonts, AreNamedByTheirAddressAndTheirPostScriptName) {
    ASSERT_TRUE(Add(foo));
    const auto url = URLOf(foo);
    EXPECT_THAT(TextOf(ValURLGetString(url.Get())),
                MatchesRegex("file://inMemory_0x[0-9a-f]+#postscript-name=Foo-Bold"));
    EXPECT_TRUE(TGxFont::IsInMemoryURL(url.Get()));
}

TEST_F(DataFonts, CountAsOneChangeEach) {
    Add(foo);
    EXPECT_EQ(registry.GetChangeCount(), 1u);
    Remove(foo);
    EXPECT_EQ(registry.GetChangeCount(), 2u);
    EXPECT_FALSE(Remove(foo));
    EXPECT_EQ(registry.GetChangeCount(), 2u);
}

TEST_F(DataFonts, ABufferIsRegisteredOnceAndSoIsAnEqualCopyOfIt) {
    ASSERT_TRUE(Add(foo));
    EXPECT_FALSE(Add(foo));
    EXPECT_FALSE(Add(AsData(MakeFont({"Foo", "Bold"}))));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(DataFonts, AreFoundByTheirNameAndTheirURL) {
    Add(foo);
    EXPECT_EQ(ValSetGetCount(Named("foo-bold").Get()), 1u);
    EXPECT_EQ(registry.GetFontScope(URLOf(foo).Get()), 1u);
}

TEST_F(DataFonts, UnregisteringOneLeavesTheOthers) {
    const auto bar = AsData(MakeFont({"Bar"}));
    Add(foo);
    Add(bar);
    const auto url = URLOf(bar);
    ASSERT_TRUE(Remove(foo));
    EXPECT_FALSE(Named("Foo-Bold"));
    EXPECT_FALSE(registry.GetDataFont(foo.Get(), nullptr));
    EXPECT_TRUE(registry.IsFontRegistered(url.Get()));
    EXPECT_TRUE(registry.GetDataFont(bar.Get(), nullptr));
}

TEST_F(DataFonts, KeepTheLegacyContainerThatTheyWereGiven) {
    Add(foo, 77);
    uint32_t container = 1;
    EXPECT_TRUE(registry.GetDataFont(foo.Get(), &container));
    EXPECT_EQ(container, 77u);
    const auto bar = AsData(MakeFont({"Bar"}));
    Add(bar);
    registry.GetDataFont(bar.Get(), &container);
    EXPECT_EQ(container, 0u);
    registry.GetDataFont(foo.Get(), &container);
    EXPECT_EQ(container, 77u);
    EXPECT_FALSE(registry.GetDataFont(AsData({1, 2, 3}).Get(), &container));
}

TEST_F(DataFonts, AreTheFirstFaceOfABufferThatHoldsSeveral) {
    const auto collection = AsData(MakeCollection({{"A"}, {"B"}}));
    ASSERT_TRUE(Add(collection));
    EXPECT_TRUE(Named("A-Regular"));
    EXPECT_FALSE(Named("B-Regular"));
}

TEST_F(DataFonts, BytesThatHoldNoFontAreRefused) {
    EXPECT_FALSE(Add(AsData({})));
    EXPECT_FALSE(Add(AsData({'n', 'o'})));
    EXPECT_FALSE(registry.RegisterDataFont(nullptr, 0, 0, kVLScopeProcess));
    EXPECT_EQ(registry.GetChangeCount(), 0u);
}

TEST_F(DataFonts, OneWithoutAPostScriptNameIsRefused) {
    NamedFace nameless{"Foo"};
    nameless.postscript_name.clear();
    EXPECT_FALSE(Add(AsData(MakeFont(nameless))));
}

TEST_F(DataFonts, UnregisteringByURLForgetsTheBufferToo) {
    Add(foo, 77);
    registry.UnregisterFont(URLOf(foo).Get(), kVLScopeProcess);
    EXPECT_FALSE(registry.GetDataFont(foo.Get(), nullptr));
    EXPECT_TRUE(Add(foo));
}

TEST_F(DataFonts, DisabledOnesCanNotBeUnregistered) {
    Add(foo);
    ASSERT_TRUE(registry.DisableFont(URLOf(foo).Get(), kVLScopeProcess));
    EXPECT_FALSE(Remove(foo));
}

TEST_F(DataFonts, WithoutALegacyServiceALegacyIDLeadsNowhere) {
    Add(foo, 77);
    EXPECT_FALSE(registry.CopyURLForDataFont(nullptr, 77));
    EXPECT_EQ(registry.GetDataFontFountFont(URLOf(foo).Get()), 0u);
}

// ---- URLs of fonts in memory ----

TEST(InMemoryURL, IsToldByItsHost) {
    EXPECT_TRUE(TGxFont::IsInMemoryURL(MakeURL("file://inMemory_0x1#postscript-name=A").Get()));
    EXPECT_FALSE(TGxFont::IsInMemoryURL(MakeURL("file:///tmp/inMemory_x.ttf").Get()));
    EXPECT_FALSE(TGxFont::IsInMemoryURL(MakeURL("file://host/inMemory_0x1").Get()));
    EXPECT_FALSE(TGxFont::IsInMemoryURL(nullptr));
}

TEST(InMemoryURL, FindsTheFontAsLongAsItLives) {
    Ref<const ValURL> url;
    {
        TGxFont font(AsData(MakeFont({"Foo"})).Get());
        url = font.CopyURL();
        const TGxFont again(url.Get(), true);
        EXPECT_EQ(again.Font().Get(), font.Font().Get());
        EXPECT_TRUE(again.IsInMemory());
        EXPECT_EQ(ValArrayGetCount(CreateFontsFromURL(url.Get()).Get()), 1u);
    }
    EXPECT_FALSE(TGxFont(url.Get(), true).Font());
    EXPECT_FALSE(CreateFontFromURL(url.Get()));
}

TEST(InMemoryURL, AnAddressThatIsNotAliveYieldsNothing) {
    for (const char *text :
         {"file://inMemory_0x1000#postscript-name=A", "file://inMemory_0x0", "file://inMemory_",
          "file://inMemory_zzz", "file://inMemory_0xffffffffffffffff#postscript-name=A",
          "file://inMemory_0x10000000000000000"})
        EXPECT_FALSE(CreateFontFromURL(MakeURL(text).Get())) << text;
}

TEST(InMemoryURL, AnAddressThatIsAliveUnderAnotherNameYieldsNothing) {
    TGxFont font(AsData(MakeFont({"Foo"})).Get());
    const auto url = font.CopyURL();
    const auto other = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=Bar").Get()));
    EXPECT_FALSE(CreateFontFromURL(other.Get()));
    EXPECT_TRUE(CreateFontFromURL(url.Get()));
}

TEST(InMemoryURL, ARegularFilesURLIsTheParsers) {
    const FontFolder folder;
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    TGxFont font(url.Get(), false);
    EXPECT_FALSE(font.IsInMemory());
    EXPECT_TRUE(ValEqual(font.CopyURL().Get(), url.Get()));
}

} // namespace
} // namespace vellum::test
