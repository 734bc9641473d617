// SPDX-License-Identifier: MIT
// What kind of file a file is, and which kinds are cases of which.
#include "asking.hpp"
#include "platform/font/type_identifier.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/packed_fonts.hpp"
#include "support/resource_fork.hpp"
#include "support/type1_font.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace vellum::test {
namespace {

class TypeOfFile : public testing::Test {
protected:
    std::string TypeAt(const std::string &path) const {
        return Str(CopyTypeIdentifier(FileURL(path).Get()));
    }
    std::string TypeOf(const Bytes &bytes, std::string_view name = "file") const {
        return TypeAt(folder_.Write(name, bytes));
    }
    std::string TypeOf(const std::string &text, std::string_view name = "file") const {
        return TypeOf(Bytes(text.begin(), text.end()), name);
    }

    const TempDir folder_;
};

TEST_F(TypeOfFile, IsTrueTypeByItsMagic) {
    EXPECT_EQ(TypeOf(FontBuilder().Build()), "public.truetype-ttf-font");
    EXPECT_EQ(TypeOf("true and more"), "public.truetype-ttf-font");
    EXPECT_EQ(TypeOf("typ1 and more"), "public.truetype-ttf-font");
}

TEST_F(TypeOfFile, IsOpenTypeByItsMagic) {
    EXPECT_EQ(TypeOf(FontBuilder().Flavor(FontBuilder::kOpenType).Build()), "public.opentype-font");
}

TEST_F(TypeOfFile, FollowsTheContentAgainstTheExtension) {
    EXPECT_EQ(TypeOf(FontBuilder().Flavor(FontBuilder::kOpenType).Build(), "a.ttf"),
              "public.opentype-font");
    EXPECT_EQ(TypeOf("no font at all", "a.ttf"), kNull);
}

TEST_F(TypeOfFile, OfACollectionIsThatOfItsFirstFace) {
    EXPECT_EQ(TypeOf(BuildCollection({FontBuilder(), FontBuilder()})), "public.truetype-collection-font");
    EXPECT_EQ(TypeOf(BuildCollection({FontBuilder().Flavor(FontBuilder::kOpenType), FontBuilder()})),
              "public.opentype-collection-font");
    EXPECT_EQ(TypeOf(BuildCollection({})), kNull);
}

TEST_F(TypeOfFile, IsPostScriptByItsFirstWords) {
    EXPECT_EQ(TypeOf(BuildPfa()), "com.adobe.postscript-pfa-font");
    EXPECT_EQ(TypeOf(BuildPfb()), "com.adobe.postscript-pfb-font");
    EXPECT_EQ(TypeOf("%!FontType1-1.0: A"), "com.adobe.postscript-pfa-font");
    EXPECT_EQ(TypeOf("%!PS-Adobe-3.0 Resource-CIDFont"), "com.adobe.postscript-font");
    EXPECT_EQ(TypeOf("%!PS-TrueTypeFont-1.0"), "com.adobe.postscript-font");
}

TEST_F(TypeOfFile, OfAPostScriptProgramIsToldByItsName) {
    EXPECT_EQ(TypeOf("%!PS-Adobe-3.0", "a.PFA"), "com.adobe.postscript-pfa-font");
    EXPECT_EQ(TypeOf("%!PS-Adobe-3.0", "a.ps"), kNull);
}

TEST_F(TypeOfFile, IsWebFontByItsMagic) {
    EXPECT_EQ(TypeOf("wOFF"), "public.woff-font");
    EXPECT_EQ(TypeOf("wOF2"), "public.woff2-font");
}

TEST_F(TypeOfFile, IsBitmapFontByItsMagic) {
    EXPECT_EQ(TypeOf(BuildPcf({})), "public.pcf-font");
    EXPECT_EQ(TypeOf(BuildBdf({})), "public.bdf-font");
}

TEST_F(TypeOfFile, OfACompressedFileIsToldByItsName) {
    EXPECT_EQ(TypeOf(Gzip(BuildPcf({})), "a.pcf.gz"), "public.pcf-font");
    EXPECT_EQ(TypeOf(Gzip({1, 2, 3}), "a.BDF.gz"), "public.bdf-font");
}

TEST_F(TypeOfFile, OfACompressedFileIsElseToldByItsContent) {
    EXPECT_EQ(TypeOf(Gzip(BuildPcf({})), "a.gz"), "public.pcf-font");
    EXPECT_EQ(TypeOf(Gzip(FontBuilder().Build()), "a.ttf.gz"), kNull);
    EXPECT_EQ(TypeOf(GzipOfZeros({}, 1u << 28), "zeros"), kNull);
}

TEST_F(TypeOfFile, IsSuitcaseByItsSecondFork) {
    folder_.Write(".rsrc/Suitcase", ResourceFork({"vers", "FOND", "sfnt"}));
    EXPECT_EQ(TypeOf(Bytes(), "Suitcase"), "com.orrery.font-suitcase");
}

TEST_F(TypeOfFile, IsPrinterFontByItsSecondFork) {
    folder_.Write(".rsrc/FooBol", ResourceFork({"POST"}));
    EXPECT_EQ(TypeOf(Bytes(), "FooBol"), "com.adobe.postscript-ptfn-font");
}

TEST_F(TypeOfFile, TakesTheSecondForkFromTheExtendedAttribute) {
    const std::string path = folder_.Write("FooBol", Bytes());
    const Bytes fork = ResourceFork({"POST"});
    if (setxattr(path.c_str(), "user.ResourceFork", fork.data(), fork.size(), 0) == 0) {
        EXPECT_EQ(TypeAt(path), "com.adobe.postscript-ptfn-font");
    } else {
        EXPECT_EQ(TypeAt(path), kNull); // the file system keeps no attributes
    }
}

TEST_F(TypeOfFile, LooksAtTheSecondForkOnlyOfAnEmptyFile) {
    folder_.Write(".rsrc/a", ResourceFork({"POST"}));
    EXPECT_EQ(TypeOf("text", "a"), kNull);
}

TEST_F(TypeOfFile, IsNothingForABrokenSecondFork) {
    for (size_t size = 0; size < 40; ++size) {
        Bytes fork = ResourceFork({"vers", "POST"});
        fork.resize(size);
        folder_.Write(".rsrc/a", fork);
        EXPECT_EQ(TypeOf(Bytes(), "a"), kNull) << size;
    }
}

TEST_F(TypeOfFile, IsNothingForWhatIsNoFile) {
    EXPECT_EQ(TypeAt(folder_.MakeFolder("a.ttf")), kNull);
    EXPECT_EQ(TypeAt(folder_.File("none.ttf")), kNull);
    EXPECT_EQ(TypeAt("/dev/zero"), kNull);
    const std::string fifo = folder_.File("fifo.ttf");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(TypeAt(fifo), kNull);
    EXPECT_FALSE(CopyTypeIdentifier(nullptr));
    EXPECT_FALSE(CopyTypeIdentifier(MakeURL("http://example.org/a.ttf").Get()));
}

TEST_F(TypeOfFile, IsNothingForLessThanAMagic) {
    EXPECT_EQ(TypeOf("t"), kNull);
    EXPECT_EQ(TypeOf("ttcf"), kNull);
}

TEST_F(TypeOfFile, ConformsToItsParents) {
    const auto url = FileURL(folder_.Write("a.ttf", FontBuilder().Build()));
    EXPECT_TRUE(ConformsToTypeTag(url.Get(), "public.font"));
    EXPECT_TRUE(ConformsToTypeTag(url.Get(), "public.truetype-font"));
    EXPECT_FALSE(ConformsToTypeTag(url.Get(), "public.opentype-font"));
    EXPECT_FALSE(ConformsToTypeTag(FileURL(folder_.Write("b", "text")).Get(), "public.font"));
}

TEST(TypeConformance, OfEveryTypeEndsAtFont) {
    for (const char *type :
         {"public.truetype-font", "public.truetype-ttf-font", "public.truetype-collection-font",
          "public.opentype-font", "public.opentype-collection-font", "com.adobe.postscript-font",
          "com.adobe.postscript-pfa-font", "com.adobe.postscript-pfb-font",
          "com.adobe.postscript-ptfn-font", "com.orrery.font-suitcase", "public.woff-font",
          "public.woff2-font", "public.bitmap-font", "public.pcf-font", "public.bdf-font"}) {
        EXPECT_TRUE(TypeConformsTo(type, "public.font")) << type;
        EXPECT_TRUE(TypeConformsTo(type, type)) << type;
        EXPECT_FALSE(TypeConformsTo("public.font", type)) << type;
    }
}

TEST(TypeConformance, FollowsTheParents) {
    EXPECT_TRUE(TypeConformsTo("com.adobe.postscript-pfb-font", "com.adobe.postscript-font"));
    EXPECT_TRUE(TypeConformsTo("public.opentype-collection-font", "public.opentype-font"));
    EXPECT_TRUE(TypeConformsTo("public.pcf-font", "public.bitmap-font"));
    EXPECT_FALSE(TypeConformsTo("com.adobe.postscript-pfb-font", "com.adobe.postscript-ptfn-font"));
    EXPECT_FALSE(TypeConformsTo("public.woff-font", "public.truetype-font"));
}

TEST(TypeConformance, OfAnUnknownTypeIsToItselfAlone) {
    EXPECT_TRUE(TypeConformsTo("org.example", "org.example"));
    EXPECT_FALSE(TypeConformsTo("org.example", "public.font"));
    EXPECT_FALSE(TypeConformsTo("", ""));
}

} // namespace
} // namespace vellum::test
