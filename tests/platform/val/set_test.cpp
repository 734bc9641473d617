// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gmock/gmock.h>

namespace vellum {
namespace {

using ::testing::ElementsAre;
using SetRef = Ref<ValSet>;

SetRef Make(const ValCallbacks *callbacks = nullptr, size_t capacity = 0) {
    return Adopt(ValSetCreateMutable(capacity, callbacks));
}

std::vector<uintptr_t> RawMembers(const SetRef &set) {
    std::vector<uintptr_t> members;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set.Get(), &cursor, &member);) {
        members.push_back(reinterpret_cast<uintptr_t>(member));
    }
    return members;
}

TEST(Set, HoldsEqualItemsOnce) {
    auto first = N(1);
    auto second = F(1.0);
    auto other = S("1");
    const void *items[] = {first.Get(), second.Get(), other.Get()};
    auto set = Adopt(ValSetCreate(items, 3));
    EXPECT_EQ(ValSetGetCount(set.Get()), 2u);
    const void *member = nullptr;
    EXPECT_TRUE(ValSetGetMemberIfPresent(set.Get(), second.Get(), &member));
    EXPECT_EQ(member, first.Get()); // the first stays
    EXPECT_TRUE(ValSetGetMemberIfPresent(set.Get(), other.Get(), nullptr));
}

TEST(Set, OfNullIsEmpty) {
    EXPECT_EQ(ValSetGetCount(Adopt(ValSetCreate(nullptr, 0)).Get()), 0u);
    EXPECT_EQ(ValSetCreate(nullptr, 1), nullptr);
    EXPECT_EQ(ValSetGetCount(nullptr), 0u);
    EXPECT_FALSE(ValSetContains(nullptr, kValBooleanTrue));
    EXPECT_FALSE(ValSetGetMemberIfPresent(nullptr, kValBooleanTrue, nullptr));
    EXPECT_FALSE(ValSetAdd(nullptr, kValBooleanTrue));
    EXPECT_FALSE(ValSetRemove(nullptr, kValBooleanTrue));
    EXPECT_EQ(ValSetCreateMutableCopy(nullptr), nullptr);
    ValSetRemoveAll(nullptr);
    size_t cursor = 0;
    EXPECT_FALSE(ValSetNext(nullptr, &cursor, nullptr));
    EXPECT_FALSE(ValSetNext(Make().Get(), nullptr, nullptr));
}

TEST(Set, RefusesNullUnderValueCallbacks) {
    auto set = Make();
    EXPECT_FALSE(ValSetAdd(set.Get(), nullptr));
    EXPECT_FALSE(ValSetContains(set.Get(), nullptr));
    const void *nothing[] = {nullptr};
    EXPECT_EQ(ValSetCreate(nothing, 1), nullptr);
}

TEST(RawSet, HasAMemberZero) {
    auto set = Make(&kValRawCallbacks);
    EXPECT_FALSE(ValSetContains(set.Get(), nullptr));
    EXPECT_TRUE(ValSetAdd(set.Get(), nullptr));
    EXPECT_TRUE(ValSetContains(set.Get(), nullptr));
    EXPECT_EQ(ValSetGetCount(set.Get()), 1u);
}

TEST(Set, AddsAndRemoves) {
    auto set = Make();
    EXPECT_TRUE(ValSetAdd(set.Get(), S("a").Get()));
    EXPECT_TRUE(ValSetAdd(set.Get(), S("a").Get())); // there already
    EXPECT_EQ(ValSetGetCount(set.Get()), 1u);
    EXPECT_TRUE(ValSetRemove(set.Get(), S("a").Get()));
    EXPECT_FALSE(ValSetRemove(set.Get(), S("a").Get()));
    EXPECT_FALSE(ValSetContains(set.Get(), S("a").Get()));
    EXPECT_EQ(ValSetGetCount(set.Get()), 0u);
}

TEST(Set, EnumeratesInTheOrderOfFirstInsertion) {
    auto set = Make(&kValRawCallbacks);
    for (uintptr_t i : {30u, 10u, 20u, 10u, 0u}) ValSetAdd(set.Get(), Raw(i));
    EXPECT_THAT(RawMembers(set), ElementsAre(30, 10, 20, 0));
    ValSetRemove(set.Get(), Raw(30));
    ValSetAdd(set.Get(), Raw(30));
    EXPECT_THAT(RawMembers(set), ElementsAre(10, 20, 0, 30));
    auto copy = Adopt(ValSetCreateMutableCopy(set.Get()));
    EXPECT_THAT(RawMembers(copy), ElementsAre(10, 20, 0, 30));
}

