// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace vellum {
namespace {

using NumberRef = Ref<const ValNumber>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int64_t kInt64Max = std::numeric_limits<int64_t>::max();
constexpr int64_t kInt64Min = std::numeric_limits<int64_t>::min();
constexpr int64_t kTwoTo53 = int64_t{1} << 53;

NumberRef I64(int64_t value) {
    return Adopt(ValNumberCreateSInt64(value));
}
NumberRef F32(float value) {
    return Adopt(ValNumberCreateFloat32(value));
}

TEST(Number, IsSharedWhenItIsASmallInteger) {
    for (int32_t value : {-1, 0, 1, 255}) {
        EXPECT_EQ(N(value).Get(), N(value).Get()) << value;
        EXPECT_EQ(I64(value).Get(), I64(value).Get()) << value;
        EXPECT_NE(static_cast<const void *>(N(value).Get()), I64(value).Get()) << value; // types are kept
        EXPECT_EQ(ValNumberGetSInt32(N(value).Get()), value);
        EXPECT_EQ(ValNumberGetSInt64(I64(value).Get()), value);
    }
    for (int32_t value : {-2, 256}) {
        EXPECT_NE(N(value).Get(), N(value).Get()) << value;
        EXPECT_NE(I64(value).Get(), I64(value).Get()) << value;
    }
}

TEST(Number, KeepsItsType) {
    auto type = [](const ValNumber *number) { return ValNumberGetNumberType(Adopt(number).Get()); };
    EXPECT_EQ(type(ValNumberCreateSInt8(1)), 1u);
    EXPECT_EQ(type(ValNumberCreateSInt16(1)), 2u);
    EXPECT_EQ(type(ValNumberCreateSInt32(1)), 3u);
    EXPECT_EQ(type(ValNumberCreateSInt64(1)), 4u);
    EXPECT_EQ(type(ValNumberCreateFloat32(1)), 5u);
    EXPECT_EQ(type(ValNumberCreateFloat64(1)), 6u);
    EXPECT_EQ(type(nullptr), 0u);
}

TEST(Number, OfNullReadsAsZero) {
    EXPECT_EQ(ValNumberGetSInt32(nullptr), 0);
    EXPECT_EQ(ValNumberGetSInt64(nullptr), 0);
    EXPECT_EQ(ValNumberGetFloat64(nullptr), 0.0);
}

struct Reading {
    NumberRef number;
    int32_t sint32;
    int64_t sint64;
    double float64;
};

TEST(Number, IsConvertedByReading) {
    const Reading kReadings[] = {
        {Adopt(ValNumberCreateSInt8(-128)), -128, -128, -128.0},
        {Adopt(ValNumberCreateSInt16(-32768)), -32768, -32768, -32768.0},
        {N(-7), -7, -7, -7.0},
        {I64(0x1'0000'0005), 5, 0x1'0000'0005, 4294967301.0}, // cut to 32 bits
        {I64(kInt64Max), -1, kInt64Max, 0x1p63},
        {I64(kInt64Min), 0, kInt64Min, -0x1p63},
        {F(2.9), 2, 2, 2.9},
        {F(-2.9), -2, -2, -2.9},
        {F(1e10), 2147483647, 10'000'000'000, 1e10},
        {F(-1e10), -2147483647 - 1, -10'000'000'000, -1e10},
        {F(2147483647.5), 2147483647, 2147483647, 2147483647.5},
        {F(2147483648.0), 2147483647, 2147483648, 2147483648.0},
        {F(-2147483648.9), -2147483647 - 1, -2147483648, -2147483648.9},
        {F(1e300), 2147483647, kInt64Max, 1e300},
        {F(-1e300), -2147483647 - 1, kInt64Min, -1e300},
        {F(0x1p63), 2147483647, kInt64Max, 0x1p63},
        {F(kInfinity), 2147483647, kInt64Max, kInfinity},
        {F32(0.5f), 0, 0, 0.5},
    };
    for (const Reading &row : kReadings) {
        EXPECT_EQ(ValNumberGetSInt32(row.number.Get()), row.sint32) << row.float64;
        EXPECT_EQ(ValNumberGetSInt64(row.number.Get()), row.sint64) << row.float64;
        EXPECT_EQ(ValNumberGetFloat64(row.number.Get()), row.float64);
    }
    EXPECT_EQ(ValNumberGetSInt32(F(kNaN).Get()), 0);
    EXPECT_EQ(ValNumberGetSInt64(F(kNaN).Get()), 0);
    EXPECT_TRUE(std::isnan(ValNumberGetFloat64(F(kNaN).Get())));
}

// Numbers by their exact value; those of one row are equal, those of different rows are not.
std::vector<std::vector<NumberRef>> ValueClasses() {
    return {
        {Adopt(ValNumberCreateSInt8(0)), N(0), I64(0), F(0.0), F(-0.0), F32(0.0f), F32(-0.0f)},
        {Adopt(ValNumberCreateSInt8(1)), Adopt(ValNumberCreateSInt16(1)), N(1), I64(1), F(1.0), F32(1.0f)},
        {N(-1), I64(-1), F(-1.0)},
        {F(0.5), F32(0.5f)},
        {F(0.1)},
        {F32(0.1f), F(static_cast<double>(0.1f))},
        {I64(kTwoTo53), F(0x1p53)},
        {I64(kTwoTo53 + 1)}, // no double has this value
        {I64(kTwoTo53 + 2), F(0x1p53 + 2)},
        {I64(kInt64Max)},
        {F(0x1p63), F32(0x1p63f)},
        {I64(kInt64Min), F(-0x1p63)},
        {F(-0x1p63 - 2048)},
        {F(1e300)},
        {F(kInfinity), F32(std::numeric_limits<float>::infinity())},
        {F(-kInfinity)},
        {F(kNaN), F(-kNaN), F32(std::numeric_limits<float>::quiet_NaN()), F(std::nan("1"))},
        {F(std::numeric_limits<double>::denorm_min())},
    };
}

TEST(NumberEquality, GoesByExactValueWhateverTheType) {
    const auto classes = ValueClasses();
    for (size_t i = 0; i < classes.size(); ++i) {
        for (size_t j = 0; j < classes.size(); ++j) {
            for (const NumberRef &a : classes[i]) {
                for (const NumberRef &b : classes[j]) {
                    EXPECT_EQ(ValEqual(a.Get(), b.Get()), i == j)
                        << ValNumberGetFloat64(a.Get()) << " " << ValNumberGetFloat64(b.Get());
                }
            }
        }
    }
}

TEST(NumberHash, AgreesWithEquality) {
    const auto classes = ValueClasses();
    std::vector<uint64_t> hashes;
    for (const auto &equal : classes) {
        for (const NumberRef &number : equal) EXPECT_EQ(ValHash(number.Get()), ValHash(equal[0].Get()));
        hashes.push_back(ValHash(equal[0].Get()));
    }
    std::ranges::sort(hashes);
    EXPECT_EQ(std::ranges::adjacent_find(hashes), hashes.end()); // and tells these apart
}

TEST(Boolean, HasTwoValues) {
    EXPECT_TRUE(ValBooleanGetValue(kValBooleanTrue));
    EXPECT_FALSE(ValBooleanGetValue(kValBooleanFalse));
    EXPECT_FALSE(ValBooleanGetValue(nullptr));
    EXPECT_FALSE(ValEqual(kValBooleanTrue, kValBooleanFalse));
    EXPECT_TRUE(ValEqual(kValBooleanTrue, kValBooleanTrue));
    EXPECT_NE(ValHash(kValBooleanTrue), ValHash(kValBooleanFalse));
}

TEST(Boolean, EqualsNoNumber) {
    EXPECT_FALSE(ValEqual(kValBooleanTrue, N(1).Get()));
    EXPECT_FALSE(ValEqual(N(0).Get(), kValBooleanFalse));
}

} // namespace
} // namespace vellum
