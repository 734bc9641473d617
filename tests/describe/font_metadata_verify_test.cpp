// SPDX-License-Identifier: MIT
// Metadata that is held against the font file's path and sizes.
#include "describe/metadata_files.hpp"
#include "platform/fs/file_fork.hpp"

#include <sys/xattr.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

class VerifiedFontMetadata : public FontMetadata {
protected:
    // Writes an entry for Foo.ttf, whose one face is marked "foo", under the name of a font file.
    void WriteEntry(std::string_view pairs, std::string_view font_name = "Foo.ttf") const {
        Write(font_name, List(Array(Dict(FileName("Foo.ttf") + Faces(Face("foo")) + std::string(pairs)))));
    }

    // Writes an entry of these sizes for the Foo.ttf of the test's folder.
    void WriteSizes(std::string_view sizes) const {
        WriteEntry(Location(folder_.Path()) + std::string(sizes));
    }

    std::string Verified(std::string_view name = "Foo.ttf") const {
        return MarkOf(FileURL(folder_.File(name)).Get(), true);
    }

    const TempDir folder_;
};

TEST_F(VerifiedFontMetadata, IsThatOfTheEntryWithPathAndSizes) {
    folder_.Write("Foo.ttf", "12345");
    WriteSizes(DataSize(Integer(5)) + ForkSizeIs(Integer(0)));
    EXPECT_EQ(Verified(), "foo");
    WriteEntry(Location(folder_.Path() + "/") + DataSize(Integer(5)));
    EXPECT_EQ(Verified(), "foo");
}

TEST_F(VerifiedFontMetadata, IsThatOfTheFirstEntryThatFitsInAll) {
    folder_.Write("Foo.ttf", "12345");
    const auto entry = [](std::string_view location, int64_t size, std::string_view mark) {
        return Dict(FileName("Foo.ttf") + Location(location) + DataSize(Integer(size)) + Faces(Face(mark)));
    };
    Write("Foo.ttf", List(Array(entry("/elsewhere", 5, "place") + entry(folder_.Path(), 6, "size") +
                                entry(folder_.Path(), 5, "right") + entry(folder_.Path(), 5, "late"))));
    EXPECT_EQ(Verified(), "right");
}

TEST_F(VerifiedFontMetadata, IsNoneForAnotherPlace) {
    folder_.Write("Foo.ttf", "12345");
    const std::string size = DataSize(Integer(5));
    const std::string locations[] = {"",
                                     Location(""),
                                     Location("/"),
                                     Location(folder_.Path().substr(1)),
                                     Location(folder_.Path() + "/x"),
                                     Key("MTD_FontFile_MeridianInstallLocation", Integer(1))};
    for (const std::string &location : locations) {
        WriteEntry(location + size);
        EXPECT_EQ(Verified(), kNone) << location;
        EXPECT_EQ(MarkOf(FileURL(folder_.File("Foo.ttf")).Get(), false), "foo") << location;
    }
}

TEST_F(VerifiedFontMetadata, IsNoneForAnotherSize) {
    folder_.Write("Foo.ttf", "12345");
    const std::string sizes[] = {"",
                                 DataSize(Integer(4)),
                                 DataSize(Integer(6)),
                                 DataSize(Integer(-5)),
                                 DataSize(Integer(5 + (int64_t{1} << 32))),
                                 DataSize(Text("5")),
                                 DataSize("<true/>"),
                                 DataSize(Integer(5)) + ForkSizeIs(Integer(1)),
                                 DataSize(Integer(5)) + ForkSizeIs(Text("0"))};
    for (const std::string &size : sizes) {
        WriteSizes(size);
        EXPECT_EQ(Verified(), kNone) << size;
    }
}

TEST_F(VerifiedFontMetadata, TakesASizeThatIsMissingAsZero) {
    folder_.Write("Foo.ttf", "");
    WriteSizes("");
    EXPECT_EQ(Verified(), "foo");
    folder_.Write("Foo.ttf", "1");
    EXPECT_EQ(Verified(), kNone);
}

