// SPDX-License-Identifier: MIT
#include "describe/font_metadata.hpp"
#include "describe/metadata_files.hpp"
#include "support/captured_log.hpp"
#include "support/threads.hpp"
#include "values/val_number.hpp"

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

TEST_F(FontMetadata, IsThatOfTheEntryWithTheFilesName) {
    Write("Foo.ttf", List(Array(Dict(FileName("Bar.ttf") + Faces(Face("bar"))) +
                                Dict(FileName("Foo.ttf") + Faces(Face("foo"))) +
                                Dict(FileName("Foo.ttf") + Faces(Face("second"))))));
    EXPECT_EQ(Choose(""), "foo");
}

TEST_F(FontMetadata, IsNoneWhenOnlyOtherFilesAreListed) {
    Write("Foo.ttf", List(Array(Dict(FileName("Bar.ttf") + Faces(Face("bar"))) +
                                Dict(FileName("foo.ttf") + Faces(Face("lower"))) +
                                Dict(FileName("Foo.ttf2") + Faces(Face("longer"))) +
                                Dict(FileName("") + Faces(Face("empty"))) + Dict(Faces(Face("unnamed"))))));
    EXPECT_EQ(Choose(""), kNone);
}

TEST_F(FontMetadata, KeepsTheWholeDictionaryOfTheFace) {
    WriteFaces(Dict(Key("MTD_Typeface_info_Is_UI_Font", Text("TRUE")) + Key("Other", Array(Integer(7)))));
    const TFontMetadata metadata(MakeURL("file:///Foo.ttf").Get());
    ASSERT_TRUE(metadata);
    EXPECT_EQ(ValDictionaryGetCount(metadata.Get()), 2u);
    const auto key = String("MTD_Typeface_info_Is_UI_Font");
    EXPECT_EQ(TextOf(metadata[key.Get()]), "TRUE");
    EXPECT_EQ(TextOf(metadata.Get<ValString>(key.Get())), "TRUE");
    EXPECT_EQ(metadata.Get<ValNumber>(key.Get()), nullptr);
    EXPECT_EQ(ValArrayGetCount(metadata.Get<ValArray>(String("Other").Get())), 1u);
    EXPECT_EQ(metadata[String("Missing").Get()], nullptr);
}

TEST_F(FontMetadata, IsFoundByFileNamesOfAllKindsOfCharacters) {
    for (const char *name : {"a b.ttf", "100%.ttf", "a%20b.ttf", "a#b.ttf", "\xC3\xA4\xE6\x98\x8E.ttf"}) {
        Write(name, List(Array(Dict(FileName(name) + Faces(Face(name))))));
        EXPECT_EQ(MarkOf(FileURL("/somewhere/" + std::string(name)).Get()), name);
    }
}

// Nothing that is written in a property list has such a name.
TEST_F(FontMetadata, IsNoneForANameThatIsNoText) {
    Write("a\xFF.ttf", List(Array(Dict(FileName("a.ttf") + Faces(Face("a"))) +
                                  Dict(FileName("a\xEF\xBF\xBD.ttf") + Faces(Face("replaced"))))));
    EXPECT_EQ(MarkOf(FileURL("/somewhere/a\xFF.ttf").Get()), kNone);
}

TEST_F(FontMetadata, IsNoneForWhatIsNoFontFile) {
    WriteFaces(Face("foo"));
    Write("", List(Array(Dict(FileName("") + Faces(Face("root"))))));
    EXPECT_EQ(MarkOf(nullptr), kNone);
    EXPECT_EQ(MarkOf(MakeURL("http://example.org/Foo.ttf").Get()), kNone);
    EXPECT_EQ(MarkOf(MakeURL("file://inMemory_0x1/Foo.ttf#postscript-name=A").Get()), kNone);
    EXPECT_EQ(MarkOf(MakeURL("file://inMemory_0x1#postscript-name=A").Get()), kNone);
}

