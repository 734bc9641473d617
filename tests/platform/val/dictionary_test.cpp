// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gmock/gmock.h>

#include <map>
#include <random>

namespace vellum {
namespace {

using ::testing::ElementsAre;
using DictionaryRef = Ref<ValDictionary>;

DictionaryRef Make(const ValCallbacks *keys = nullptr, const ValCallbacks *values = nullptr,
                   size_t capacity = 0) {
    return Adopt(ValDictionaryCreateMutable(capacity, keys, values));
}

DictionaryRef MakeRaw(size_t capacity = 0) {
    return Make(&kValRawCallbacks, &kValRawCallbacks, capacity);
}

uintptr_t Number(const void *item) {
    return reinterpret_cast<uintptr_t>(item);
}

std::vector<uintptr_t> RawKeys(const DictionaryRef &dictionary) {
    std::vector<uintptr_t> keys;
    size_t cursor = 0;
    const void *key;
    while (ValDictionaryNext(dictionary.Get(), &cursor, &key, nullptr)) keys.push_back(Number(key));
    return keys;
}

TEST(Dictionary, GivesTheValueOfAnEqualKey) {
    auto a = S("a");
    auto b = S("b");
    const void *keys[] = {a.Get(), b.Get()};
    const void *values[] = {kValBooleanTrue, kValBooleanFalse};
    auto dictionary = Adopt(ValDictionaryCreate(keys, values, 2));
    EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 2u);
    EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), S("a").Get()), kValBooleanTrue);
    EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), S("b").Get()), kValBooleanFalse);
    EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), S("c").Get()), nullptr);
    EXPECT_TRUE(ValDictionaryContainsKey(dictionary.Get(), S("a").Get()));
    EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), S("c").Get()));
}

TEST(Dictionary, TellsPresentFromAbsent) {
    auto dictionary = MakeRaw();
    ValDictionarySetValue(dictionary.Get(), Raw(1), nullptr);
    const void *value = Raw(9);
    EXPECT_TRUE(ValDictionaryGetValueIfPresent(dictionary.Get(), Raw(1), &value));
    EXPECT_EQ(value, nullptr);
    value = Raw(9);
    EXPECT_FALSE(ValDictionaryGetValueIfPresent(dictionary.Get(), Raw(2), &value));
    EXPECT_EQ(value, Raw(9));
    EXPECT_TRUE(ValDictionaryGetValueIfPresent(dictionary.Get(), Raw(1), nullptr));
}

TEST(Dictionary, OfNullIsEmpty) {
    EXPECT_EQ(ValDictionaryGetCount(Adopt(ValDictionaryCreate(nullptr, nullptr, 0)).Get()), 0u);
    const void *items[] = {kValBooleanTrue};
    EXPECT_EQ(ValDictionaryCreate(nullptr, items, 1), nullptr);
    EXPECT_EQ(ValDictionaryCreate(items, nullptr, 1), nullptr);
    EXPECT_EQ(ValDictionaryGetCount(nullptr), 0u);
    EXPECT_EQ(ValDictionaryGetValue(nullptr, kValBooleanTrue), nullptr);
    EXPECT_FALSE(ValDictionaryContainsKey(nullptr, kValBooleanTrue));
    EXPECT_FALSE(ValDictionaryGetValueIfPresent(nullptr, kValBooleanTrue, nullptr));
    EXPECT_FALSE(ValDictionarySetValue(nullptr, kValBooleanTrue, kValBooleanTrue));
    EXPECT_FALSE(ValDictionaryRemoveValue(nullptr, kValBooleanTrue));
    EXPECT_EQ(ValDictionaryCreateMutableCopy(nullptr), nullptr);
    ValDictionaryRemoveAll(nullptr);
    size_t cursor = 0;
    EXPECT_FALSE(ValDictionaryNext(nullptr, &cursor, nullptr, nullptr));
    EXPECT_FALSE(ValDictionaryNext(MakeRaw().Get(), nullptr, nullptr, nullptr));
}

TEST(Dictionary, RefusesNullUnderValueCallbacks) {
    auto dictionary = Make();
    EXPECT_FALSE(ValDictionarySetValue(dictionary.Get(), nullptr, kValBooleanTrue));
    EXPECT_FALSE(ValDictionarySetValue(dictionary.Get(), kValBooleanTrue, nullptr));
    EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), nullptr));
    EXPECT_FALSE(ValDictionaryRemoveValue(dictionary.Get(), nullptr));
    const void *items[] = {kValBooleanTrue};
    const void *nothing[] = {nullptr};
    EXPECT_EQ(ValDictionaryCreate(nothing, items, 1), nullptr);
    EXPECT_EQ(ValDictionaryCreate(items, nothing, 1), nullptr);
    EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 0u);
}

