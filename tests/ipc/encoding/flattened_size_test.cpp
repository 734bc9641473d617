// SPDX-License-Identifier: MIT
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/encoding.hpp"
#include "ipc/encoding/flattened_size.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

template <class T>
size_t SizeOf(const Ref<T> &value) {
    return EstimateFlattenedSize(value.Get());
}

TEST(FlattenedSize, TakesThreeBytesForEachUTF16UnitOfAString) {
    EXPECT_EQ(SizeOf(String("")), 8U);
    EXPECT_EQ(SizeOf(String("abc")), 8U + 9);
    EXPECT_EQ(SizeOf(String("😀")), 8U + 6);
}

TEST(FlattenedSize, IsExactForEveryKindButStrings) {
    EXPECT_EQ(SizeOf(Int(7)), 16U);
    EXPECT_EQ(SizeOf(Adopt(ValNumberCreateSInt8(7))), 13U);
    EXPECT_EQ(SizeOf(Adopt(ValNumberCreateSInt16(7))), 14U);
    EXPECT_EQ(SizeOf(Adopt(ValNumberCreateFloat64(7))), 20U);
    EXPECT_EQ(EstimateFlattenedSize(kValBooleanTrue), 9U);
    EXPECT_EQ(SizeOf(Adopt(ValDataCreate("abc", 3))), 11U);
    EXPECT_EQ(SizeOf(Adopt(ValUUIDCreate())), 24U);
    EXPECT_EQ(SizeOf(Url("file:///a")), 17U);
    EXPECT_EQ(SizeOf(Url("b", Url("file:///a").Get())), 17U); // as it is written
    EXPECT_EQ(SizeOf(List({})), 8U);
    EXPECT_EQ(SizeOf(List({Int(1), nullptr, Retain(kValBooleanTrue)})), 8U + 16 + 9);
    EXPECT_EQ(SizeOf(SetOf({Int(1)})), 8U + 16);
    EXPECT_EQ(SizeOf(Dictionary({{Int(1), Retain(kValBooleanTrue)}})), 8U + 16 + 9);
}

TEST(FlattenedSize, CountsThePlanesOfACharacterSet) {
    const auto set = Adopt(ValCharacterSetCreateMutable());
    EXPECT_EQ(SizeOf(set), 8'200U);
    ValCharacterSetAddRange(set.Get(), 0x1F600, 0x1F600);
    EXPECT_EQ(SizeOf(set), 8'200U + 8'193);
    ValCharacterSetAddRange(set.Get(), 0x1FFFF, 0x20000);
    EXPECT_EQ(SizeOf(set), 8'200U + 2 * 8'193);
}

constinit const ValKind kUnknownKind{kValTypeOther, "Thing", nullptr, nullptr, nullptr, nullptr};

TEST(FlattenedSize, IsNothingForNullAndForOtherKinds) {
    EXPECT_EQ(EstimateFlattenedSize(nullptr), 0U);
    EXPECT_EQ(SizeOf(Adopt(static_cast<const void *>(AllocateObject<ValObject>(0, kUnknownKind)))), 0U);
}

TEST(FlattenedSize, StopsWhereAValueIsTooLargeInWhole) {
    EXPECT_LT(SizeOf(Doubled(10)), kMaximumFlattenedLength);
    EXPECT_GT(SizeOf(Doubled(11)), kMaximumFlattenedLength);
    EXPECT_GT(SizeOf(Doubled(63)), kMaximumFlattenedLength); // would take centuries to walk
}

TEST(FlattenedSize, StopsWhereItIsMoreThanEnough) {
    const auto list = List({Int(1), Int(2), Int(3)});
    EXPECT_EQ(EstimateFlattenedSize(list.Get(), 56), 56U);
    EXPECT_EQ(EstimateFlattenedSize(list.Get(), 24), 40U);
    EXPECT_EQ(EstimateFlattenedSize(list.Get(), 0), 8U);
}

} // namespace
} // namespace vellum::test
