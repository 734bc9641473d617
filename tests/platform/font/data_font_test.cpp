// SPDX-License-Identifier: MIT
// Fonts made from buffers, and the way back to them from an address in a text.
#include "asking.hpp"

#include <gmock/gmock.h>

#include <cstdio>

namespace vellum::test {
namespace {

std::string Address(const void *object) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", object);
    return text;
}

TEST(DataFont, AnswersFromItsBuffer) {
    const auto font = FontOf(FontBuilder());
    EXPECT_EQ(PostScriptName(font.Get()), "Test-Regular");
    EXPECT_EQ(Coverage(font.Get()), "41-5A");
}

TEST(DataFont, KeepsItsBuffer) {
    static int released;
    released = 0;
    const Bytes bytes = FontBuilder().Build();
    auto data = Adopt(ValDataCreateWithBytesNoCopy(
        bytes.data(), bytes.size(), [](void *) { ++released; }, nullptr));
    auto font = GxFontCreateWithData(data.Get());
    data = nullptr;
    EXPECT_EQ(released, 0);
    EXPECT_EQ(PostScriptName(font.Get()), "Test-Regular");
    font = nullptr;
    EXPECT_EQ(released, 1);
}

TEST(DataFont, IsNewEachTime) {
    const auto data = Data(FontBuilder().Build());
    const auto one = GxFontCreateWithData(data.Get());
    EXPECT_NE(one.Get(), GxFontCreateWithData(data.Get()).Get());
}

TEST(DataFont, HasNoURL) {
    EXPECT_FALSE(GxFontCopyURL(FontOf(FontBuilder()).Get()));
}

TEST(DataFont, IsTheFirstFaceOfTheBuffer) {
    const auto font = FontOf(BuildCollection({FontBuilder().Names(PlainNames("One", "Regular", "One")),
                                              FontBuilder().Names(PlainNames("Two", "Regular", "Two"))}));
    EXPECT_EQ(PostScriptName(font.Get()), "One");
}

TEST(DataFont, IsNullForWhatIsNoFont) {
    EXPECT_FALSE(GxFontCreateWithData(nullptr));
    EXPECT_FALSE(FontOf(Bytes()));
    EXPECT_FALSE(FontOf(Bytes(5000, 0x41)));
}

TEST(LiveDataFont, IsFoundByItsAddress) {
    const auto font = FontOf(FontBuilder());
    EXPECT_EQ(GxFontCopyLiveDataFont(Address(font.Get()), nullptr).Get(), font.Get());
    EXPECT_EQ(GxFontCopyLiveDataFont(Address(font.Get()).substr(2), nullptr).Get(), font.Get());
}

TEST(LiveDataFont, MustHaveTheNameThatIsGiven) {
    const auto font = FontOf(FontBuilder());
    EXPECT_TRUE(GxFontCopyLiveDataFont(Address(font.Get()), Val("Test-Regular").Get()));
    EXPECT_FALSE(GxFontCopyLiveDataFont(Address(font.Get()), Val("test-regular").Get()));
    EXPECT_FALSE(GxFontCopyLiveDataFont(Address(font.Get()), Val("Other").Get()));
}

TEST(LiveDataFont, IsGoneWithItsLastReference) {
    auto font = FontOf(FontBuilder());
    const std::string address = Address(font.Get());
    font = nullptr;
    EXPECT_FALSE(GxFontCopyLiveDataFont(address, nullptr));
}

TEST(LiveDataFont, IsNeverSoughtInMemory) {
    for (const char *text : {"0x1", "0", "ffffffffffffffff", "0xdeadbeef"}) {
        EXPECT_FALSE(GxFontCopyLiveDataFont(text, nullptr)) << text;
    }
}

TEST(LiveDataFont, IsNoFontOfAFile) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write("a.ttf", FontBuilder().Build()));
    EXPECT_FALSE(GxFontCopyLiveDataFont(Address(FaceOf(fonts)), nullptr));
}

TEST(LiveDataFont, NeedsAWholeHexadecimalNumber) {
    const auto font = FontOf(FontBuilder());
    const std::string address = Address(font.Get());
    for (const std::string &text :
         {address + " ", " " + address, address + "#x", "0x" + address, "-" + address, std::string(),
          std::string("0x"), std::string("11111111111111111111")}) {
        EXPECT_FALSE(GxFontCopyLiveDataFont(text, nullptr)) << text;
    }
}

} // namespace
} // namespace vellum::test
