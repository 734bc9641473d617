// SPDX-License-Identifier: MIT
#include "platform/val/object.hpp"
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

// A kind outside of the public ones, which counts its deaths.
struct Probe : ValObject {
    Probe(const ValKind &probe_kind, int *counter) : ValObject(probe_kind), deaths(counter) {}
    int *deaths;
};

void CountDeath(ValObject *object) {
    ++*static_cast<Probe *>(object)->deaths;
}
const ValString *DescribeProbe(const ValObject *) {
    return S("a probe").Release();
}

constexpr ValKind kPlainKind{kValTypeOther, "Plain", CountDeath, nullptr, nullptr, nullptr};
constexpr ValKind kTalkingKind{kValTypeOther, "Talking", CountDeath, nullptr, nullptr, DescribeProbe};

class Object : public ::testing::Test {
protected:
    Ref<Probe> Make(const ValKind &kind = kPlainKind) {
        return Adopt(AllocateObject<Probe>(0, kind, &deaths_));
    }

    int deaths_ = 0;
};

TEST_F(Object, DiesWithItsLastReference) {
    auto probe = Make();
    auto second = probe;
    probe = nullptr;
    EXPECT_EQ(deaths_, 0);
    second = nullptr;
    EXPECT_EQ(deaths_, 1);
}

TEST_F(Object, IsGivenBackByRetain) {
    auto probe = Make();
    EXPECT_EQ(ValRetain(probe.Get()), probe.Get());
    ValRelease(probe.Get());
    EXPECT_EQ(deaths_, 0);
}

TEST(NullValue, IsAcceptedEverywhere) {
    EXPECT_EQ(ValRetain(nullptr), nullptr);
    ValRelease(nullptr);
    EXPECT_EQ(ValGetType(nullptr), ValType{kValTypeNone});
    EXPECT_EQ(ValHash(nullptr), 0u);
    EXPECT_EQ(TextOf(Adopt(ValCopyDescription(nullptr))), "null");
}

TEST(NullValue, EqualsOnlyNull) {
    EXPECT_TRUE(ValEqual(nullptr, nullptr));
    EXPECT_FALSE(ValEqual(nullptr, S("").Get()));
    EXPECT_FALSE(ValEqual(S("").Get(), nullptr));
}

TEST_F(Object, OfAKindWithoutRulesEqualsOnlyItself) {
    auto a = Make();
    auto b = Make();
    EXPECT_TRUE(ValEqual(a.Get(), a.Get()));
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(a.Get()));
    EXPECT_NE(ValHash(a.Get()), ValHash(b.Get()));
}

TEST_F(Object, LivesInContainersLikeAnyValue) {
    auto probe = Make();
    const Probe *borrowed = probe.Get();
    auto array = A({borrowed});
    probe = nullptr;
    EXPECT_EQ(deaths_, 0);
    EXPECT_TRUE(ValArrayContains(array.Get(), borrowed));
    array = nullptr;
    EXPECT_EQ(deaths_, 1);
}

TEST_F(Object, DescribesItselfOrIsDescribedByItsName) {
    EXPECT_EQ(TextOf(Adopt(ValCopyDescription(Make(kTalkingKind).Get()))), "a probe");
    EXPECT_TRUE(TextOf(Adopt(ValCopyDescription(Make().Get()))).starts_with("<Plain 0x"));
}

TEST(EveryKind, HasAStableNumber) {
    auto data = Adopt(ValDataCreate("", 0));
    auto uuid = Adopt(ValUUIDCreate());
    auto dictionary = Adopt(ValDictionaryCreate(nullptr, nullptr, 0));
    auto set = Adopt(ValSetCreate(nullptr, 0));
    auto characters = Adopt(ValCharacterSetCreateWithRange(1, 2));
    EXPECT_EQ(ValGetType(S("").Get()), 1u);
    EXPECT_EQ(ValGetType(N(1).Get()), 2u);
    EXPECT_EQ(ValGetType(kValBooleanTrue), 3u);
    EXPECT_EQ(ValGetType(data.Get()), 4u);
    EXPECT_EQ(ValGetType(uuid.Get()), 5u);
    EXPECT_EQ(ValGetType(U("file:///a").Get()), 6u);
    EXPECT_EQ(ValGetType(A({}).Get()), 7u);
    EXPECT_EQ(ValGetType(dictionary.Get()), 8u);
    EXPECT_EQ(ValGetType(set.Get()), 9u);
    EXPECT_EQ(ValGetType(characters.Get()), 10u);
}

