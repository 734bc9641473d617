// SPDX-License-Identifier: MIT
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"
#include "values/val_str.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <vector>

namespace vellum {
namespace {

using ::testing::ElementsAre;

const void *Raw(uintptr_t number) {
    return reinterpret_cast<const void *>(number);
}

TEST(Cast, GivesAValueOfTheKindOrNull) {
    const TValStr string("a");
    const void *value = string.Get();
    EXPECT_EQ(Cast<ValString>(value), value);
    EXPECT_EQ(Cast<const ValString>(value), value);
    EXPECT_EQ(Cast<ValNumber>(value), nullptr);
    EXPECT_EQ(Cast<ValString>(nullptr), nullptr);
    EXPECT_EQ(Cast<ValBoolean>(kValBooleanTrue), kValBooleanTrue);
}

TEST(TValArray, IsWalkedAndReadByKind) {
    TValMutableArray made;
    made.Append(TValStr("a").Get());
    made.Append(nullptr);
    made.Append(MakeNumber(3).Get());
    const TValArray array(made.Publish());
    EXPECT_EQ(array.Count(), 3u);
    EXPECT_EQ(TValStr(Retain(array.At<ValString>(0))).View(), "a");
    EXPECT_EQ(array.At<ValString>(1), nullptr);
    EXPECT_EQ(array.At<ValString>(2), nullptr);
    EXPECT_EQ(ValNumberGetSInt32(array.At<ValNumber>(2)), 3);
    EXPECT_EQ(array[3], nullptr);
    EXPECT_TRUE(array.Contains(TValStr("a").Get()));
    std::vector<const void *> seen(array.begin(), array.end());
    EXPECT_THAT(seen, ElementsAre(array[0], nullptr, array[2]));
}

TEST(TValArray, OfNothingIsEmpty) {
    const TValArray none;
    EXPECT_FALSE(none);
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_EQ(none.begin(), none.end());
    EXPECT_EQ(none, TValArray());
}

TEST(TValMutableArray, AppendsArraysAndFindsTheVeryObject) {
    const TValStr a("a");
    TValMutableArray first;
    first.Append(a.Get());
    TValMutableArray second;
    EXPECT_TRUE(second.IsEmpty());
    second.AppendArray(first.Get());
    second.AppendArray(nullptr);
    EXPECT_EQ(second.Count(), 1u);
    EXPECT_TRUE(second.ContainsIdentical(a.Get()));
    const TValStr equal(std::string("a"));
    EXPECT_FALSE(second.ContainsIdentical(equal.Get()));
    EXPECT_TRUE(second.Contains(equal.Get()));
}

TEST(MutableContainer, RefusesChangesOnceItIsPublished) {
    TValMutableArray array;
    EXPECT_TRUE(array.Publish());
    EXPECT_FALSE(array.Publish());
    EXPECT_THROW(array.Append(kValBooleanTrue), std::bad_alloc);
    TValMutableDict dictionary;
    EXPECT_TRUE(dictionary.Publish());
    EXPECT_THROW(dictionary.Set(kValBooleanTrue, kValBooleanTrue), std::bad_alloc);
    TValMutableSet set;
    EXPECT_TRUE(set.Publish());
    EXPECT_THROW(set.Add(kValBooleanTrue), std::bad_alloc);
}

TEST(TValDict, IsWalkedInOrderAndReadByKind) {
    TValMutableDict made;
    made.Set(TValStr("b").Get(), MakeNumber(2).Get());
    made.Set(TValStr("a").Get(), MakeNumber(1).Get());
    const TValDict dictionary(made.Publish());
    std::vector<int> values;
    for (auto [key, value] : dictionary) {
        EXPECT_NE(Cast<ValString>(key), nullptr);
        values.push_back(ReadSInt32(value));
    }
    EXPECT_THAT(values, ElementsAre(2, 1));
    EXPECT_EQ(ReadSInt32(dictionary.Get<ValNumber>(TValStr("a").Get())), 1);
    EXPECT_EQ(dictionary.Get<ValString>(TValStr("a").Get()), nullptr);
    EXPECT_EQ(dictionary[TValStr("c").Get()], nullptr);
    EXPECT_TRUE(dictionary.ContainsKey(TValStr("b").Get()));
}

TEST(TValMutableDict, SetsNothingForACountedNull) {
    TValMutableDict dictionary;
    dictionary.Set(TValStr("a").Get(), nullptr);
    dictionary.Set(nullptr, kValBooleanTrue);
    EXPECT_TRUE(dictionary.IsEmpty());
    TValMutableDict raw(kValRawCallbacks, kValRawCallbacks);
    raw.Set(nullptr, nullptr);
    EXPECT_EQ(raw.Count(), 1u);
    EXPECT_TRUE(raw.Remove(nullptr));
    EXPECT_FALSE(raw.Remove(nullptr));
}

TValDict Dict(std::initializer_list<std::pair<const char *, int>> entries) {
    TValMutableDict made;
    for (auto [key, value] : entries) made.Set(TValStr(key).Get(), MakeNumber(value).Get());
    return TValDict(made.Publish());
}

TEST(ContainsSubset, NeedsEveryKeyWithAnEqualValue) {
    const TValDict whole = Dict({{"a", 1}, {"b", 2}, {"c", 3}});
    EXPECT_TRUE(whole.ContainsSubset(Dict({{"c", 3}, {"a", 1}})));
    EXPECT_TRUE(whole.ContainsSubset(whole));
    EXPECT_TRUE(whole.ContainsSubset(Dict({})));
    EXPECT_FALSE(whole.ContainsSubset(Dict({{"a", 2}})));
    EXPECT_FALSE(whole.ContainsSubset(Dict({{"d", 1}})));
    EXPECT_FALSE(Dict({{"a", 1}}).ContainsSubset(whole));
}

TEST(ContainsSubset, OfNothingIsTrueAndInNothingIsFalse) {
    EXPECT_TRUE(Dict({}).ContainsSubset(TValDict()));
    EXPECT_FALSE(TValDict().ContainsSubset(Dict({})));
    EXPECT_FALSE(TValDict().ContainsSubset(TValDict()));
}

TEST(ContainsSubset, ComparesAsTheDictionaryDoes) {
    TValMutableDict folding(kValCaseInsensitiveStringCallbacks, kValCaseInsensitiveStringCallbacks);
    folding.Set(TValStr("Key").Get(), TValStr("Value").Get());
    TValMutableDict plain;
    plain.Set(TValStr("KEY").Get(), TValStr("VALUE").Get());
    EXPECT_TRUE(ContainsSubset(folding.Get(), plain.Get()));
    EXPECT_FALSE(ContainsSubset(plain.Get(), folding.Get()));
    TValMutableDict raw(kValRawCallbacks, kValRawCallbacks);
    raw.Set(Raw(1), Raw(2));
    EXPECT_TRUE(ContainsSubset(raw.Get(), raw.Get()));
}

TValSet Set(std::initializer_list<const char *> members) {
    TValMutableSet made;
    for (const char *member : members) made.Add(TValStr(member).Get());
    return TValSet(made.Publish());
}

TEST(TValSet, IsWalkedInOrder) {
    std::string seen;
    for (const void *member : Set({"b", "a", "b"})) seen += TValStr(Retain(Cast<ValString>(member))).View();
    EXPECT_EQ(seen, "ba");
    for (const void *member : TValSet()) FAIL() << member;
}

TEST(TValSet, IsASupersetOfASetWhoseMembersItHas) {
    EXPECT_TRUE(Set({"a", "b", "c"}).IsSuperSetOfSet(Set({"c", "a"})));
    EXPECT_TRUE(Set({"a"}).IsSuperSetOfSet(Set({})));
    EXPECT_FALSE(Set({"a", "b"}).IsSuperSetOfSet(Set({"c"})));
    EXPECT_FALSE(Set({"a"}).IsSuperSetOfSet(Set({"a", "b"})));
    EXPECT_TRUE(TValSet().IsSuperSetOfSet(TValSet()));
    EXPECT_FALSE(TValSet().IsSuperSetOfSet(Set({"a"})));
}

TEST(TValMutableSet, AddsNothingForACountedNull) {
    TValMutableSet set;
    set.Add(nullptr);
    EXPECT_TRUE(set.IsEmpty());
    TValMutableSet raw(kValRawCallbacks);
    raw.Add(nullptr);
    EXPECT_TRUE(raw.Contains(nullptr));
    EXPECT_EQ(raw.Count(), 1u);
    EXPECT_TRUE(raw.Remove(nullptr));
}

TEST(Reading, GivesTheNumberThatAValueStandsFor) {
    EXPECT_EQ(ReadSInt32(MakeNumber(7).Get()), 7);
    EXPECT_EQ(ReadSInt64(MakeNumber(int64_t{1} << 40).Get()), int64_t{1} << 40);
    EXPECT_EQ(ReadSInt32(MakeNumber((int64_t{1} << 40) + 5).Get()), 5);
    EXPECT_EQ(ReadFloat64(MakeNumber(2.5).Get()), 2.5);
    EXPECT_EQ(ReadSInt32(MakeNumber(2.5f).Get()), 2);
    EXPECT_EQ(ReadSInt32(kValBooleanTrue), 1);
    EXPECT_EQ(ReadSInt64(kValBooleanTrue), 1);
    EXPECT_EQ(ReadFloat64(kValBooleanTrue), 1.0);
    EXPECT_EQ(ReadSInt32(kValBooleanFalse), 0);
    EXPECT_EQ(ReadSInt32(nullptr), 0);
    EXPECT_EQ(ReadFloat64(TValStr("7").Get()), 0.0);
    EXPECT_EQ(TValNum(MakeNumber(9).Get()).SInt64(), 9);
    EXPECT_EQ(TValNum(nullptr).Float64(), 0.0);
    EXPECT_EQ(TValNum(kValBooleanTrue).SInt32(), 1);
}

TEST(MakeNumber, KeepsTheTypeOfItsArgument) {
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(int8_t{1}).Get()), ValNumberType{kValNumberTypeSInt8});
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(int16_t{1}).Get()), ValNumberType{kValNumberTypeSInt16});
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(int32_t{1}).Get()), ValNumberType{kValNumberTypeSInt32});
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(int64_t{1}).Get()), ValNumberType{kValNumberTypeSInt64});
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(1.0f).Get()), ValNumberType{kValNumberTypeFloat32});
    EXPECT_EQ(ValNumberGetNumberType(MakeNumber(1.0).Get()), ValNumberType{kValNumberTypeFloat64});
}

} // namespace
} // namespace vellum
