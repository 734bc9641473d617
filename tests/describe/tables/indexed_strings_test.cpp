// SPDX-License-Identifier: MIT
#include "describe/tables/indexed_strings.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

Bytes List(uint32_t count, const std::vector<std::string> &strings) {
    ByteWriter list;
    list.U16(count);
    for (const std::string &string : strings) list.U8(static_cast<uint32_t>(string.size())).Text(string);
    return list;
}

// The string's text; "(null)" when it is not found.
std::string Find(const Bytes &bytes, uint32_t index) {
    const auto list = TableData(bytes);
    const uint8_t *string = FindIndexedString(list.Get(), index);
    return string ? std::string(string + 1, string + 1 + *string) : "(null)";
}

TEST(FindIndexedString, CountsFromOne) {
    const Bytes list = List(3, {"first", "second", "third"});
    EXPECT_EQ(Find(list, 1), "first");
    EXPECT_EQ(Find(list, 2), "second");
    EXPECT_EQ(Find(list, 3), "third");
}

TEST(FindIndexedString, GivesTheAddressOfTheLengthByte) {
    const auto list = TableData(List(2, {"ab", "c"}));
    EXPECT_EQ(FindIndexedString(list.Get(), 1), ValDataGetBytes(list.Get()) + 2);
    EXPECT_EQ(FindIndexedString(list.Get(), 2), ValDataGetBytes(list.Get()) + 5);
}

TEST(FindIndexedString, FindsEmptyStringsAndTheLongest) {
    const std::string longest(255, 'x');
    const Bytes list = List(4, {"", longest, "", "end"});
    EXPECT_EQ(Find(list, 1), "");
    EXPECT_EQ(Find(list, 2), longest);
    EXPECT_EQ(Find(list, 3), "");
    EXPECT_EQ(Find(list, 4), "end");
}

TEST(FindIndexedString, IndexesOutOfTheCountAreNotFound) {
    const Bytes list = List(2, {"first", "second", "uncounted"});
    EXPECT_EQ(Find(list, 0), "(null)");
    EXPECT_EQ(Find(list, 3), "(null)");
    EXPECT_EQ(Find(list, UINT32_MAX), "(null)");
    EXPECT_EQ(Find(List(0, {}), 1), "(null)");
}

TEST(FindIndexedString, AnAbsentListHasNoStrings) {
    EXPECT_EQ(FindIndexedString(nullptr, 0), nullptr);
    EXPECT_EQ(FindIndexedString(nullptr, 1), nullptr);
}

TEST(FindIndexedString, ACountThatLiesFindsNothingBeyondTheEnd) {
    const Bytes list = List(0xFFFF, {"first"});
    EXPECT_EQ(Find(list, 1), "first");
    EXPECT_EQ(Find(list, 2), "(null)");
    EXPECT_EQ(Find(list, 0xFFFF), "(null)");
}

TEST(FindIndexedString, AnEmptyStringIsNotMadeOfWhatIsNotThere) {
    EXPECT_EQ(Find(List(1, {}), 1), "(null)");
}

TEST(FindIndexedString, AStringIsFoundOnceAllOfItIsThere) {
    ForEveryLength(List(2, {"abc", "de"}), [](auto cut, auto, size_t length) {
        EXPECT_EQ(FindIndexedString(cut.Get(), 1) != nullptr, length >= 6) << length;
        EXPECT_EQ(FindIndexedString(cut.Get(), 2) != nullptr, length >= 9) << length;
    });
}

} // namespace
} // namespace vellum::test
