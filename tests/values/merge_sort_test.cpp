// SPDX-License-Identifier: MIT
#include "values/merge_sort.hpp"

#include <gmock/gmock.h>

#include <random>
#include <utility>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAreArray;

TEST(MergeSort, SortsAnyNumberOfItems) {
    std::mt19937 random(1);
    for (size_t count = 0; count < 70; ++count) {
        std::vector<int> items(count);
        for (int &item : items) item = static_cast<int>(random() % 50);
        auto expected = items;
        std::ranges::stable_sort(expected);
        MergeSort(items, [](int a, int b) { return a - b; });
        EXPECT_EQ(items, expected);
    }
}

TEST(MergeSort, KeepsTheOrderOfEqualItems) {
    std::vector<std::pair<int, char>> items = {{2, 'a'}, {1, 'b'}, {2, 'c'}, {1, 'd'}, {2, 'e'}};
    MergeSort(items, [](const auto &a, const auto &b) { return a.first - b.first; });
    EXPECT_THAT(items, ElementsAre(std::pair(1, 'b'), std::pair(1, 'd'), std::pair(2, 'a'),
                                   std::pair(2, 'c'), std::pair(2, 'e')));
}

TEST(MergeSort, LosesNothingWhateverTheComparisonClaims) {
    std::mt19937 random(2);
    std::vector<int> items(1000);
    for (size_t i = 0; i < items.size(); ++i) items[i] = static_cast<int>(i);
    const auto all = items;
    MergeSort(items, [](int, int) { return 1; });
    EXPECT_THAT(items, UnorderedElementsAreArray(all));
    MergeSort(items, [&](int, int) { return static_cast<int>(random() % 3) - 1; });
    EXPECT_THAT(items, UnorderedElementsAreArray(all));
}

TEST(MergeSort, MergesFromTheRightAsLongAsTheComparisonSaysSo) {
    std::vector<int> items = {0, 1, 2, 3, 4, 5, 6};
    MergeSort(items, [](int, int) { return 1; });
    EXPECT_THAT(items, ElementsAre(6, 5, 4, 3, 2, 1, 0));
    MergeSort(items, [](int, int) { return -1; });
    EXPECT_THAT(items, ElementsAre(6, 5, 4, 3, 2, 1, 0));
}

TEST(MergeSort, GivesTheSameResultForTheSameAnswersHoweverRandom) {
    const auto sorted = [](unsigned seed) {
        std::mt19937 random(seed);
        std::vector<int> items(777);
        for (size_t i = 0; i < items.size(); ++i) items[i] = static_cast<int>(i);
        MergeSort(items, [&](int, int) { return static_cast<int>(random() % 3) - 1; });
        return items;
    };
    for (unsigned seed = 0; seed < 20; ++seed) EXPECT_EQ(sorted(seed), sorted(seed));
    EXPECT_NE(sorted(0), sorted(1)); // the answers count
}

TEST(MergeSort, GivesTheSameResultForTheSameInputUnderAComparisonThatContradictsItself) {
    const auto both_after = [](int a, int b) { return a == -b ? 1 : std::abs(a) - std::abs(b); };
    std::vector<int> first = {4, -4, 1, -1, 3, -4, 4}, second = first;
    MergeSort(first, both_after);
    MergeSort(second, both_after);
    EXPECT_EQ(first, second);
}

} // namespace
} // namespace vellum::test
