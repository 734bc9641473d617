// SPDX-License-Identifier: MIT
// The outline files that suitcases name.
#include "platform/process/passing_failures.hpp"
#include "suitcases.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SuitcaseFiles, AreThoseOfEachStyleOfEachFamily) {
    EXPECT_EQ(FilesOf(TwoFamilies()), kTwoFamilies);
    EXPECT_EQ(FilesOf(TwoFamilies(ForkOrder::kMapFirst)), kTwoFamilies);
}

TEST(SuitcaseFiles, AreInTheOrderOfTheMapWhateverTheIds) {
    Resource first = Family(Face("First"));
    Resource second = Family(Face("Second"));
    first.id = 900;
    second.id = 2;
    EXPECT_THAT(FilesOf(ForkOf({first, second})), ElementsAre("First", "Secon"));
}

TEST(SuitcaseFiles, OfOneFaceInSeveralSizesAreSeveral) {
    FamilyFields family = FourStyles("Garamond");
    family.entries = {{0, 1, 1}, {9, 0, 2}, {10, 0, 3}, {12, 1, 4}};
    EXPECT_THAT(FilesOf(family), ElementsAre("GaramBol", "Garam", "Garam", "GaramBol"));
}

TEST(SuitcaseFiles, HaveTheNameOfTheFamilyWhereAStyleHasNoStringOfItsOwn) {
    FamilyFields family = FourStyles("Garamond");
    family.styles = {{0, 0}, {1, 1}, {2, 2}};
    EXPECT_THAT(FilesOf(family), ElementsAre("Garam", "Garam", "GaramBol", "Garam"));
}

TEST(SuitcaseFiles, AreNamedByAllSuffixesOfAStyleInTheirOrder) {
    FamilyFields family = Face("Foo");
    family.styles = {{0, 2}};
    family.strings = {"Foo", "\3\4\3\1\4", "Ab", "Cd"};
    EXPECT_THAT(FilesOf(family), ElementsAre("FooAbCdAbFooCd"));
    family.strings = {"Foo", ""};
    EXPECT_THAT(FilesOf(family), ElementsAre("Foo"));
}

TEST(SuitcaseFiles, FollowTheStylesBitsWithoutThatOfUnderlining) {
    // Each index of styles has a suffix of its own: "Aa", "Ab" ... "Az", "Ba" ...
    FamilyFields family = {{}, {"X"}};
    const auto suffix = [](size_t index) {
        return std::string{static_cast<char>('A' + index / 26), static_cast<char>('a' + index % 26)};
    };
    for (uint8_t index = 0; index < 48; ++index) {
        family.strings.push_back(std::string(1, static_cast<char>(50 + index)));
        family.styles.emplace_back(index, static_cast<uint8_t>(2 + index));
    }
    for (size_t index = 0; index < 48; ++index) family.strings.push_back(suffix(index));
    struct StyleRow {
        uint16_t style;
        size_t index;
    };
    constexpr StyleRow kRows[] = {
        {0x00, 0},  {0x01, 1}, {0x02, 2}, {0x03, 3},  {0x04, 0},  {0x05, 1},  {0x06, 2},   {0x07, 3},
        {0x08, 4},  {0x09, 5}, {0x0C, 4}, {0x10, 8},  {0x18, 12}, {0x20, 16}, {0x40, 32},  {0x5B, 47},
        {0x5F, 47}, {0x60, 0}, {0x61, 1}, {0x7F, 15}, {0x80, 16}, {0xFF, 31}, {0x0100, 0}, {0xFF01, 1},
    };
    for (const StyleRow &row : kRows) {
        family.entries = {{0, row.style, 1}};
        EXPECT_THAT(FilesOf(family), ElementsAre("X" + suffix(row.index))) << row.style;
    }
}

TEST(SuitcaseFiles, AreNoneForANameOfMoreThan255Bytes) {
    const auto files = [](size_t name, size_t suffix) {
        return FilesOf({{{0, 0, 1}, {0, 1, 2}},
                        {"F" + std::string(name - 1, 'x'), "\3", std::string(suffix, 'y')},
                        {{0, 2}}});
    };
    EXPECT_THAT(files(254, 1), ElementsAre("Fxxxx", "Fxxxx"));
    EXPECT_THAT(files(255, 0), ElementsAre("Fxxxx", "Fxxxx"));
    EXPECT_THAT(files(254, 2), ElementsAre("Fxxxx")); // of the second entry
    EXPECT_THAT(files(255, 1), ElementsAre("Fxxxx"));
    EXPECT_THAT(files(255, 255), ElementsAre("Fxxxx"));
}

TEST(SuitcaseFiles, AreNoneForANameOfWhichNothingIsKept) {
    for (const char *name : {"", "garamond", "-", "_1"}) {
        EXPECT_THAT(FilesOf(Face(name)), IsEmpty()) << name;
        EXPECT_THAT(FilesOf(ForkOf({Family(Face(name)), Family(Face("Next"))})), ElementsAre("Next"))
            << name;
    }
}

