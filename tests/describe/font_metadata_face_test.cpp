// SPDX-License-Identifier: MIT
// Which face's metadata is chosen, and what malformed files give.
#include "describe/metadata_files.hpp"
#include "platform/app/property_list.hpp"

#include <sys/stat.h>

namespace vellum::test {
namespace {

// --- which face ---------------------------------------------------------------------------------

TEST_F(FontMetadata, WithoutAFragmentIsThatOfTheFirstFace) {
    WriteFaces(Face("first", "A") + Face("second", "B"));
    EXPECT_EQ(Choose(""), "first");
    EXPECT_EQ(Choose("#"), "first");
}

TEST_F(FontMetadata, IsThatOfTheFaceWithTheFragmentsName) {
    WriteFaces(Face("first", "A") + Face("second", "B", "C") + Face("third", "", "D"));
    EXPECT_EQ(Choose("#postscript-name=B"), "second");
    EXPECT_EQ(Choose("#postscript-name=C"), "second");
    EXPECT_EQ(Choose("#postscript-name=D"), "third");
}

TEST_F(FontMetadata, IsThatOfTheFirstFaceWithEitherName) {
    WriteFaces(Face("first", "A") + Face("second", "X", "B") + Face("third", "B"));
    EXPECT_EQ(Choose("#postscript-name=B"), "second");
}

TEST_F(FontMetadata, IsThatOfTheFirstFaceWhenNoneHasTheName) {
    WriteFaces(Face("first", "A") + Face("second", "B"));
    EXPECT_EQ(Choose("#postscript-name=Missing"), "first");
    EXPECT_EQ(Choose("#postscript-name=b"), "first");
    EXPECT_EQ(Choose("#postscript-name="), "first");
}

TEST_F(FontMetadata, SplitsTheFragmentBeforeItDecodesIt) {
    WriteFaces(Face("first", "A") + Face("second", "A;B=C #%") + Face("third", "\xC3\xA4"));
    EXPECT_EQ(Choose("#postscript-name=A%3BB%3DC%20%23%25"), "second");
    EXPECT_EQ(Choose("#postscript%2Dname=A%3BB%3DC%20%23%25"), "second");
    EXPECT_EQ(Choose("#postscript-name=%C3%A4"), "third");
    EXPECT_EQ(Choose("#postscript-name%3D%C3%A4"), "first");
}

TEST_F(FontMetadata, LooksAtEveryItemOfTheFragment) {
    WriteFaces(Face("first", "A") + Face("second", "B") + Face("third", "C"));
    EXPECT_EQ(Choose("#var:wght=700;postscript-name=B"), "second");
    EXPECT_EQ(Choose("#postscript-name=Missing;postscript-name=C;postscript-name=B"), "third");
    EXPECT_EQ(Choose("#;;postscript-name=B;"), "second");
}

TEST_F(FontMetadata, PassesOverItemsThatNameNoFace) {
    WriteFaces(Face("first", "A") + Face("second", "B"));
    EXPECT_EQ(Choose("#B"), "first");
    EXPECT_EQ(Choose("#full-name=B"), "first");
    EXPECT_EQ(Choose("#Postscript-Name=B"), "first");
    EXPECT_EQ(Choose("#postscript-name=B=B"), "first");
    EXPECT_EQ(Choose("#postscript-name"), "first");
    EXPECT_EQ(Choose("#postscript-name=B%00"), "first");
}

// --- malformed files ----------------------------------------------------------------------------

TEST_F(FontMetadata, IsNoneWithoutAReadableFile) {
    resources_.Folder().MakeFolder("FontMetadata/Folder.ttf.vlist");
    ASSERT_EQ(::mkfifo(resources_.Folder().File("FontMetadata/Fifo.ttf.vlist").c_str(), 0600), 0);
    EXPECT_EQ(MarkOf(FileURL("/None.ttf").Get()), kNone);
    EXPECT_EQ(MarkOf(FileURL("/Folder.ttf").Get()), kNone);
    EXPECT_EQ(MarkOf(FileURL("/Fifo.ttf").Get()), kNone);
}

TEST_F(FontMetadata, IsNoneForWhatIsNoArrayInAPropertyList) {
    const std::string entry = Dict(FileName("Foo.ttf") + Faces(Face("foo")));
    const std::string whole = List(Array(entry));
    const std::string lists[] = {"",
                                 "text",
                                 Array(entry),
                                 List(entry),
                                 List(Text("Foo.ttf")),
                                 List(Integer(1)),
                                 List("<true/>"),
                                 List(Array("")),
                                 whole.substr(0, whole.size() - 1),
                                 whole + whole,
                                 "<!DOCTYPE vlist>" + whole};
    for (const std::string &list : lists) {
        Write("Foo.ttf", list);
        EXPECT_EQ(Choose(""), kNone) << list;
    }
    Write("Foo.ttf", whole);
    EXPECT_EQ(Choose(""), "foo");
}

TEST_F(FontMetadata, IsReadFromFilesUpToTheLimitOfPropertyLists) {
    std::string list = List(Array(Dict(FileName("Foo.ttf") + Faces(Face("foo")))));
    list.resize(kMaximumPropertyListSize, ' ');
    Write("Foo.ttf", list);
    EXPECT_EQ(Choose(""), "foo");
    Write("Foo.ttf", list + ' ');
    EXPECT_EQ(Choose(""), kNone);
}

TEST_F(FontMetadata, PassesOverEntriesOfAnotherKind) {
    const std::string faces = Faces(Face("wrong"));
    Write("Foo.ttf", List(Array(Text("Foo.ttf") + Integer(1) + Array("") +
                                Dict(Key("MTD_FontFile_FileName", Integer(1)) + faces) +
                                Dict(Key("MTD_FontFile_FileName", Array(Text("Foo.ttf"))) + faces) +
                                Dict(FileName("Foo.ttf") + Faces(Face("right"))))));
    EXPECT_EQ(Choose(""), "right");
}

TEST_F(FontMetadata, IsNoneWithoutAListOfFaces) {
    const std::string lists[] = {"", Key("MTD_Typeface_List", Face("face")),
                                 Key("MTD_Typeface_List", Text("face")), Faces("")};
    for (const std::string &faces : lists) {
        Write("Foo.ttf", List(Array(Dict(FileName("Foo.ttf") + faces))));
        EXPECT_EQ(Choose(""), kNone) << faces;
        EXPECT_EQ(Choose("#postscript-name=A"), kNone) << faces;
    }
}

TEST_F(FontMetadata, IsNoneWhenTheFirstFaceIsNoDictionary) {
    WriteFaces(Text("A") + Face("second", "B"));
    EXPECT_EQ(Choose(""), kNone);
    EXPECT_EQ(Choose("#postscript-name=A"), kNone);
    EXPECT_EQ(Choose("#postscript-name=B"), "second");
}

TEST_F(FontMetadata, PassesOverNamesThatAreNoStrings) {
    WriteFaces(Face("first") +
               Dict(Key("Mark", Text("second")) + Key("MTD_Typeface_ID_sfnt_PostscriptName", Integer(7))) +
               Dict(Key("Mark", Text("third")) + Key("MTD_Typeface_ID_sfnt_PostscriptName", "<true/>") +
                    Key("MTD_Typeface_ID_Fount_PostscriptName", Text("7"))));
    EXPECT_EQ(Choose("#postscript-name=7"), "third");
    EXPECT_EQ(Choose("#postscript-name=true"), "first");
}

} // namespace
} // namespace vellum::test
