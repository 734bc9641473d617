// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace vellum {
namespace {

std::string Describe(const void *value) {
    return TextOf(Adopt(ValCopyDescription(value)));
}

TEST(Description, OfSimpleValuesIsShort) {
    EXPECT_EQ(Describe(nullptr), "null");
    EXPECT_EQ(Describe(S("Noto Sans").Get()), "\"Noto Sans\"");
    EXPECT_EQ(Describe(N(-5).Get()), "-5");
    EXPECT_EQ(Describe(F(12.5).Get()), "12.5");
    EXPECT_EQ(Describe(F(0.1).Get()), "0.1");
    EXPECT_EQ(Describe(Adopt(ValNumberCreateFloat32(0.1f)).Get()), "0.1");
    EXPECT_EQ(Describe(F(std::numeric_limits<double>::infinity()).Get()), "inf");
    EXPECT_EQ(Describe(kValBooleanTrue), "true");
    EXPECT_EQ(Describe(kValBooleanFalse), "false");
    EXPECT_EQ(Describe(U("b", U("file:///a/")).Get()), "<file:///a/b>");
    EXPECT_EQ(Describe(Adopt(ValDataCreate("\x01\xAB", 2)).Get()), "<2 bytes: 01ab>");
    EXPECT_EQ(Describe(Adopt(ValDataCreate("", 0)).Get()), "<0 bytes>");
    auto uuid = Adopt(ValUUIDCreateWithString(S("01234567-89ab-cdef-0123-456789abcdef").Get()));
    EXPECT_EQ(Describe(uuid.Get()), "<01234567-89AB-CDEF-0123-456789ABCDEF>");
    EXPECT_EQ(Describe(MutableSetOf({{0x41, 0x5A}, {0x1F600, 0x1F600}}).Get()),
              "<27 characters: 41-5a 1f600>");
    EXPECT_EQ(Describe(MutableSetOf({}).Get()), "<0 characters:>");
}

TEST(Description, OfContainersHasTheirMembers) {
    auto key = S("k");
    const void *items[] = {key.Get()};
    EXPECT_EQ(Describe(A({N(1).Get(), nullptr, A({}).Get()}).Get()), "[1, null, []]");
    EXPECT_EQ(Describe(Adopt(ValDictionaryCreate(items, items, 1)).Get()), "{\"k\": \"k\"}");
    EXPECT_EQ(Describe(Adopt(ValDictionaryCreate(nullptr, nullptr, 0)).Get()), "{:}");
    EXPECT_EQ(Describe(Adopt(ValSetCreate(items, 1)).Get()), "{\"k\"}");
}

TEST(Description, OfRawItemsIsTheirNumberOrWhatTheCallbackSays) {
    auto raw = Adopt(ValArrayCreateMutable(0, &kValRawCallbacks));
    ValArrayAppend(raw.Get(), Raw(255));
    EXPECT_EQ(Describe(raw.Get()), "[0xff]");
    const ValCallbacks named{nullptr, nullptr, nullptr, nullptr,
                             [](const void *) { return S("an item").Release(); }};
    auto own = Adopt(ValArrayCreateMutable(0, &named));
    ValArrayAppend(own.Get(), Raw(1));
    EXPECT_EQ(Describe(own.Get()), "[an item]");
}

TEST(Description, IsAlwaysText) {
    EXPECT_EQ(Describe(Name("a\xFF").Get()), "\"a\\x{ff}\"");
    EXPECT_EQ(Describe(Utf16({0xD800}).Get()), "\"\\u{d800}\"");
    EXPECT_EQ(Describe(S("a\nb").Get()), "\"a\\u{a}b\"");
}

TEST(Description, IsBounded) {
    EXPECT_LT(Describe(S(std::string(100'000, 'a')).Get()).size(), 300u);
    EXPECT_LT(Describe(Adopt(ValDataCreate(std::string(1000, 'a').data(), 1000)).Get()).size(), 100u);
    Ref<const void> wide = S(std::string(1000, 'x'));
    for (int level = 0; level < 10; ++level) {
        auto array = Adopt(ValArrayCreateMutable(0, nullptr));
        for (int i = 0; i < 1000; ++i) ValArrayAppend(array.Get(), wide.Get());
        wide = array;
    }
    EXPECT_LT(Describe(wide.Get()).size(), 10'000u);
    Ranges many;
    for (uint32_t i = 0; i < 1000; ++i) many.emplace_back(i * 3, i * 3);
    EXPECT_LT(Describe(MutableSetOf(many).Get()).size(), 200u);
}

} // namespace
} // namespace vellum