TEST(SuitcaseFiles, NeverLeadOutOfTheFolder) {
    const std::string names[] = {"A/../B", "A/", "/A/B", "../A/b", std::string("A\0b", 3),
                                 ".",      "..", "A/.."};
    for (const std::string &name : names)
        EXPECT_THAT(FilesOf(ForkOf({Family(Face(name)), Family(Face("Next"))})), ElementsAre("Next"))
            << name;
    // What is dropped as the name is shortened does no harm.
    EXPECT_THAT(FilesOf(Face("../../Garamond/..")), ElementsAre("Garam"));
}

TEST(SuitcaseFiles, MayHaveAnyOtherBytesInTheirNames) {
    EXPECT_THAT(FilesOf(Face("A?#%;")), ElementsAre("A%3F%23%25;"));
    EXPECT_THAT(FilesOf(Face("A%2Fb")), ElementsAre("A%252Fb"));
    EXPECT_THAT(FilesOf(Face("Caf\x8E")), ElementsAre("Caf%8E"));
    EXPECT_THAT(FilesOf(Face("A b\n\x7F")), ElementsAre("A%20b%0A%7F"));
    EXPECT_THAT(FilesOf(Face("File:x")), ElementsAre("File:"));
    EXPECT_THAT(FilesOf(Face("A..")), ElementsAre("A.."));
}

TEST(SuitcaseFiles, AreNoneOfAFamilyWithoutATableOfStyles) {
    // Where strings would stand behind a table at offset 0.
    constexpr uint16_t kFonts[] = {0, 1, 0x101};
    for (const uint16_t font : kFonts) {
        Resource bitmaps = Family({{{12, 0, font}}, {"Bitmap"}});
        std::fill_n(bitmaps.data.begin() + 24, 4, uint8_t{0});
        EXPECT_THAT(FilesOf(ForkOf({bitmaps, Family(Face("Next"))})), ElementsAre("Next")) << font;
    }
}

TEST(SuitcaseFiles, AreNoneOfAFamilyWithoutEntries) {
    FamilyFields none = Face("None");
    none.entries.clear();
    EXPECT_THAT(FilesOf(ForkOf({Family(none), Family(Face("Next"))})), ElementsAre("Next"));
}

TEST(SuitcaseFiles, AreNoneWithoutFamilies) {
    EXPECT_THAT(FilesOf(Bytes()), IsEmpty());
    EXPECT_THAT(FilesOf(ForkOf({})), IsEmpty());
    EXPECT_THAT(FilesOf(ForkOf({{"sfnt", 1, Family(Face("Foo")).data}})), IsEmpty());
}

TEST(SuitcaseFiles, EndBeforeAStringThatIsNotThere) {
    // The second of three faces asks for each of these strings; a family that is whole follows.
    for (const std::string &suffixes : {std::string("\4"), std::string("\3\4"), std::string(1, '\0'),
                                        std::string("\xFF"), std::string("\3\0", 2)}) {
        const Resource broken =
            Family({{{0, 0, 1}, {0, 1, 2}, {0, 0, 3}}, {"Foo", suffixes, "Bar"}, {{1, 2}}});
        EXPECT_THAT(FilesOf(ForkOf({broken, Family(Face("Next"))})), ElementsAre("Foo"));
    }
    const Resource broken = Family({{{0, 0, 1}, {0, 1, 2}, {0, 0, 3}}, {"Foo", "\1"}, {{1, 3}}});
    EXPECT_THAT(FilesOf(ForkOf({broken, Family(Face("Next"))})), ElementsAre("Foo"));
}

TEST(SuitcaseFiles, HaveTheLastStringThatANumberCanName) {
    FamilyFields family = {{{0, 0, 1}, {0, 1, 2}}, Names(256, ""), {{0, 2}, {1, 255}}};
    family.strings[0] = "Foo";
    family.strings[1] = "\xFF";
    family.strings[254] = "\2";
    EXPECT_THAT(FilesOf(family), ElementsAre("Foo%02", "Foo%FF"));
}

class Suitcase : public testing::Test {
protected:
    static Names FilesAt(const Ref<const ValURL> &url) {
        const auto urls = CreatePlatenFontURLsFromSuitcase(url.Get());
        return urls ? Texts(urls) : Names{"(null)"};
    }
    // The URLs of files in the folder.
    Names Here(Names names) const {
        for (std::string &name : names) name = "file://" + folder_.File(name);
        return names;
    }

    const TempDir folder_;
};

TEST_F(Suitcase, NamesFilesBesideItself) {
    const std::string path = folder_.Write("Suitcase", Bytes());
    folder_.Write(".rsrc/Suitcase", TwoFamilies());
    EXPECT_EQ(FilesAt(FileURL(path)), Here(kTwoFamilies));
}