TEST(RawDictionary, HasAKeyZero) {
    auto dictionary = MakeRaw();
    EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), nullptr));
    EXPECT_TRUE(ValDictionarySetValue(dictionary.Get(), nullptr, Raw(5)));
    EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), nullptr), Raw(5));
    EXPECT_TRUE(ValDictionaryRemoveValue(dictionary.Get(), nullptr));
    EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), nullptr));
}

TEST(Dictionary, KeepsTheFirstKeyAndTheLastValue) {
    auto first = S("a");
    auto second = Name("a");
    const void *keys[] = {first.Get(), second.Get()};
    const void *values[] = {kValBooleanTrue, kValBooleanFalse};
    auto dictionary = Adopt(ValDictionaryCreate(keys, values, 2));
    size_t cursor = 0;
    const void *key;
    const void *value;
    ASSERT_TRUE(ValDictionaryNext(dictionary.Get(), &cursor, &key, &value));
    EXPECT_EQ(key, first.Get());
    EXPECT_EQ(value, kValBooleanFalse);
    EXPECT_FALSE(ValDictionaryNext(dictionary.Get(), &cursor, &key, &value));
    EXPECT_EQ(key, first.Get()); // as it was
}

TEST(Dictionary, EnumeratesInTheOrderOfFirstInsertion) {
    auto dictionary = MakeRaw();
    for (uintptr_t key : {5u, 3u, 9u, 1u}) ValDictionarySetValue(dictionary.Get(), Raw(key), Raw(0));
    ValDictionarySetValue(dictionary.Get(), Raw(3), Raw(7)); // replaced: stays
    EXPECT_THAT(RawKeys(dictionary), ElementsAre(5, 3, 9, 1));
    ValDictionaryRemoveValue(dictionary.Get(), Raw(3));
    ValDictionarySetValue(dictionary.Get(), Raw(3), Raw(7)); // removed and added again: moves
    EXPECT_THAT(RawKeys(dictionary), ElementsAre(5, 9, 1, 3));
}

TEST(Dictionary, CanBeEmptiedAndFilledAgain) {
    for (uintptr_t count : {3u, 100u}) {
        auto dictionary = MakeRaw();
        for (uintptr_t i = 0; i < count; ++i) ValDictionarySetValue(dictionary.Get(), Raw(i), Raw(i));
        ValDictionaryRemoveAll(dictionary.Get());
        EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 0u);
        EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), Raw(1)));
        ValDictionarySetValue(dictionary.Get(), Raw(2), Raw(8));
        EXPECT_THAT(RawKeys(dictionary), ElementsAre(2));
    }
}

TEST(Dictionary, LetsEntriesGoDuringAWalk) {
    auto dictionary = MakeRaw();
    for (uintptr_t i = 0; i < 100; ++i) ValDictionarySetValue(dictionary.Get(), Raw(i), Raw(i));
    size_t cursor = 0;
    size_t seen = 0;
    for (const void *key; ValDictionaryNext(dictionary.Get(), &cursor, &key, nullptr); ++seen) {
        if (Number(key) % 2) ValDictionaryRemoveValue(dictionary.Get(), key);
        ValDictionaryRemoveValue(dictionary.Get(), Raw(99));
    }
    EXPECT_EQ(seen, 99u);
    EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 50u);
}

// A map that remembers the order in which its keys were first added.
class Model {
public:
    void Set(uintptr_t key, uintptr_t value) {
        if (!values_.contains(key)) order_.push_back(key);
        values_[key] = value;
    }
    bool Remove(uintptr_t key) {
        if (!values_.erase(key)) return false;
        std::erase(order_, key);
        return true;
    }
    void Check(const DictionaryRef &dictionary) const {
        ASSERT_EQ(RawKeys(dictionary), order_);
        ASSERT_EQ(ValDictionaryGetCount(dictionary.Get()), order_.size());
        for (auto [key, value] : values_)
            ASSERT_EQ(ValDictionaryGetValue(dictionary.Get(), Raw(key)), Raw(value));
    }

private:
    std::map<uintptr_t, uintptr_t> values_;
    std::vector<uintptr_t> order_;
};

class DictionaryOfCapacity : public ::testing::TestWithParam<size_t> {};