TEST(EveryKind, EqualsNoOtherKind) {
    auto data = Adopt(ValDataCreate("1", 1));
    auto array = A({});
    auto dictionary = Adopt(ValDictionaryCreate(nullptr, nullptr, 0));
    auto set = Adopt(ValSetCreate(nullptr, 0));
    auto characters = Adopt(ValCharacterSetCreateMutable());
    auto string = S("1");
    auto number = N(1);
    auto url = U("file:///1");
    const std::vector<const void *> all = {string.Get(), number.Get(),     kValBooleanTrue,
                                           data.Get(),   url.Get(),        array.Get(),
                                           set.Get(),    dictionary.Get(), characters.Get()};
    for (const void *a : all) {
        for (const void *b : all) EXPECT_EQ(ValEqual(a, b), a == b);
    }
}

TEST_F(Object, ThatIsDyingCannotBeRetained) {
    auto probe = Make();
    EXPECT_TRUE(TryRetain(probe.Get()));
    EXPECT_EQ(probe.Get()->references.load(), 2u);
    ValRelease(probe.Get());

    probe.Get()->references.store(0); // as a table sees it while the last releaser is on its way
    EXPECT_FALSE(TryRetain(probe.Get()));
    EXPECT_EQ(probe.Get()->references.load(), 0u);
    probe.Get()->references.store(1);
}

TEST(ImmortalObject, IsNeverCounted) {
    const uint32_t count =
        static_cast<const ValObject *>(static_cast<const void *>(kValBooleanTrue))->references;
    for (int i = 0; i < 3; ++i) ValRelease(kValBooleanTrue);
    ValRetain(kValBooleanTrue);
    EXPECT_TRUE(TryRetain(AsObject(kValBooleanTrue)));
    EXPECT_EQ(AsObject(kValBooleanTrue)->references.load(), count);
    EXPECT_EQ(count, ValObject::kImmortal);
}

TEST_F(Object, AtTheBottomOfDeepNestingDiesWithTheTop) {
    constexpr int kLevels = 100'000;
    Ref<const void> value = Make();
    for (int i = 0; i < kLevels; ++i) value = A({value.Get()});
    value = nullptr;
    EXPECT_EQ(deaths_, 1);
}

TEST_F(Object, AtTheBottomOfEveryKindOfNestingDiesWithTheTop) {
    constexpr int kLevels = 100'000;
    auto key = S("key");
    const void *keys[] = {key.Get()};
    Ref<const void> value = Make();
    for (int i = 0; i < kLevels; ++i) {
        const void *items[] = {value.Get()};
        if (i % 3 == 0) value = Adopt(ValArrayCreate(items, 1));
        if (i % 3 == 1) value = Adopt(ValDictionaryCreate(keys, items, 1));
        if (i % 3 == 2) value = Adopt(ValSetCreate(items, 1));
    }
    value = nullptr;
    EXPECT_EQ(deaths_, 1);
}

TEST_F(Object, InABroadAndDeepTreeDiesOnce) {
    Ref<const void> value = A({});
    for (int i = 0; i < 300; ++i) {
        auto probe = Make();
        value = A({probe.Get(), value.Get(), Make().Get()});
    }
    EXPECT_EQ(deaths_, 0);
    value = nullptr;
    EXPECT_EQ(deaths_, 600);
}

TEST(DeepNesting, IsHashedDescribedAndComparedWithinBounds) {
    Ref<const void> a = A({});
    Ref<const void> b = A({});
    for (int i = 0; i < 100'000; ++i) {
        a = A({a.Get()});
        b = A({b.Get()});
    }
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    EXPECT_TRUE(ValEqual(a.Get(), a.Get()));
    EXPECT_LT(TextOf(Adopt(ValCopyDescription(a.Get()))).size(), 100u);
}

TEST(Nesting, IsComparedTo1000Levels) {
    Ref<const void> a = A({});
    Ref<const void> b = A({});
    for (int i = 1; i < 1000; ++i) {
        a = A({a.Get()});
        b = A({b.Get()});
    }
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()));
    a = A({a.Get()});
    b = A({b.Get()});
    EXPECT_FALSE(ValEqual(a.Get(), b.Get()));
    EXPECT_TRUE(ValEqual(A({}).Get(), A({}).Get())); // the depth is counted anew
}

} // namespace
} // namespace vellum
