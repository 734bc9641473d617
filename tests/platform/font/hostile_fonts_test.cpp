// SPDX-License-Identifier: MIT
// Files that look well and ask for unbounded work: everything is asked of each, in bounded time. The
// bound leaves room for sanitizers; without them the times are a hundred times shorter.
#include "asking.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace vellum::test {
namespace {

constexpr uint32_t kGlyphs = 65535;

class HostileFont : public testing::Test {
protected:
    void AskAll(const Bytes &bytes) {
        const auto start = std::chrono::steady_clock::now();
        const auto fonts = FontsAt(folder_.Write("hostile.ttf", bytes));
        for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) AskEverything(FaceOf(fonts, i));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
    void AskAll(const FontBuilder &font) { AskAll(font.Build()); }

    const TempDir folder_;
};

FontBuilder ManyGlyphs() {
    return FontBuilder().Table("maxp", MaxpTable(kGlyphs));
}

TEST_F(HostileFont, WithAMillionGroupsOfAllCodePoints) {
    const std::vector<CmapGroup> groups(1000000, {0, 0x10FFFF, 1});
    AskAll(ManyGlyphs().Table("cmap", CmapTable({{3, 10, CmapFormat13(groups)}})));
}

TEST_F(HostileFont, WithAMillionGroupsOfOneCodePoint) {
    std::vector<CmapGroup> groups;
    for (uint32_t i = 0; i < 1000000; ++i) groups.push_back({i, i, 1});
    AskAll(ManyGlyphs().Table("cmap", CmapTable({{3, 10, CmapFormat12(groups)}})));
}

TEST_F(HostileFont, WithFourThousandRecordsOfOneMap) {
    const Bytes map = CmapFormat13(std::vector<CmapGroup>(100, {0, 0x10FFFF, 1}));
    ByteWriter cmap;
    cmap.U16(0).U16(4000);
    for (uint32_t i = 0; i < 4000; ++i) cmap.U16(0).U16(i).U32(4 + 8 * 4000);
    AskAll(ManyGlyphs().Table("cmap", cmap.Append(map)));
}

TEST_F(HostileFont, WithSegmentsThatAllNameEverything) {
    AskAll(ManyGlyphs().Table(
        "cmap", CmapTable({{3, 1, CmapFormat4(std::vector<CmapGroup>(8000, {0, 0xFFFF, 1}))}})));
}

TEST_F(HostileFont, WithNamesThatAllAreTheSame64KiB) {
    ByteWriter table;
    table.U16(0).U16(65535).U16(6);
    for (uint32_t i = 0; i < 65535; ++i) table.U16(3).U16(1).U16(0x409).U16(i % 26).U16(8000).U16(0);
    AskAll(FontBuilder().Table("name", table));
}

TEST_F(HostileFont, WithSixtyThousandAxes) {
    AskAll(FontBuilder().Table("fvar", FvarTable({60000, {"wght", 0, 0, 1, 256}}, {})));
}

TEST_F(HostileFont, WithSixtyThousandInstances) {
    AskAll(FontBuilder().Table("fvar", FvarTable({{"wght", 0, 0, 1, 256}}, {60000, {2, {1}}})));
}

TEST_F(HostileFont, WithSixtyThousandTables) {
    ByteWriter directory;
    directory.U32(0x00010000).U16(65535).Zeros(6);
    for (uint32_t i = 0; i < 65535; ++i) directory.U32(0x61000000 + i).U32(0).U32(12).U32(16 * 65535);
    AskAll(directory);
}

TEST_F(HostileFont, WithAThousandFacesOfAThousandInstances) {
    const std::vector<FvarAxis> axes(64, {"wght", 0, 0, 1, 256});
    const FontBuilder font = FontBuilder().Table(
        "fvar", FvarTable(axes, std::vector<FvarInstance>(1000, {2, std::vector<double>(64, 1)})));
    ByteWriter file;
    constexpr uint32_t kFaces = 1024;
    constexpr uint32_t kOffset = 12 + 4 * kFaces;
    file.Text("ttcf").U32(0x10000).U32(kFaces);
    for (uint32_t i = 0; i < kFaces; ++i) file.U32(kOffset);
    const Bytes whole = file.Append(font.Build(kOffset));
    const auto fonts = FontsAt(folder_.Write("a.ttc", whole));
    EXPECT_EQ(ValArrayGetCount(fonts.Get()), kFaces + 1024u);
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); i += 100) AskEverything(FaceOf(fonts, i));
}

TEST_F(HostileFont, ThatIsACollectionOfItself) {
    ByteWriter file;
    file.Text("ttcf").U32(0x10000).U32(1000);
    for (int i = 0; i < 1000; ++i) file.U32(0);
    AskAll(file);
}

} // namespace
} // namespace vellum::test
