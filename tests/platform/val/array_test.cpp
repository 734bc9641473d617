// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using ArrayRef = Ref<ValArray>;

// Items are counters of how often they are held.
const void *CountUp(const void *item) {
    ++*static_cast<int *>(const_cast<void *>(item));
    return item;
}
void CountDown(const void *item) {
    --*static_cast<int *>(const_cast<void *>(item));
}

TEST(Array, HoldsItsElementsInOrder) {
    auto a = S("a");
    auto array = A({a.Get(), nullptr, kValBooleanTrue});
    EXPECT_EQ(ValArrayGetCount(array.Get()), 3u);
    EXPECT_EQ(ValArrayGetValue(array.Get(), 0), a.Get());
    EXPECT_EQ(ValArrayGetValue(array.Get(), 1), nullptr);
    EXPECT_EQ(ValArrayGetValue(array.Get(), 2), kValBooleanTrue);
    EXPECT_EQ(ValArrayGetValue(array.Get(), 3), nullptr);
    EXPECT_EQ(ValArrayGetValues(array.Get())[2], kValBooleanTrue);
}

TEST(Array, OfNullIsEmpty) {
    EXPECT_EQ(ValArrayGetCount(Adopt(ValArrayCreate(nullptr, 0)).Get()), 0u);
    EXPECT_EQ(ValArrayCreate(nullptr, 1), nullptr);
    EXPECT_EQ(ValArrayGetCount(nullptr), 0u);
    EXPECT_EQ(ValArrayGetValue(nullptr, 0), nullptr);
    EXPECT_EQ(ValArrayGetValues(nullptr), nullptr);
    EXPECT_EQ(ValArrayGetFirstIndexOf(nullptr, nullptr), SIZE_MAX);
    EXPECT_FALSE(ValArrayContains(nullptr, nullptr));
    EXPECT_EQ(ValArrayCreateMutableCopy(nullptr), nullptr);
    EXPECT_FALSE(ValArrayAppend(nullptr, kValBooleanTrue));
    EXPECT_FALSE(ValArrayAppendArray(nullptr, A({}).Get()));
    EXPECT_FALSE(ValArrayReplace(nullptr, 0, nullptr));
    EXPECT_FALSE(ValArrayRemove(nullptr, 0));
    ValArrayRemoveAll(nullptr);
}

TEST(Array, FindsEqualElements) {
    auto array = A({N(1).Get(), N(2).Get(), nullptr, F(2.0).Get()});
    EXPECT_EQ(ValArrayGetFirstIndexOf(array.Get(), F(2.0).Get()), 1u);
    EXPECT_EQ(ValArrayGetFirstIndexOf(array.Get(), nullptr), 2u);
    EXPECT_EQ(ValArrayGetFirstIndexOf(array.Get(), N(3).Get()), SIZE_MAX);
    EXPECT_TRUE(ValArrayContains(array.Get(), N(1).Get()));
    EXPECT_FALSE(ValArrayContains(array.Get(), S("1").Get()));
}

TEST(MutableArray, GrowsBeyondItsCapacity) {
    for (size_t capacity : {0u, 1u, 5u, 100u}) {
        auto array = Adopt(ValArrayCreateMutable(capacity, nullptr));
        for (int i = 0; i < 50; ++i) ASSERT_TRUE(ValArrayAppend(array.Get(), N(i).Get()));
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(ValNumberGetSInt32(static_cast<const ValNumber *>(
                          ValArrayGetValue(array.Get(), static_cast<size_t>(i)))),
                      i);
        }
    }
}

TEST(MutableArray, ReplacesAndRemoves) {
    auto array = Adopt(ValArrayCreateMutableCopy(A({N(0).Get(), N(1).Get(), N(2).Get()}).Get()));
    EXPECT_TRUE(ValArrayReplace(array.Get(), 1, N(5).Get()));
    EXPECT_TRUE(ValArrayRemove(array.Get(), 0));
    EXPECT_TRUE(ValEqual(array.Get(), A({N(5).Get(), N(2).Get()}).Get()));
    EXPECT_FALSE(ValArrayReplace(array.Get(), 2, N(5).Get()));
    EXPECT_FALSE(ValArrayRemove(array.Get(), 2));
    EXPECT_TRUE(ValArrayRemove(array.Get(), 1));
    EXPECT_TRUE(ValArrayRemove(array.Get(), 0));
    EXPECT_EQ(ValArrayGetCount(array.Get()), 0u);
}

TEST(MutableArray, CanBeEmptiedAndFilledAgain) {
    auto array = Adopt(ValArrayCreateMutableCopy(A({N(0).Get(), N(1).Get()}).Get()));
    ValArrayRemoveAll(array.Get());
    EXPECT_EQ(ValArrayGetCount(array.Get()), 0u);
    ValArrayAppend(array.Get(), N(7).Get());
    EXPECT_TRUE(ValEqual(array.Get(), A({N(7).Get()}).Get()));
}

TEST(MutableArray, AppendsAnArrayEvenItself) {
    auto array = Adopt(ValArrayCreateMutableCopy(A({N(0).Get(), N(1).Get()}).Get()));
    EXPECT_TRUE(ValArrayAppendArray(array.Get(), A({N(2).Get()}).Get()));
    EXPECT_TRUE(ValArrayAppendArray(array.Get(), array.Get()));
    EXPECT_TRUE(ValArrayAppendArray(array.Get(), nullptr));
    EXPECT_TRUE(ValEqual(
        array.Get(), A({N(0).Get(), N(1).Get(), N(2).Get(), N(0).Get(), N(1).Get(), N(2).Get()}).Get()));
}