TEST_F(FontMetadata, IsNotReadOutsideOfItsFolder) {
    resources_.Folder().MakeFolder("FontMetadata");
    resources_.Folder().Write("Foo.ttf.vlist",
                              List(Array(Dict(FileName("../Foo.ttf") + Faces(Face("outside"))))));
    EXPECT_EQ(MarkOf(MakeURL("file:///somewhere/..%2FFoo.ttf").Get()), kNone);
}

TEST_F(FontMetadata, IsOffForGoodWhenTheFolderIsNotThereAtFirst) {
    EXPECT_EQ(Choose(""), kNone);
    WriteFaces(Face("foo"));
    EXPECT_EQ(Choose(""), kNone);
}

TEST_F(FontMetadata, IsOffWhenTheFolderIsAFile) {
    resources_.Folder().Write("FontMetadata", "");
    EXPECT_EQ(Choose(""), kNone);
}

TEST_F(FontMetadata, IsReadThroughALinkToTheFolder) {
    resources_.Folder().MakeFolder("elsewhere");
    fs::create_directory_symlink("elsewhere", resources_.Folder().File("FontMetadata"));
    WriteFaces(Face("foo"));
    EXPECT_EQ(Choose(""), "foo");
}

TEST_F(FontMetadata, IsReadAnewEachTime) {
    WriteFaces(Face("foo"));
    EXPECT_EQ(Choose(""), "foo");
    WriteFaces(Face("changed"));
    EXPECT_EQ(Choose(""), "changed");
}

TEST(FontMetadataWithoutResources, IsNone) {
    setenv("VL_FRAMEWORK_RESOURCES_PATH", "/no/such/folder", 1);
    EXPECT_EQ(MarkOf(FileURL("/Foo.ttf").Get()), kNone);
}

TEST(ConcurrentFontMetadata, FindsTheFolderForAllThreads) {
    const FrameworkResources resources;
    resources.Folder().Write("FontMetadata/Foo.ttf.vlist",
                             List(Array(Dict(FileName("Foo.ttf") + Faces(Face("foo"))))));
    const auto url = FileURL("/Foo.ttf");
    std::string marks[kThreads];
    OnEveryThread([&](size_t thread) { marks[thread] = MarkOf(url.Get()); });
    for (const std::string &mark : marks) EXPECT_EQ(mark, "foo");
}

TEST(ConcurrentFontMetadata, IsOffForAllThreads) {
    const FrameworkResources resources;
    const auto url = FileURL("/Foo.ttf");
    std::string marks[kThreads];
    OnEveryThread([&](size_t thread) { marks[thread] = MarkOf(url.Get()); });
    for (const std::string &mark : marks) EXPECT_EQ(mark, kNone);
}

// --- the check ----------------------------------------------------------------------------------

TEST_F(FontMetadata, LogsEachAccessOnceWhenTheVariableIsSet) {
    setenv("VL_METADATA_CHECK", "", 1); // any value
    WriteFaces(Face("first", "A"));
    const CapturedLog log;
    EXPECT_EQ(Choose("#postscript-name=A"), "first");
    ASSERT_EQ(log.Records().size(), 1u);
    EXPECT_EQ(log.Records()[0].level, static_cast<LogLevel>(4));
    EXPECT_EQ(log.Records()[0].text,
              "REMOVE BEF SHIPPING: Accessing metadata for file:///somewhere/Foo.ttf#postscript-name=A. "
              "Only OK while generating dump files\n");
    EXPECT_EQ(Choose(""), "first");
    EXPECT_EQ(log.Lines().size(), 2u);
}

TEST_F(FontMetadata, LogsTheAccessToAnEntryWithoutFaces) {
    setenv("VL_METADATA_CHECK", "1", 1);
    WriteFaces("");
    const CapturedLog log;
    EXPECT_EQ(Choose(""), kNone);
    EXPECT_EQ(log.Lines().size(), 1u);
}

TEST_F(FontMetadata, LogsNothingWhenThereIsNoEntryForTheFile) {
    setenv("VL_METADATA_CHECK", "1", 1);
    Write("Foo.ttf", List(Array(Dict(FileName("Bar.ttf") + Faces(Face("bar"))))));
    const CapturedLog log;
    EXPECT_EQ(Choose(""), kNone);
    EXPECT_EQ(MarkOf(FileURL("/None.ttf").Get()), kNone);
    EXPECT_EQ(MarkOf(nullptr), kNone);
    EXPECT_TRUE(log.Lines().empty());
}

