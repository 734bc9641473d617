// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;
using DataRef = Ref<const ValData>;

DataRef D(std::string_view bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

std::string BytesOf(const ValData *data) {
    const uint8_t *bytes = ValDataGetBytes(data);
    return std::string(bytes, bytes + ValDataGetLength(data));
}

TEST(Data, CopiesItsBytes) {
    char bytes[] = "abc";
    auto data = Adopt(ValDataCreate(bytes, 3));
    bytes[0] = 'x';
    EXPECT_EQ(BytesOf(data.Get()), "abc");
}

TEST(Data, MayBeEmpty) {
    EXPECT_EQ(ValDataGetLength(D("").Get()), 0u);
    EXPECT_TRUE(ValEqual(Adopt(ValDataCreate(nullptr, 0)).Get(), D("").Get()));
}

TEST(Data, OfNullIsNone) {
    EXPECT_EQ(ValDataCreate(nullptr, 1), nullptr);
    EXPECT_EQ(ValDataCreateWithBytesNoCopy(nullptr, 1, nullptr, nullptr), nullptr);
    EXPECT_EQ(ValDataGetLength(nullptr), 0u);
    EXPECT_EQ(ValDataGetBytes(nullptr), nullptr);
    EXPECT_EQ(ValDataGetMutableBytes(nullptr), nullptr);
    EXPECT_FALSE(ValDataAppend(nullptr, "", 0));
    EXPECT_FALSE(ValDataSetLength(nullptr, 0));
}

TEST(DataEquality, ComparesEveryByteAndHashesAlike) {
    std::string large(1'000, 'a');
    auto a = D(large);
    auto b = D(large);
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
    large[500] = 'b'; // where no hash looks
    EXPECT_FALSE(ValEqual(a.Get(), D(large).Get()));
    EXPECT_FALSE(ValEqual(D("ab").Get(), D("abc").Get()));
    EXPECT_NE(ValHash(D("ab").Get()), ValHash(D("abc").Get()));
    EXPECT_NE(ValHash(D("ab").Get()), ValHash(D("ac").Get()));
}

TEST(LentData, IsUsedWhereItLiesAndGivenBackOnce) {
    const std::string bytes = "lent";
    int given_back = 0;
    auto count = [](void *context) { ++*static_cast<int *>(context); };
    auto data = Adopt(ValDataCreateWithBytesNoCopy(bytes.data(), bytes.size(), count, &given_back));
    EXPECT_EQ(static_cast<const void *>(ValDataGetBytes(data.Get())), bytes.data());
    EXPECT_TRUE(ValEqual(data.Get(), D("lent").Get()));
    auto second = data;
    data = nullptr;
    EXPECT_EQ(given_back, 0);
    second = nullptr;
    EXPECT_EQ(given_back, 1);
}

TEST(LentData, NeedsNoRelease) {
    auto data = Adopt(ValDataCreateWithBytesNoCopy("abc", 3, nullptr, nullptr));
    EXPECT_EQ(BytesOf(data.Get()), "abc");
}

TEST(MutableData, GrowsByAppending) {
    auto data = Adopt(ValDataCreateMutable(2));
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        const auto byte = static_cast<char>(i);
        ASSERT_TRUE(ValDataAppend(data.Get(), &byte, 1));
        expected += byte;
    }
    EXPECT_EQ(BytesOf(data.Get()), expected);
    EXPECT_TRUE(ValDataAppend(data.Get(), nullptr, 0));
    EXPECT_FALSE(ValDataAppend(data.Get(), nullptr, 1));
    EXPECT_FALSE(ValDataAppend(data.Get(), "", SIZE_MAX));
    EXPECT_EQ(BytesOf(data.Get()), expected);
}

TEST(MutableData, CanAppendItsOwnBytes) {
    auto data = Adopt(ValDataCreateMutable(3));
    ValDataAppend(data.Get(), "abc", 3);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(ValDataAppend(data.Get(), ValDataGetBytes(data.Get()), ValDataGetLength(data.Get())));
    }
    EXPECT_EQ(ValDataGetLength(data.Get()), 96u);
    EXPECT_EQ(BytesOf(data.Get()).substr(93), "abc");
    ASSERT_TRUE(ValDataAppend(data.Get(), ValDataGetBytes(data.Get()) + 1, 1));
    EXPECT_EQ(BytesOf(data.Get()).back(), 'b');
}

TEST(MutableData, IsCutOrGrownWithZeros) {
    auto data = Adopt(ValDataCreateMutable(0));
    ValDataAppend(data.Get(), "abcdef", 6);
    EXPECT_TRUE(ValDataSetLength(data.Get(), 2));
    EXPECT_EQ(BytesOf(data.Get()), "ab");
    EXPECT_TRUE(ValDataSetLength(data.Get(), 5)); // not what stood there before
    EXPECT_EQ(BytesOf(data.Get()), "ab\0\0\0"sv);
    EXPECT_TRUE(ValDataSetLength(data.Get(), 0));
    EXPECT_EQ(ValDataGetLength(data.Get()), 0u);
}

TEST(MutableData, IsWrittenInPlace) {
    auto data = Adopt(ValDataCreateMutable(4));
    ValDataSetLength(data.Get(), 4);
    ValDataGetMutableBytes(data.Get())[3] = 'x';
    EXPECT_EQ(BytesOf(data.Get()), "\0\0\0x"sv);
}

TEST(MutableData, RefusesALengthThatNoMemoryHas) {
    auto data = Adopt(ValDataCreateMutable(1));
    ValDataAppend(data.Get(), "a", 1);
    EXPECT_FALSE(ValDataSetLength(data.Get(), SIZE_MAX - 64));
    EXPECT_EQ(BytesOf(data.Get()), "a");
    EXPECT_EQ(ValDataCreateMutable(SIZE_MAX - 8), nullptr);
    EXPECT_EQ(ValDataCreateMutable(SIZE_MAX / 2 + 1), nullptr);
}

} // namespace
} // namespace vellum