TEST(Set, KeepsItsOrderThroughCompaction) {
    auto set = Make(&kValRawCallbacks);
    std::vector<uintptr_t> expected;
    for (uintptr_t i = 0; i < 5000; ++i) {
        ASSERT_TRUE(ValSetAdd(set.Get(), Raw(i)));
        if (i < 20) continue;
        ASSERT_TRUE(ValSetRemove(set.Get(), Raw(i - 20))); // a window of 20 moves on
    }
    for (uintptr_t i = 4980; i < 5000; ++i) expected.push_back(i);
    EXPECT_EQ(RawMembers(set), expected);
}

TEST(Set, LetsMembersGoDuringAWalk) {
    auto set = Make(&kValRawCallbacks);
    for (uintptr_t i = 0; i < 100; ++i) ValSetAdd(set.Get(), Raw(i));
    size_t cursor = 0;
    size_t seen = 0;
    for (const void *member; ValSetNext(set.Get(), &cursor, &member); ++seen)
        ValSetRemove(set.Get(), member);
    EXPECT_EQ(seen, 100u);
    EXPECT_EQ(ValSetGetCount(set.Get()), 0u);
}

TEST(LargeSet, Holds100000Members) {
    auto set = Make(&kValRawCallbacks);
    for (uintptr_t i = 0; i < 100'000; ++i)
        ASSERT_TRUE(ValSetAdd(set.Get(), Raw(i * 4096))); // as addresses are
    EXPECT_EQ(ValSetGetCount(set.Get()), 100'000u);
    for (uintptr_t i = 0; i < 100'000; ++i) ASSERT_TRUE(ValSetContains(set.Get(), Raw(i * 4096)));
    EXPECT_FALSE(ValSetContains(set.Get(), Raw(100'000 * 4096)));
    ValSetRemoveAll(set.Get());
    EXPECT_EQ(ValSetGetCount(set.Get()), 0u);
    EXPECT_FALSE(ValSetContains(set.Get(), Raw(0)));
    EXPECT_TRUE(ValSetAdd(set.Get(), Raw(1)));
}

TEST(SetEquality, DoesNotDependOnTheOrder) {
    auto a = Make();
    auto b = Make(nullptr, 50);
    for (int i = 0; i < 30; ++i) ValSetAdd(a.Get(), N(i).Get());
    for (int i = 29; i >= 0; --i) ValSetAdd(b.Get(), F(i).Get());
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
    ValSetRemove(b.Get(), N(0).Get());
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    ValSetAdd(b.Get(), N(30).Get());
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    EXPECT_NE(ValHash(a.Get()), ValHash(b.Get()));
}

TEST(SetEquality, NeedsTheSameCallbacks) {
    EXPECT_FALSE(ValEqual(Make().Get(), Make(&kValRawCallbacks).Get()));
    EXPECT_TRUE(ValEqual(Make().Get(), Adopt(ValSetCreate(nullptr, 0)).Get()));
}

TEST(SetOfContainers, FindsThemByTheirMembers) {
    auto set = Make();
    ValSetAdd(set.Get(), A({N(1).Get(), A({N(2).Get()}).Get()}).Get());
    EXPECT_TRUE(ValSetContains(set.Get(), A({F(1).Get(), A({F(2).Get()}).Get()}).Get()));
    EXPECT_FALSE(ValSetContains(set.Get(), A({F(1).Get(), A({F(3).Get()}).Get()}).Get()));
}

TEST(CaseInsensitiveSet, HoldsNamesOnceWhateverTheirCase) {
    auto set = Make(&kValCaseInsensitiveStringCallbacks);
    for (auto name : {"Arial", "ARIAL", "arial", "Ariel"}) ValSetAdd(set.Get(), S(name).Get());
    EXPECT_EQ(ValSetGetCount(set.Get()), 2u);
    const void *member = nullptr;
    ASSERT_TRUE(ValSetGetMemberIfPresent(set.Get(), S("aRIAL").Get(), &member));
    EXPECT_EQ(TextOf(static_cast<const ValString *>(member)), "Arial");
}

} // namespace
} // namespace vellum
