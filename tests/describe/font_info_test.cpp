// SPDX-License-Identifier: MIT
// Whose font info is found, and what it is brought up to date with.
#include "describe/font_info.hpp"
#include "describe/font_info_files.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "support/font_builder.hpp"
#include "support/threads.hpp"
#include "values/val_bookmark.hpp"
#include "values/val_number.hpp"

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

TEST(FontInfoFileName, HasBothSizesInUpperCaseHexadecimal) {
    EXPECT_EQ(FontInfoFileName("Foo.otf", 0x1A2B, 0), "Foo.otf.1A2B_0.fontinfo");
    EXPECT_EQ(FontInfoFileName("Foo.otf", 0, 0), "Foo.otf.0_0.fontinfo");
    EXPECT_EQ(FontInfoFileName("Foo.otf", 0xABCDEF, 0x10), "Foo.otf.ABCDEF_10.fontinfo");
    EXPECT_EQ(FontInfoFileName("Foo.otf", UINT64_MAX, UINT64_MAX),
              "Foo.otf.FFFFFFFFFFFFFFFF_FFFFFFFFFFFFFFFF.fontinfo");
}

TEST(FontInfoFileName, KeepsTheBytesOfTheFontsName) {
    EXPECT_EQ(FontInfoFileName("a b%#\xC3\xA4\xFF", 1, 2), "a b%#\xC3\xA4\xFF.1_2.fontinfo");
    EXPECT_EQ(FontInfoFileName("", 1, 2), ".1_2.fontinfo");
}

// --- the file name ------------------------------------------------------------------------------

TEST_F(FontInfo, IsNoneForAFontThatGrewByAByte) {
    StoreFaces(Face("file:///a"));
    EXPECT_TRUE(Load());
    WriteFont("Foo.ttf", "123456");
    EXPECT_FALSE(Load());
}

TEST_F(FontInfo, IsNoneForAFontWhoseSecondForkGrew) {
    StoreFaces(Face("file:///a"));
    folder_.Write(".rsrc/Foo.ttf", "1");
    EXPECT_FALSE(Load());
}

TEST_F(FontInfo, IsFoundByTheSizeOfTheSecondFork) {
    const std::string path = WriteFont("Foo.ttf", std::string(0x1A2B, 'x'));
    folder_.Write(".rsrc/Foo.ttf", std::string(0xFED, 'x'));
    WriteInfo("Foo.ttf.1A2B_FED.fontinfo", Flatten(ArrayOf(Face("file:///a")).Get()));
    EXPECT_TRUE(LoadFrom(path));
}

TEST_F(FontInfo, IsNoneUnderAnotherName) {
    StoreFaces(Face("file:///a"));
    EXPECT_FALSE(LoadFrom(WriteFont("Bar.ttf")));
    EXPECT_FALSE(LoadFrom(WriteFont("foo.ttf")));
}

TEST_F(FontInfo, IsFoundUnderTheNameOfASymbolicLink) {
    WriteFont("Foo.ttf");
    fs::create_symlink("Foo.ttf", folder_.File("Link.ttf"));
    WriteInfo("Link.ttf.5_0.fontinfo", Flatten(ArrayOf(Face("file:///a")).Get()));
    EXPECT_EQ(URLOf(LoadFrom(folder_.File("Link.ttf"))), "file://" + folder_.File("Link.ttf"));
    EXPECT_FALSE(Load());
}

TEST_F(FontInfo, IsFoundWhateverTheFragment) {
    StoreFaces(Face("file:///a#postscript-name=A"), Face("file:///a#postscript-name=B"));
    const auto faces =
        TFontInfo::CreateFontInfoForFontURL(MakeURL("file://" + Path() + "#postscript-name=B").Get());
    EXPECT_EQ(ValArrayGetCount(faces.Get()), 2u);
    EXPECT_EQ(URLOf(faces), "file://" + Path() + "#postscript-name=A");
}

