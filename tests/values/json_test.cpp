// SPDX-License-Identifier: MIT
#include "support/temp_dir.hpp"
#include "support/values.hpp"
#include "values/json.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace vellum::test {
namespace {

TEST(Json, OfNothingIsNull) {
    EXPECT_EQ(ToJson(nullptr), "null");
}

TEST(Json, OfTextIsEscaped) {
    EXPECT_EQ(ToJson(String("a\"b\\c\n\x01\u00e9").Get()), "\"a\\\"b\\\\c\\u000a\\u0001\u00e9\"");
}

TEST(Json, OfBytesThatAreNoTextKeepsTheLetters) {
    const auto name = Adopt(ValStringCreateWithFileSystemRepresentation("a\xff", 2));
    EXPECT_EQ(ToJson(name.Get()), "\"a?\"");
}

TEST(Json, OfNumbersIsShortAndExact) {
    EXPECT_EQ(ToJson(MakeNumber(int64_t{-5}).Get()), "-5");
    EXPECT_EQ(ToJson(MakeNumber(0.1f).Get()), "0.1");
    EXPECT_EQ(ToJson(MakeNumber(0.1).Get()), "0.1");
    EXPECT_EQ(ToJson(MakeNumber(std::numeric_limits<double>::infinity()).Get()), "null");
    EXPECT_EQ(ToJson(kValBooleanTrue), "true");
}

TEST(Json, OfContainersHoldsTheirItems) {
    TValMutableArray array;
    array.Append(String("a").Get());
    array.Append(kValBooleanFalse);
    EXPECT_EQ(ToJson(array.Get()), "[\"a\",false]");
    TValMutableSet set;
    set.Add(MakeNumber(int32_t{1}).Get());
    EXPECT_EQ(ToJson(set.Get()), "[1]");
    TValMutableDict dictionary;
    dictionary.Set(String("k").Get(), array.Get());
    dictionary.Set(String("l").Get(), FileURL("/a b").Get());
    EXPECT_EQ(ToJson(dictionary.Get()), "{\"k\":[\"a\",false],\"l\":\"file:///a%20b\"}");
    EXPECT_EQ(ToJson(TValMutableDict().Get()), "{}");
}

TEST(Json, OfCharactersTellsTheirCountAndRanges) {
    EXPECT_EQ(ToJson(Adopt(ValCharacterSetCreateWithRange('a', 'z')).Get()),
              "{\"characters\":26,\"ranges\":[\"U+0061-007A\"]}");
    EXPECT_EQ(ToJson(Adopt(ValCharacterSetCreateMutable()).Get()), "{\"characters\":0,\"ranges\":[]}");
}

TEST(Json, OfDataTellsItsLength) {
    EXPECT_EQ(ToJson(Adopt(ValDataCreate("abc", 3)).Get()), "{\"bytes\":3}");
}

TEST(Json, EndsAtADepthThatNoValueOfOursHas) {
    auto nested = Adopt(ValArrayCreateMutable(0, nullptr));
    for (int i = 0; i < 100; ++i) {
        auto outer = Adopt(ValArrayCreateMutable(1, nullptr));
        ValArrayAppend(outer.Get(), nested.Get());
        nested = std::move(outer);
    }
    EXPECT_EQ(ToJson(nested.Get()), std::string(32, '[') + "null" + std::string(32, ']'));
}

TEST(Json, CutsLongStringsBetweenCharacters) {
    EXPECT_EQ(ToJson(String("a" + std::string(5000, 'b')).Get()).size(), 4096U + 2);
    std::string accents = "a";
    for (int i = 0; i < 3000; ++i) accents += "\u00e9";
    EXPECT_EQ(ToJson(String(accents).Get()).size(), 4095U + 2);
}

TEST(Json, OfWhatIsSharedManyTimesOverEnds) {
    auto shared = Adopt(ValArrayCreateMutable(0, nullptr));
    for (int i = 0; i < 30; ++i) {
        auto outer = Adopt(ValArrayCreateMutable(2, nullptr));
        ValArrayAppend(outer.Get(), shared.Get());
        ValArrayAppend(outer.Get(), shared.Get());
        shared = std::move(outer);
    }
    const std::string json = ToJson(shared.Get());
    EXPECT_GT(json.size(), size_t{16} << 20);
    EXPECT_LT(json.size(), size_t{17} << 20);
    EXPECT_TRUE(json.ends_with("]"));
}

} // namespace
} // namespace vellum::test
