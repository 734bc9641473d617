// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace vellum {
namespace {

using UUIDRef = Ref<const ValUUID>;

UUIDRef Parse(std::string_view text) {
    return Adopt(ValUUIDCreateWithString(S(text).Get()));
}
std::string Write(const UUIDRef &uuid) {
    return TextOf(Adopt(ValUUIDCopyString(uuid.Get())));
}

constexpr uint8_t kBytes[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
constexpr auto kText = "01234567-89AB-CDEF-FEDC-BA9876543210";

TEST(UUID, HasItsBytesInCanonicalOrder) {
    auto uuid = Adopt(ValUUIDCreateWithBytes(kBytes));
    EXPECT_EQ(Write(uuid), kText);
    EXPECT_EQ(0, std::memcmp(ValUUIDGetBytes(uuid.Get()), kBytes, 16));
}

TEST(UUID, IsReadInEitherCase) {
    auto uuid = Adopt(ValUUIDCreateWithBytes(kBytes));
    EXPECT_TRUE(ValEqual(Parse(kText).Get(), uuid.Get()));
    EXPECT_TRUE(ValEqual(Parse("01234567-89ab-cdef-FEDC-ba9876543210").Get(), uuid.Get()));
    EXPECT_EQ(ValHash(Parse(kText).Get()), ValHash(uuid.Get()));
}

TEST(UUID, IsReadFromNothingElse) {
    for (auto text : {"", "01234567-89AB-CDEF-FEDC-BA987654321", "01234567-89AB-CDEF-FEDC-BA98765432100",
                      "0123456789ABCDEFFEDCBA9876543210", "{1234567-89AB-CDEF-FEDC-BA987654321}",
                      "01234567-89AB-CDEF-FEDC-BA987654321G", "01234567+89AB-CDEF-FEDC-BA9876543210",
                      "0123456-789AB-CDEF-FEDC-BA9876543210"}) {
        EXPECT_FALSE(Parse(text)) << text;
    }
    EXPECT_EQ(ValUUIDCreateWithString(nullptr), nullptr);
}

TEST(UUID, OfNullIsNone) {
    EXPECT_EQ(ValUUIDCreateWithBytes(nullptr), nullptr);
    EXPECT_EQ(ValUUIDGetBytes(nullptr), nullptr);
    EXPECT_EQ(ValUUIDCopyString(nullptr), nullptr);
}

TEST(RandomUUID, IsOfVersion4AndUnlikeAnyOther) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        std::string text = Write(Adopt(ValUUIDCreate()));
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
        EXPECT_TRUE(seen.insert(text).second);
        EXPECT_EQ(Write(Parse(text)), text);
    }
}

TEST(UUIDEquality, ComparesEveryByte) {
    auto uuid = Adopt(ValUUIDCreateWithBytes(kBytes));
    for (size_t i = 0; i < 16; ++i) {
        uint8_t other[16];
        std::memcpy(other, kBytes, 16);
        other[i] ^= 1;
        auto changed = Adopt(ValUUIDCreateWithBytes(other));
        EXPECT_FALSE(ValEqual(uuid.Get(), changed.Get()));
        EXPECT_NE(ValHash(uuid.Get()), ValHash(changed.Get()));
    }
}

} // namespace
} // namespace vellum