TEST_P(DictionaryOfCapacity, DoesAsAnOrderedMapDoesThroughGrowthAndCompaction) {
    std::mt19937 random(7);
    for (uint32_t key_range : {4u, 12u, 40u, 400u}) {
        auto dictionary = MakeRaw(GetParam());
        Model model;
        for (int step = 0; step < 3000; ++step) {
            const uintptr_t key = random() % key_range;
            if (random() % 5 < 3) {
                const uintptr_t value = random();
                model.Set(key, value);
                ASSERT_TRUE(ValDictionarySetValue(dictionary.Get(), Raw(key), Raw(value)));
            } else {
                ASSERT_EQ(ValDictionaryRemoveValue(dictionary.Get(), Raw(key)), model.Remove(key));
            }
            if (step % 50 == 0) model.Check(dictionary);
        }
        model.Check(dictionary);
    }
}

INSTANTIATE_TEST_SUITE_P(Capacities, DictionaryOfCapacity, ::testing::Values(0, 1, 7, 8, 9, 16, 1000));

TEST(LargeDictionary, Holds100000Entries) {
    auto dictionary = Make();
    for (int i = 0; i < 100'000; ++i) {
        ASSERT_TRUE(
            ValDictionarySetValue(dictionary.Get(), S("key " + std::to_string(i)).Get(), N(i).Get()));
    }
    EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 100'000u);
    for (int i = 0; i < 100'000; i += 997) {
        auto key = S("key " + std::to_string(i));
        EXPECT_TRUE(ValEqual(ValDictionaryGetValue(dictionary.Get(), key.Get()), N(i).Get()));
    }
    auto copy = Adopt(ValDictionaryCreateMutableCopy(dictionary.Get()));
    EXPECT_TRUE(ValEqual(copy.Get(), dictionary.Get()));
    for (int i = 0; i < 100'000; ++i) {
        if (i % 100) ValDictionaryRemoveValue(copy.Get(), S("key " + std::to_string(i)).Get());
    }
    EXPECT_EQ(ValDictionaryGetCount(copy.Get()), 1000u);
    EXPECT_TRUE(ValDictionaryContainsKey(copy.Get(), S("key 99900").Get()));
    EXPECT_FALSE(ValDictionaryContainsKey(copy.Get(), S("key 99901").Get()));
}

TEST(DictionaryWithOddCallbacks, AlwaysAnswers) {
    // All hashes alike; nothing equal, not even to itself, unless it is the same item.
    const ValCallbacks alike{nullptr, nullptr, [](const void *, const void *) { return false; },
                             [](const void *) { return uint64_t{1}; }, nullptr};
    auto dictionary = Make(&alike, &kValRawCallbacks);
    for (uintptr_t i = 0; i < 500; ++i)
        ASSERT_TRUE(ValDictionarySetValue(dictionary.Get(), Raw(i), Raw(i + 1)));
    for (uintptr_t i = 0; i < 500; ++i)
        EXPECT_EQ(ValDictionaryGetValue(dictionary.Get(), Raw(i)), Raw(i + 1));
    EXPECT_FALSE(ValDictionaryContainsKey(dictionary.Get(), Raw(500)));

    // Everything equal.
    const ValCallbacks same{nullptr, nullptr, [](const void *, const void *) { return true; },
                            [](const void *) { return uint64_t{1}; }, nullptr};
    auto one = Make(&same, &kValRawCallbacks);
    for (uintptr_t i = 0; i < 100; ++i) ValDictionarySetValue(one.Get(), Raw(i), Raw(i));
    EXPECT_EQ(ValDictionaryGetCount(one.Get()), 1u);

    // Hashes that change from call to call.
    static uint64_t sHash;
    sHash = 0;
    const ValCallbacks wild{nullptr, nullptr, nullptr, [](const void *) { return ++sHash; }, nullptr};
    auto lost = Make(&wild, &kValRawCallbacks);
    for (uintptr_t i = 0; i < 1000; ++i)
        ASSERT_TRUE(ValDictionarySetValue(lost.Get(), Raw(i % 10), Raw(i)));
    EXPECT_LE(ValDictionaryGetCount(lost.Get()), 1000u);
}

TEST(DictionaryEquality, DoesNotDependOnTheOrder) {
    auto a = Make();
    auto b = Make(nullptr, nullptr, 100);
    for (int i = 0; i < 20; ++i) ValDictionarySetValue(a.Get(), N(i).Get(), N(i * 2).Get());
    for (int i = 19; i >= 0; --i) ValDictionarySetValue(b.Get(), F(i).Get(), F(i * 2).Get());
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
    ValDictionarySetValue(b.Get(), N(7).Get(), N(0).Get());
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    EXPECT_NE(ValHash(a.Get()), ValHash(b.Get()));
    ValDictionaryRemoveValue(b.Get(), N(7).Get());
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
}