TEST_F(FontInfo, IsNoneForWhatIsNoFontFile) {
    StoreFaces(Face("file:///a"));
    WriteInfo("folder.0_0.fontinfo", Flatten(ArrayOf(Face("file:///a")).Get()));
    EXPECT_FALSE(TFontInfo::CreateFontInfoForFontURL(nullptr));
    EXPECT_FALSE(LoadFrom(folder_.MakeFolder("folder")));
    EXPECT_FALSE(LoadFrom(folder_.File("none/Foo.ttf")));
    EXPECT_FALSE(TFontInfo::CreateFontInfoForFontURL(MakeURL("http://host" + Path()).Get()));
    EXPECT_FALSE(TFontInfo::CreateFontInfoForFontURL(MakeURL("file://inMemory_0x1#a").Get()));
}

TEST_F(FontInfo, FollowsAFontThatMoved) {
    StoreFaces(Face("file:///old/Foo.ttf#postscript-name=Foo"));
    const std::string moved = folder_.MakeFolder("new place") + "/Foo.ttf";
    fs::rename(Path(), moved);
    EXPECT_EQ(URLOf(LoadFrom(moved)), "file://" + folder_.File("new%20place/Foo.ttf#postscript-name=Foo"));
    EXPECT_FALSE(Load());
}

// --- the rebuilt URL ----------------------------------------------------------------------------

TEST_F(FontInfo, EscapesThePath) {
    const struct {
        const char *name;
        const char *escaped;
    } cases[] = {{"a b", "a%20b"},       {"100%", "100%25"},     {"a%20b", "a%2520b"},
                 {"a#b?c", "a%23b%3Fc"}, {"\xC3\xA4", "%C3%A4"}, {"\xFF", "%FF"}};
    for (const auto &[name, escaped] : cases) {
        const std::string path = WriteFont(std::string(name) + "/" + name + ".ttf");
        WriteInfo(std::string(name) + ".ttf.5_0.fontinfo",
                  Flatten(ArrayOf(Face("file:///a#postscript-name=Foo")).Get()));
        const auto faces = LoadFrom(path);
        EXPECT_EQ(URLOf(faces),
                  "file://" + folder_.File(escaped) + "/" + escaped + ".ttf#postscript-name=Foo");
        const auto url = Retain(Cast<ValURL>(PropertyOf(faces, 0, kVLFontPropertyURL)));
        EXPECT_EQ(TextOf(Adopt(ValURLCopyFileSystemPath(url.Get()))), path);
    }
}

TEST_F(FontInfo, KeepsTheFragmentsOfFaces) {
    const char *const fragments[] = {"",
                                     "#",
                                     "#postscript-name=Foo",
                                     "#postscript-name=A%20B%25%23",
                                     "#postscript-name=A%3BB%3DC",
                                     "#postscript-name=%C3%A4",
                                     "#postscript-name=A%FFB",
                                     "#postscript-name=Foo;var:wght=700;var:wdth=87.5",
                                     "#;a=b=c;;"};
    for (const char *fragment : fragments) {
        StoreFaces(Face("file:///old/Foo.ttf" + std::string(fragment)));
        EXPECT_EQ(URLOf(Load()), "file://" + Path() + fragment);
    }
}

TEST_F(FontInfo, EscapesWhatShouldStandEscapedInAFragment) {
    StoreFaces(Face("file:///a#postscript-name=A B#C%zz%41"), Face("file:///a#n=A%00B"));
    const auto faces = Load();
    EXPECT_EQ(URLOf(faces, 0), "file://" + Path() + "#postscript-name=A%20B%23C%25zzA");
    EXPECT_EQ(URLOf(faces, 1), "file://" + Path() + "#n=A%00B");
}

TEST_F(FontInfo, HasTheURLThatTheParserGivesTheFace) {
    const auto names = PlainNames("Foo", "Bold", "Foo;Bo=ld #%");
    const std::string path = folder_.Write("a #b.ttf", FontBuilder().Names(names).Build());
    const auto fonts = CreateFontsFromURL(FileURL(path).Get());
    ASSERT_TRUE(fonts);
    const auto url =
        TGxFont(Retain(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), 0)))).CopyURL();
    TValMutableDict face;
    face.Set(kVLFontPropertyURL, url.Get());
    WriteInfo(FontInfoFileName("a #b.ttf", fs::file_size(path), 0), Flatten(ArrayOf(face.Publish()).Get()));
    EXPECT_EQ(URLOf(LoadFrom(path)), TextOf(ValURLGetString(url.Get())));
}

