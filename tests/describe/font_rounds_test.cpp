// SPDX-License-Identifier: MIT
// Rounds of reading: what is asked of a font in one round opens its file once, and nothing stays open.
#include "describe/entities.hpp"
#include "platform/font/gx_font_round.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <thread>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

size_t CountDescriptors() {
    return static_cast<size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

Bytes FontWith(uint8_t mark) {
    return FontBuilder().Table("test", {mark}).Table("more", {mark, mark}).Build();
}

// The first byte of a table; none when there is no table.
std::optional<uint8_t> MarkOf(const Ref<const GxFont> &font, const char (&tag)[5] = "test") {
    const auto table = GxFontCopyTable(font.Get(), MakeTag(tag));
    return ValDataGetLength(table.Get()) ? std::optional(ValDataGetBytes(table.Get())[0]) : std::nullopt;
}

class FontRound : public ::testing::Test {
protected:
    Ref<const GxFont> Open(const char *name, uint8_t mark) const {
        return CreateFontFromURL(folder.Add(name, FontWith(mark)).Get());
    }

    FontFolder folder;
    const Ref<const GxFont> font = Open("a.ttf", 1), other = Open("b.ttf", 2);
    const size_t before = CountDescriptors();
};

TEST_F(FontRound, HoldsTheFileFromTheFirstReadingToItsEnd) {
    {
        const GxFontRound round;
        EXPECT_EQ(CountDescriptors(), before);
        EXPECT_EQ(MarkOf(font), 1);
        EXPECT_EQ(CountDescriptors(), before + 1);
        EXPECT_EQ(MarkOf(font, "more"), 1);
        EXPECT_EQ(CountDescriptors(), before + 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, HoldsNothingWithoutOne) {
    EXPECT_EQ(MarkOf(font), 1);
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, InAnotherLastsAsLongAsTheOuterOne) {
    {
        const GxFontRound outer;
        {
            const GxFontRound inner;
            EXPECT_EQ(MarkOf(font), 1);
        }
        EXPECT_EQ(CountDescriptors(), before + 1);
        EXPECT_EQ(MarkOf(font, "more"), 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, HoldsAFileThatAFontIsMadeOf) {
    {
        const GxFontRound round;
        const auto fresh = Open("c.ttf", 3);
        EXPECT_EQ(CountDescriptors(), before + 1);
        fs::remove(folder.File("c.ttf"));
        EXPECT_EQ(MarkOf(fresh), 3);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, MayFollowAnother) {
    for (int i = 0; i < 3; ++i) {
        const GxFontRound round;
        EXPECT_EQ(MarkOf(font), 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, ReadsEachFileForItselfAndHoldsOne) {
    {
        const GxFontRound round;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(MarkOf(font), 1);
            EXPECT_EQ(MarkOf(other, "more"), 2);
            EXPECT_EQ(MarkOf(other), 2);
            EXPECT_EQ(MarkOf(font, "more"), 1);
            EXPECT_LE(CountDescriptors(), before + 1);
        }
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, ReadsFontsInMemoryBetweenThoseInFiles) {
    const auto memory = FontOf(FontWith(3));
    const GxFontRound round;
    EXPECT_EQ(MarkOf(font), 1);
    EXPECT_EQ(MarkOf(memory), 3);
    EXPECT_EQ(MarkOf(font), 1);
    EXPECT_EQ(MarkOf(memory, "more"), 3);
}

TEST_F(FontRound, OpensNothingForAFontInMemory) {
    const auto memory = FontOf(FontWith(3));
    const GxFontRound round;
    EXPECT_EQ(MarkOf(memory), 3);
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, OutlivesAFontThatItRead) {
    auto passing = Open("c.ttf", 4);
    {
        const GxFontRound round;
        EXPECT_EQ(MarkOf(passing), 4);
        passing = nullptr;
        FacetFontPurgeCaches(nullptr);
        // Another font may come to lie where that one was.
        passing = Open("d.ttf", 5);
        EXPECT_EQ(MarkOf(passing), 5);
        EXPECT_EQ(MarkOf(font), 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, IsOfItsThreadAlone) {
    const GxFontRound round;
    EXPECT_EQ(MarkOf(font), 1);
    std::thread([&] {
        EXPECT_EQ(MarkOf(font, "more"), 1);
        EXPECT_EQ(MarkOf(other), 2);
        EXPECT_EQ(CountDescriptors(), before + 1);
    }).join();
    EXPECT_EQ(MarkOf(font), 1);
}

TEST_F(FontRound, FailsForAFileThatIsGoneAndForNoOther) {
    fs::rename(folder.File("a.ttf"), folder.File("away"));
    {
        const GxFontRound round;
        EXPECT_EQ(MarkOf(other), 2);
        EXPECT_FALSE(MarkOf(font));
        EXPECT_EQ(MarkOf(other, "more"), 2);
        fs::rename(folder.File("away"), folder.File("a.ttf"));
        EXPECT_EQ(MarkOf(font), 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

TEST_F(FontRound, IsWhatAnEntityLeavesNoTraceOf) {
    const TClientFontEntity entity(font);
    EXPECT_TRUE(entity.CopyRegistrationProperties());
    EXPECT_EQ(CountDescriptors(), before);
    {
        const GxFontRound round;
        EXPECT_TRUE(TClientFontEntity(other).CopyRegistrationProperties());
        EXPECT_LE(CountDescriptors(), before + 1);
    }
    EXPECT_EQ(CountDescriptors(), before);
}

} // namespace
} // namespace vellum::test