TEST(DictionaryEquality, ComparesValuesOfAnyKind) {
    auto a = Make();
    auto b = Make();
    ValDictionarySetValue(a.Get(), S("k").Get(), A({N(1).Get()}).Get());
    ValDictionarySetValue(b.Get(), S("k").Get(), A({F(1).Get()}).Get());
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
}

TEST(DictionaryEquality, NeedsTheSameCallbacks) {
    auto values = Make();
    EXPECT_FALSE(ValEqual(values.Get(), MakeRaw().Get()));
    EXPECT_FALSE(ValEqual(values.Get(), Make(nullptr, &kValRawCallbacks).Get()));
    EXPECT_FALSE(ValEqual(values.Get(), Make(&kValCaseInsensitiveStringCallbacks).Get()));
    EXPECT_TRUE(ValEqual(values.Get(), Make(&kValValueCallbacks).Get()));
}

TEST(DictionaryHash, OfLargeOnesAgreesWithEquality) {
    auto a = Make();
    auto b = Make();
    for (int i = 0; i < 1000; ++i) ValDictionarySetValue(a.Get(), N(i).Get(), N(i).Get());
    for (int i = 999; i >= 0; --i) ValDictionarySetValue(b.Get(), N(i).Get(), N(i).Get());
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
}

TEST(CaseInsensitiveDictionary, FindsKeysWhateverTheirCase) {
    auto dictionary = Make(&kValCaseInsensitiveStringCallbacks);
    ValDictionarySetValue(dictionary.Get(), S("Straße").Get(), N(1).Get());
    ValDictionarySetValue(dictionary.Get(), S("İ").Get(), N(2).Get());
    ValDictionarySetValue(dictionary.Get(), S("ΣΑΣ").Get(), N(3).Get());
    auto find = [&](std::string_view key) {
        return ValNumberGetSInt32(
            static_cast<const ValNumber *>(ValDictionaryGetValue(dictionary.Get(), S(key).Get())));
    };
    EXPECT_EQ(find("STRAẞE"), 1);
    EXPECT_EQ(find("strasse"), 0);
    EXPECT_EQ(find("i\u0307"), 2);
    EXPECT_EQ(find("i"), 0);
    EXPECT_EQ(find("σασ"), 3);
    ValDictionarySetValue(dictionary.Get(), S("σασ").Get(), N(4).Get());
    EXPECT_EQ(ValDictionaryGetCount(dictionary.Get()), 3u);
    EXPECT_EQ(find("ΣΑΣ"), 4);
}

const void *CountUp(const void *item) {
    ++*static_cast<int *>(const_cast<void *>(item));
    return item;
}
void CountDown(const void *item) {
    --*static_cast<int *>(const_cast<void *>(item));
}

TEST(DictionaryWithOwnCallbacks, BalancesEveryRetain) {
    std::vector<int> held(100);
    {
        auto dictionary = [] {
            const ValCallbacks callbacks{CountUp, CountDown, nullptr, nullptr, nullptr};
            return Make(&callbacks, &callbacks, 3);
        }();
        for (int &item : held) ValDictionarySetValue(dictionary.Get(), &item, &item);
        EXPECT_EQ(held[50], 2);
        ValDictionarySetValue(dictionary.Get(), &held[50], &held[51]);
        EXPECT_EQ(held[50], 1);
        EXPECT_EQ(held[51], 3);
        auto copy = Adopt(ValDictionaryCreateMutableCopy(dictionary.Get()));
        EXPECT_EQ(held[51], 6);
        ValDictionaryRemoveValue(copy.Get(), &held[51]);
        EXPECT_EQ(held[51], 4);
        ValDictionaryRemoveAll(copy.Get());
        EXPECT_EQ(held[51], 3);
    }
    for (int item : held) EXPECT_EQ(item, 0);
}

TEST(Dictionary, RefusesACapacityThatNoMemoryHas) {
    EXPECT_EQ(ValDictionaryCreateMutable(SIZE_MAX, nullptr, nullptr), nullptr);
    EXPECT_EQ(ValDictionaryCreateMutable((size_t{1} << 30) + 1, nullptr, nullptr), nullptr);
}

} // namespace
} // namespace vellum