TEST_F(VerifiedFontMetadata, TakesBooleanSizesAsOneAndZero) {
    folder_.Write("Foo.ttf", "1");
    WriteSizes(DataSize("<true/>") + ForkSizeIs("<false/>"));
    EXPECT_EQ(Verified(), "foo");
    folder_.Write(".rsrc/Foo.ttf", "1");
    EXPECT_EQ(Verified(), kNone);
    WriteSizes(DataSize("<true/>") + ForkSizeIs("<true/>"));
    EXPECT_EQ(Verified(), "foo");
    folder_.Write("Foo.ttf", "22");
    EXPECT_EQ(Verified(), kNone);
}

TEST_F(VerifiedFontMetadata, CutsTheFractionOfASize) {
    folder_.Write("Foo.ttf", "12345");
    WriteSizes(DataSize("<real>5.9</real>"));
    EXPECT_EQ(Verified(), "foo");
}

TEST_F(VerifiedFontMetadata, ComparesTheSizeOfTheSecondFork) {
    folder_.Write("Foo.ttf", "12345");
    folder_.Write(".rsrc/Foo.ttf", "1234567");
    WriteSizes(DataSize(Integer(5)) + ForkSizeIs(Integer(7)));
    EXPECT_EQ(Verified(), "foo");
    WriteSizes(DataSize(Integer(5)));
    EXPECT_EQ(Verified(), kNone);
}

TEST_F(VerifiedFontMetadata, ComparesTheSizeOfTheForkInTheAttribute) {
    const std::string path = folder_.Write("Foo.ttf", "12345");
    WriteSizes(DataSize(Integer(5)) + ForkSizeIs(Integer(3)));
    const bool kept = ::setxattr(path.c_str(), kForkAttribute, "123", 3, 0) == 0;
    EXPECT_EQ(Verified(), kept ? "foo" : kNone); // not every file system keeps attributes
}

TEST_F(VerifiedFontMetadata, IsFoundThroughASymbolicLink) {
    folder_.Write("real/Foo.ttf", "12345");
    fs::create_symlink("real/Foo.ttf", folder_.File("Link.ttf"));
    WriteEntry(Location(folder_.File("real")) + DataSize(Integer(5)), "Link.ttf");
    EXPECT_EQ(Verified("Link.ttf"), "foo");
    EXPECT_EQ(MarkOf(FileURL(folder_.File("Link.ttf")).Get(), false), kNone);
    WriteEntry(Location(folder_.File("other")) + DataSize(Integer(5)), "Link.ttf");
    EXPECT_EQ(Verified("Link.ttf"), kNone);
}

TEST_F(VerifiedFontMetadata, IsFoundUnderThePathOfALinkItself) {
    folder_.Write("real/Bar.ttf", "12345");
    fs::create_symlink("real/Bar.ttf", folder_.File("Foo.ttf"));
    WriteSizes(DataSize(Integer(5)));
    EXPECT_EQ(Verified(), "foo");
}

TEST_F(VerifiedFontMetadata, IsFoundAtTheEndOfSeveralLinks) {
    folder_.Write("real/Foo.ttf", "12345");
    fs::create_symlink("real/Foo.ttf", folder_.File("Middle.ttf"));
    fs::create_symlink("Middle.ttf", folder_.File("Link.ttf"));
    WriteEntry(Location(fs::canonical(folder_.File("real")).string()) + DataSize(Integer(5)), "Link.ttf");
    EXPECT_EQ(Verified("Link.ttf"), "foo");
}

TEST_F(VerifiedFontMetadata, IsNoneWhenTheFontFileIsNotThere) {
    WriteSizes("");
    EXPECT_EQ(Verified(), kNone);
    fs::create_symlink("none", folder_.File("Foo.ttf"));
    EXPECT_EQ(Verified(), kNone);
}

TEST_F(VerifiedFontMetadata, IsFoundByPathsOfAllKindsOfCharacters) {
    for (const char *name : {"a b", "100%", "a%20b", "a#b", "\xC3\xA4"}) {
        folder_.Write(std::string(name) + "/Foo.ttf", "12345");
        WriteEntry(Location(folder_.File(name)) + DataSize(Integer(5)));
        EXPECT_EQ(Verified(std::string(name) + "/Foo.ttf"), "foo") << name;
    }
}

} // namespace
} // namespace vellum::test