TEST_F(Suitcase, NamesFilesByAbsoluteURLs) {
    folder_.Write("Suitcase", Bytes());
    folder_.Write(".rsrc/Suitcase", TwoFamilies());
    const auto base = FileURL(folder_.File("other"));
    const auto url = Adopt(ValURLCreateWithString(String("Suitcase").Get(), base.Get()));
    ASSERT_TRUE(ValURLGetBase(url.Get()));
    EXPECT_EQ(FilesAt(url), Here(kTwoFamilies));
    const auto urls = CreatePlatenFontURLsFromSuitcase(url.Get());
    for (size_t i = 0; i < ValArrayGetCount(urls.Get()); ++i)
        EXPECT_FALSE(ValURLGetBase(static_cast<const ValURL *>(ValArrayGetValue(urls.Get(), i))));
}

TEST_F(Suitcase, NamesFilesWithoutItsFragmentAndQuery) {
    const std::string path = folder_.Write("Suitcase", Bytes());
    folder_.Write(".rsrc/Suitcase", TwoFamilies());
    EXPECT_EQ(FilesAt(MakeURL("file://" + path + "?a/b#c/d")), Here(kTwoFamilies));
}

TEST_F(Suitcase, NamesFilesInAFolderOfAnyName) {
    const std::string path = folder_.Write("a #%2F?/Suit/Suitcase", Bytes());
    folder_.Write("a #%2F?/Suit/.rsrc/Suitcase", ForkOf({Family(Face("Foo"))}));
    EXPECT_THAT(FilesAt(FileURL(path)), ElementsAre("file://" + folder_.File("a%20%23%252F%3F/Suit/Foo")));
}

TEST_F(Suitcase, TakesItsSecondForkFromTheExtendedAttribute) {
    const std::string path = folder_.Write("Suitcase", Bytes());
    const Bytes fork = TwoFamilies();
    folder_.Write(".rsrc/Suitcase", ForkOf({Family(Face("Beside"))}));
    // Where the file system keeps no attributes, the file beside is all that there is.
    const bool kept = setxattr(path.c_str(), "user.ResourceFork", fork.data(), fork.size(), 0) == 0;
    EXPECT_EQ(FilesAt(FileURL(path)), Here(kept ? kTwoFamilies : Names{"Besid"}));
}

TEST_F(Suitcase, MayHaveADataForkOfItsOwn) {
    const std::string path = folder_.Write("Suitcase", "data");
    folder_.Write(".rsrc/Suitcase", ForkOf({Family(Face("Foo"))}));
    EXPECT_EQ(FilesAt(FileURL(path)), Here({"Foo"}));
}

TEST_F(Suitcase, ThatIsNoneGivesAnEmptyArray) {
    folder_.Write(".rsrc/none", TwoFamilies()); // the fork of no file
    folder_.Write(".rsrc/folder", TwoFamilies());
    folder_.Write(".rsrc/fifo", TwoFamilies());
    folder_.Write(".rsrc/text", "no fork");
    EXPECT_THAT(FilesAt(nullptr), IsEmpty());
    EXPECT_THAT(FilesAt(MakeURL("http://example.org/Suitcase")), IsEmpty());
    EXPECT_THAT(FilesAt(MakeURL("file:///")), IsEmpty());
    EXPECT_THAT(FilesAt(FileURL(folder_.File("none"))), IsEmpty());
    EXPECT_THAT(FilesAt(FileURL(folder_.MakeFolder("folder"))), IsEmpty());
    EXPECT_THAT(FilesAt(FileURL(folder_.Write("text", ""))), IsEmpty());
    EXPECT_THAT(FilesAt(FileURL(folder_.Write("without a fork", ""))), IsEmpty());
    const std::string fifo = folder_.File("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0); // opening it must not wait
    EXPECT_THAT(FilesAt(FileURL(fifo)), IsEmpty());
}

TEST_F(Suitcase, ThatIsNotThereIsAPassingFailure) {
    const auto gone = FileURL(folder_.File("none"));
    const auto empty = FileURL(folder_.Write("without a fork", ""));
    const uint32_t failures = tPassingFailures;
    FilesAt(empty);
    EXPECT_EQ(tPassingFailures, failures);
    FilesAt(gone);
    EXPECT_NE(tPassingFailures, failures);
}

TEST_F(Suitcase, ThatCanNotBeOpenedForWantOfDescriptorsIsAPassingFailure) {
    const auto url = FileURL(folder_.Write("Suitcase", Bytes()));
    folder_.Write(".rsrc/Suitcase", TwoFamilies());
    // Asked before as well: a sanitizer that sees these types for the first time opens descriptors.
    ASSERT_EQ(FilesAt(url), Here(kTwoFamilies));
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    const uint32_t failures = tPassingFailures;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const Names files = FilesAt(url);
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_THAT(files, IsEmpty());
    EXPECT_NE(tPassingFailures, failures);
    EXPECT_EQ(FilesAt(url), Here(kTwoFamilies));
}

} // namespace
} // namespace vellum::test