TEST(MutableArray, RefusesACapacityThatNoMemoryHas) {
    EXPECT_EQ(ValArrayCreateMutable(SIZE_MAX, nullptr), nullptr);
    EXPECT_EQ(ValArrayCreateMutable(SIZE_MAX / 8, nullptr), nullptr);
}

TEST(MutableCopy, LeavesTheOriginalAlone) {
    auto original = A({N(0).Get()});
    auto copy = Adopt(ValArrayCreateMutableCopy(original.Get()));
    ValArrayAppend(copy.Get(), N(1).Get());
    EXPECT_EQ(ValArrayGetCount(original.Get()), 1u);
}

TEST(ArrayEquality, ComparesElementsInOrder) {
    auto a = A({N(1).Get(), S("x").Get(), nullptr});
    EXPECT_TRUE(ValEqual(a.Get(), A({F(1.0).Get(), S("x").Get(), nullptr}).Get()));
    EXPECT_FALSE(ValEqual(a.Get(), A({S("x").Get(), N(1).Get(), nullptr}).Get()));
    EXPECT_FALSE(ValEqual(a.Get(), A({N(1).Get(), S("x").Get()}).Get()));
    EXPECT_TRUE(ValEqual(A({}).Get(), A({}).Get()));
}

TEST(ArrayHash, AgreesWithEqualityWhateverTheArrayWasMadeFor) {
    auto grown = Adopt(ValArrayCreateMutable(0, nullptr));
    ValArrayAppend(grown.Get(), F(1.0).Get());
    ValArrayAppend(grown.Get(), A({N(5).Get()}).Get());
    auto made = A({N(1).Get(), A({F(5).Get()}).Get()});
    EXPECT_TRUE(ValEqual(grown.Get(), made.Get()));
    EXPECT_EQ(ValHash(grown.Get()), ValHash(made.Get()));
    EXPECT_NE(ValHash(A({N(1).Get()}).Get()), ValHash(A({N(2).Get()}).Get()));
    EXPECT_NE(ValHash(A({}).Get()), ValHash(A({nullptr}).Get()));
}

TEST(RawArray, KeepsNumbersAsTheyAre) {
    auto array = Adopt(ValArrayCreateMutable(1, &kValRawCallbacks));
    for (uintptr_t i = 0; i < 20; ++i) ValArrayAppend(array.Get(), Raw(i));
    EXPECT_EQ(ValArrayGetValue(array.Get(), 0), Raw(0));
    EXPECT_EQ(ValArrayGetFirstIndexOf(array.Get(), Raw(19)), 19u);
    EXPECT_FALSE(ValArrayContains(array.Get(), Raw(20)));
    auto copy = Adopt(ValArrayCreateMutableCopy(array.Get()));
    EXPECT_TRUE(ValEqual(copy.Get(), array.Get()));
    EXPECT_EQ(ValHash(copy.Get()), ValHash(array.Get()));
}

TEST(ArrayEquality, NeedsTheSameCallbacks) {
    auto raw = Adopt(ValArrayCreateMutable(0, &kValRawCallbacks));
    auto values = Adopt(ValArrayCreateMutable(0, &kValValueCallbacks));
    auto folding = Adopt(ValArrayCreateMutable(0, &kValCaseInsensitiveStringCallbacks));
    EXPECT_FALSE(ValEqual(raw.Get(), values.Get()));
    EXPECT_FALSE(ValEqual(folding.Get(), values.Get()));
    EXPECT_TRUE(ValEqual(A({}).Get(), values.Get()));
}

TEST(CaseInsensitiveArray, FindsAndEqualsWhateverTheCase) {
    auto a = Adopt(ValArrayCreateMutable(0, &kValCaseInsensitiveStringCallbacks));
    auto b = Adopt(ValArrayCreateMutable(0, &kValCaseInsensitiveStringCallbacks));
    ValArrayAppend(a.Get(), S("Arial").Get());
    ValArrayAppend(b.Get(), S("ARIAL").Get());
    EXPECT_TRUE(ValArrayContains(a.Get(), S("arial").Get()));
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
}

TEST(ArrayWithOwnCallbacks, BalancesEveryRetain) {
    int held[3] = {};
    {
        // The struct may go away; its functions may not.
        auto array = [] {
            ValCallbacks callbacks{CountUp, CountDown, nullptr, nullptr, nullptr};
            return Adopt(ValArrayCreateMutable(2, &callbacks));
        }();
        for (int &item : held) ValArrayAppend(array.Get(), &item);
        auto copy = Adopt(ValArrayCreateMutableCopy(array.Get()));
        EXPECT_EQ(held[0], 2);
        ValArrayReplace(copy.Get(), 0, &held[1]);
        EXPECT_EQ(held[0], 1);
        EXPECT_EQ(held[1], 3);
        ValArrayReplace(copy.Get(), 0, &held[1]); // by itself
        EXPECT_EQ(held[1], 3);
        ValArrayRemove(array.Get(), 2);
        EXPECT_EQ(held[2], 1);
        ValArrayRemoveAll(copy.Get());
        EXPECT_EQ(held[1], 1);
    }
    EXPECT_EQ(held[0] + held[1] + held[2], 0);
}

} // namespace
} // namespace vellum