TEST_F(FontMetadata, LogsNothingWhenTheVariableIsNotSet) {
    unsetenv("VL_METADATA_CHECK");
    WriteFaces(Face("foo"));
    const CapturedLog log;
    EXPECT_EQ(Choose(""), "foo");
    EXPECT_TRUE(log.Lines().empty());
}

// --- the string encoding ------------------------------------------------------------------------

TFontMetadata WithScript(const void *value) {
    const auto key = String("MTD_Typeface_Repertoire_PrimaryScript");
    const void *keys[] = {key.Get()};
    return TFontMetadata(Ref<const ValDictionary>(Adopt(ValDictionaryCreate(keys, &value, 1))));
}

struct ScriptCase {
    const char *script;
    uint32_t encoding;
};

// Written out, not taken from the code: the builders write these names.
constexpr ScriptCase kScriptCases[] = {
    {"Latin", 0},
    {"Japanese", 1},
    {"Chinese-Traditional", 2},
    {"Korean", 3},
    {"Arabic", 4},
    {"Hebrew", 5},
    {"Greek", 6},
    {"Cyrillic", 7},
    {"Devanagari", 9},
    {"Gurmikhi", 10},
    {"Gujarati", 11},
    {"Oriya", 12},
    {"Bengali", 13},
    {"Tamil", 14},
    {"Telugu", 15},
    {"Kannada", 16},
    {"Malayalam", 17},
    {"Sinhalese", 18},
    {"Burmese", 19},
    {"Khmer", 20},
    {"Thai", 21},
    {"Laotian", 22},
    {"Georgian", 23},
    {"Armenian", 24},
    {"Chinese-Simplified", 25},
    {"Tibetan", 26},
    {"Mongolian", 27},
    {"Geez", 28},
    {"Slavic", 29},
    {"Vietnamese", 30},
    {"Sindhi", 4},
};
static_assert(std::size(kScriptCases) == 31);

TEST(FontMetadataStringEncoding, IsThatOfThePrimaryScript) {
    for (const auto &[script, encoding] : kScriptCases)
        EXPECT_EQ(WithScript(String(script).Get()).GetStringEncoding(), encoding) << script;
}

TEST(FontMetadataStringEncoding, IsNoneForAScriptThatIsNotKnown) {
    for (const char *script : {"", "latin", "Latin ", "Gurmukhi", "Chinese", "Klingon"})
        EXPECT_EQ(WithScript(String(script).Get()).GetStringEncoding(), 0xFFFFFFFF) << script;
}

TEST(FontMetadataStringEncoding, IsNoneForWhatIsNoString) {
    EXPECT_EQ(WithScript(MakeNumber(int32_t{1}).Get()).GetStringEncoding(), 0xFFFFFFFF);
    EXPECT_EQ(WithScript(kValBooleanTrue).GetStringEncoding(), 0xFFFFFFFF);
}

TEST(FontMetadataStringEncoding, IsNoneWithoutMetadata) {
    EXPECT_EQ(TFontMetadata().GetStringEncoding(), 0xFFFFFFFF);
    const TFontMetadata empty(Ref<const ValDictionary>(Adopt(ValDictionaryCreate(nullptr, nullptr, 0))));
    EXPECT_TRUE(empty);
    EXPECT_EQ(empty.GetStringEncoding(), 0xFFFFFFFF);
}

TEST_F(FontMetadata, HasTheStringEncodingThatTheFileNames) {
    WriteFaces(Dict(Key("MTD_Typeface_Repertoire_PrimaryScript", Text("Thai"))));
    EXPECT_EQ(TFontMetadata(FileURL("/Foo.ttf").Get()).GetStringEncoding(), 21u);
    EXPECT_EQ(TFontMetadata(FileURL("/None.ttf").Get()).GetStringEncoding(), 0xFFFFFFFF);
}

} // namespace
} // namespace vellum::test
