// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gmock/gmock.h>

namespace vellum {
namespace {

using ::testing::ElementsAre;
using Range = std::pair<uint32_t, uint32_t>;
using SetRef = Ref<const ValCharacterSet>;

constexpr size_t kPlane = 8192;

std::string BitmapOf(const ValCharacterSet *set) {
    auto data = Adopt(ValCharacterSetCopyBitmap(set));
    const uint8_t *bytes = ValDataGetBytes(data.Get());
    return std::string(bytes, bytes + ValDataGetLength(data.Get()));
}

SetRef FromBitmap(const std::string &bytes) {
    return Adopt(ValCharacterSetCreateWithBitmap(bytes.data(), bytes.size()));
}

std::string PlaneBytes(char number, size_t set_byte = 0, char bits = 0) {
    std::string bytes(kPlane + 1, '\0');
    bytes[0] = number;
    bytes[1 + set_byte] = bits;
    return bytes;
}

TEST(Bitmap, HasABitForEachCodePointOfTheFirstPlane) {
    std::string bytes = BitmapOf(MutableSetOf({{0, 0}, {9, 10}, {0xFFFF, 0xFFFF}}).Get());
    EXPECT_EQ(bytes.size(), kPlane);
    EXPECT_EQ(bytes[0], '\x01');
    EXPECT_EQ(bytes[1], '\x06');
    EXPECT_EQ(bytes[kPlane - 1], '\x80');
    EXPECT_EQ(std::ranges::count(bytes, '\0'), static_cast<ptrdiff_t>(kPlane) - 3);
}

TEST(Bitmap, HasThePlanesThatHaveMembers) {
    std::string bytes = BitmapOf(MutableSetOf({{0x10000, 0x10000}, {0x10FFFF, 0x10FFFF}}).Get());
    ASSERT_EQ(bytes.size(), kPlane + 2 * (kPlane + 1));
    EXPECT_EQ(bytes.substr(0, kPlane), std::string(kPlane, '\0'));
    EXPECT_EQ(bytes.substr(kPlane, kPlane + 1), PlaneBytes(1, 0, '\x01'));
    EXPECT_EQ(bytes.substr(2 * kPlane + 1), PlaneBytes(16, kPlane - 1, '\x80'));
}

TEST(Bitmap, OfTheEmptySetIsTheFirstPlane) {
    EXPECT_EQ(BitmapOf(MutableSetOf({}).Get()), std::string(kPlane, '\0'));
}

TEST(Bitmap, RoundTrips) {
    const Ranges kSets[] = {{},
                            {{0x20, 0x7E}},
                            {{0, 0x10FFFF}},
                            {{0x4E00, 0x9FFF}, {0x1F600, 0x1F64F}, {0x20000, 0x2A6DF}, {0xF0000, 0xF0000}}};
    for (const Ranges &ranges : kSets) {
        auto set = MutableSetOf(ranges);
        auto copy = FromBitmap(BitmapOf(set.Get()));
        EXPECT_TRUE(ValEqual(copy.Get(), set.Get()));
        EXPECT_EQ(RangesOf(copy.Get()), ranges);
    }
}

TEST(Bitmap, ShorterThanAPlaneIsFilledUp) {
    EXPECT_THAT(RangesOf(FromBitmap("\x81").Get()), ElementsAre(Range(0, 0), Range(7, 7)));
    EXPECT_THAT(RangesOf(FromBitmap(std::string(64, '\0') + "\xFF\x01").Get()),
                ElementsAre(Range(512, 520)));
    EXPECT_TRUE(FromBitmap(""));
    EXPECT_EQ(ValCharacterSetGetCount(FromBitmap("").Get()), 0u);
    EXPECT_THAT(RangesOf(FromBitmap(std::string(kPlane - 1, '\0') + "\x80").Get()),
                ElementsAre(Range(0xFFFF, 0xFFFF)));
}

TEST(Bitmap, TakesPlanesInAnyOrderAndEmptyOnes) {
    const std::string first(kPlane, '\0');
    auto set = FromBitmap(first + PlaneBytes(2, 0, 1) + PlaneBytes(1, 0, 1) + PlaneBytes(3));
    EXPECT_THAT(RangesOf(set.Get()), ElementsAre(Range(0x10000, 0x10000), Range(0x20000, 0x20000)));
    EXPECT_EQ(BitmapOf(set.Get()).size(), kPlane + 2 * (kPlane + 1));
}

TEST(Bitmap, OfAnyOtherShapeIsRefused) {
    const std::string first(kPlane, '\0');
    EXPECT_FALSE(FromBitmap(first + '\x01'));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes(1).substr(0, kPlane)));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes(1) + '\0'));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes(0)));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes(17)));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes('\xFF')));
    EXPECT_FALSE(FromBitmap(first + PlaneBytes(1) + PlaneBytes(1)));
    EXPECT_TRUE(FromBitmap(first + PlaneBytes(16)));
    EXPECT_EQ(ValCharacterSetCreateWithBitmap(nullptr, 0), nullptr);
}

} // namespace
} // namespace vellum