// --- bookmark and flags -------------------------------------------------------------------------

TEST_F(FontInfo, HasTheBookmarkOfTheFile) {
    StoreFaces(Face("file:///a#1"),
               Face("file:///a#2", {{kVLFontPropertyBookmark, Adopt(ValDataCreate("old", 3))}}));
    const auto faces = Load();
    for (size_t i = 0; i < 2; ++i) {
        const auto *data = Cast<ValData>(PropertyOf(faces, i, kVLFontPropertyBookmark));
        ASSERT_TRUE(data);
        EXPECT_EQ(TValBookmark(Retain(data)).Resolve(), TValURL(FileURL(Path())));
    }
}

TEST_F(FontInfo, AddsTheFlagsOfTheVolumeToTheStoredOnes) {
    const auto flags = [](auto value) { return std::vector<Property>{{kVLFontPropertyFlags, value}}; };
    StoreFaces(Face("file:///a#1"), Face("file:///a#2", flags(MakeNumber(int32_t{0x48}))),
               Face("file:///a#3", flags(MakeNumber(INT32_MIN))),
               Face("file:///a#4", flags(MakeNumber(int64_t{0x100000048}))),
               Face("file:///a#5", flags(Retain(kValBooleanTrue))));
    const auto url = FileURL(Path());
    const uint32_t volume = VLGetFontFlagsForDirFlags(VLGetDirectoryFlags(url.Get()));
    ASSERT_NE(volume, 0u);
    const auto faces = Load();
    const uint32_t stored[] = {0, 0x48, 0x80000000, 0x48, 1};
    for (size_t i = 0; i < std::size(stored); ++i) {
        const auto *number = Cast<ValNumber>(PropertyOf(faces, i, kVLFontPropertyFlags));
        EXPECT_EQ(ValNumberGetNumberType(number), kValNumberTypeSInt32);
        EXPECT_EQ(static_cast<uint32_t>(ReadSInt32(number)), stored[i] | volume) << i;
    }
}

// --- the folder ---------------------------------------------------------------------------------

TEST_F(FontInfo, IsOffForGoodWhenTheFolderIsNotThereAtFirst) {
    WriteFont("Foo.ttf");
    EXPECT_FALSE(Load());
    StoreFaces(Face("file:///a"));
    EXPECT_FALSE(Load());
}

TEST_F(FontInfo, IsNewForEachCaller) {
    StoreFaces(Face("file:///a"));
    const auto first = Load(), second = Load();
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_NE(ValArrayGetValue(first.Get(), 0), ValArrayGetValue(second.Get(), 0));
    EXPECT_TRUE(ValEqual(first.Get(), second.Get()));
}

TEST(FontInfoWithoutResources, IsNone) {
    setenv("VL_FRAMEWORK_RESOURCES_PATH", "/no/such/folder", 1);
    const TempDir folder;
    EXPECT_FALSE(TFontInfo::CreateFontInfoForFontURL(FileURL(folder.Write("Foo.ttf", "12345")).Get()));
}

TEST(ConcurrentFontInfo, FindsTheFolderForAllThreads) {
    const FrameworkResources resources;
    const TempDir folder;
    resources.Folder().Write("FontInfo/Foo.ttf.5_0.fontinfo", Flatten(ArrayOf(Face("file:///a")).Get()));
    const auto url = FileURL(folder.Write("Foo.ttf", "12345"));
    Ref<const ValArray> found[kThreads];
    OnEveryThread([&](size_t thread) { found[thread] = TFontInfo::CreateFontInfoForFontURL(url.Get()); });
    for (const auto &faces : found) {
        ASSERT_TRUE(faces);
        EXPECT_TRUE(ValEqual(faces.Get(), found[0].Get()));
    }
}

} // namespace
} // namespace vellum::test
