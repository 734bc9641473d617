// SPDX-License-Identifier: MIT
// The second reader by itself: it would be no help if it were wrong in the same way as the first.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/reference_decoder.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using namespace std::string_view_literals;

TEST(ReferenceDecoder, ReadsTheExampleOfThePage) {
    const Bytes bytes = Hex("00000010 00000003"
                            "  00000007 00000004 4e616d65"
                            "  00000007 00000002 c384"
                            "  00000007 00000007 57656967687473"
                            "  00000011 00000002"
                            "    00000016 00000003 00000004 00000001"
                            "    00000016 00000006 00000008 3fe0000000000000"
                            "  00000007 00000002 4f6e"
                            "  00000103 00000001 01");
    Model weights = EmptyModel(ModelKind::kArray);
    weights.items = {IntegerModel(ModelNumberType::kSInt32, 1), Float64Model(0x3FE0000000000000)};
    Model expected = EmptyModel(ModelKind::kDictionary);
    expected.items = {StringModel("Name"), StringModel("\xC3\x84"), StringModel("Weights"), weights,
                      StringModel("On"),   BooleanModel(true)};
    ReferenceDecoder decoder(bytes);
    EXPECT_EQ(bytes.size(), 108U);
    EXPECT_EQ(decoder.Next(), expected);
    EXPECT_EQ(decoder.BytesLeft(), 0U);
    EXPECT_FALSE(decoder.IsRefused());
}

TEST(ReferenceDecoder, ReadsACharacterSetPlaneByPlane) {
    ByteWriter bytes;
    bytes.U32(27).U32(8192 + 8193).U8(0x82).Zeros(8190).U8(0x80);
    bytes.U8(1).U8(0x03).Zeros(8191);
    EXPECT_EQ(ReferenceDecoder(bytes).Next(), CharacterSetModel({{1, 1}, {7, 7}, {0xFFFF, 0x10001}}));
}

TEST(ReferenceDecoder, TakesForUTF8OnlyWhatUnicodeDoes) {
    static constexpr std::string_view kValid[] = {""sv, "a\0b"sv, "\x7F\xC2\x80\xDF\xBF"sv,
                                                  "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"sv,
                                                  "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"sv};
    static constexpr std::string_view kInvalid[] = {
        "\x80"sv,         "\xC1\xBF"sv,         "\xE0\x9F\xBF"sv,     "\xED\xA0\x80"sv,
        "\xED\xBF\xBF"sv, "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv, "\xF8\x88\x80\x80\x80"sv,
        "\xC3"sv,         "\xE2\x82"sv,         "\xC3\x41"sv,         "a\xFF"sv};
    for (const std::string_view text : kValid) EXPECT_TRUE(IsUTF8(text)) << StringModel(std::string(text));
    for (const std::string_view text : kInvalid)
        EXPECT_FALSE(IsUTF8(text)) << StringModel(std::string(text));
}

TEST(ReferenceDecoder, ComparesNumbersOfAllTypesWithoutRounding) {
    const auto integer = [](int64_t value) { return IntegerModel(ModelNumberType::kSInt64, value); };
    const Model small = IntegerModel(ModelNumberType::kSInt8, 1);
    EXPECT_TRUE(AreEqualValues(small, integer(1)));
    EXPECT_TRUE(AreEqualValues(small, Float32Model(0x3F800000)));
    EXPECT_TRUE(AreEqualValues(integer(0), Float64Model(0x8000000000000000)));          // -0.0
    EXPECT_TRUE(AreEqualValues(integer(INT64_MIN), Float32Model(0xDF000000)));          // -2^63
    EXPECT_FALSE(AreEqualValues(integer(INT64_MAX), Float64Model(0x43E0000000000000))); // 2^63
    EXPECT_FALSE(AreEqualValues(integer((int64_t{1} << 53) + 1), Float64Model(0x4340000000000000))); // 2^53
    EXPECT_TRUE(AreEqualValues(Float32Model(0x7FC00000), Float64Model(0xFFF8000000000001))); // no numbers
    EXPECT_FALSE(AreEqualValues(small, BooleanModel(true)));
}

} // namespace
} // namespace vellum::test
