// SPDX-License-Identifier: MIT
#include "platform/app/property_list.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

Ref<const void> Read(const std::string &xml) {
    return ReadPropertyList(xml.data(), xml.size());
}

Ref<const void> ReadValue(const std::string &xml) {
    return Read("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vlist version=\"1.0\">" + xml + "</vlist>\n");
}

std::string Repeat(const std::string &text, size_t times) {
    std::string repeated;
    for (size_t i = 0; i < times; ++i) repeated += text;
    return repeated;
}

Ref<const void> Integer(int64_t value) {
    return Adopt(ValNumberCreateSInt64(value));
}
Ref<const void> Data(std::string_view bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

TEST(PropertyList, ReadsStringsAsTheyStand) {
    EXPECT_EQ(TextOf(ReadValue("<string>Foo</string>")), "Foo");
    EXPECT_EQ(TextOf(ReadValue("<string></string>")), "");
    EXPECT_EQ(TextOf(ReadValue("<string/>")), "");
    EXPECT_EQ(TextOf(ReadValue("<string>  two\n lines </string>")), "  two\n lines ");
    EXPECT_EQ(TextOf(ReadValue("<string>é &amp; &lt;&#x1F600;&gt; <![CDATA[<b>]]></string>")),
              "é & <😀> <b>");
}

TEST(PropertyList, ReadsNumbers) {
    EXPECT_TRUE(ValEqual(ReadValue("<integer>-12</integer>").Get(), Integer(-12).Get()));
    EXPECT_TRUE(
        ValEqual(ReadValue("<integer> +9223372036854775807 </integer>").Get(), Integer(INT64_MAX).Get()));
    const auto real = ReadValue("<real>-0.5e1</real>");
    EXPECT_EQ(ValNumberGetNumberType(static_cast<const ValNumber *>(real.Get())),
              ValNumberType{kValNumberTypeFloat64});
    EXPECT_EQ(ValNumberGetFloat64(static_cast<const ValNumber *>(real.Get())), -5);
}

TEST(PropertyList, ReadsBooleans) {
    EXPECT_EQ(ReadValue("<true/>").Get(), kValBooleanTrue);
    EXPECT_EQ(ReadValue("<false> </false>").Get(), kValBooleanFalse);
}

TEST(PropertyList, ReadsData) {
    EXPECT_TRUE(ValEqual(ReadValue("<data>SGVs\n  bG8=</data>").Get(), Data("Hello").Get()));
    EXPECT_TRUE(
        ValEqual(ReadValue("<data>/+8A</data>").Get(), Data(std::string_view("\xFF\xEF\0", 3)).Get()));
    EXPECT_TRUE(ValEqual(ReadValue("<data>SA==</data>").Get(), Data("H").Get()));
    EXPECT_TRUE(ValEqual(ReadValue("<data></data>").Get(), Data("").Get()));
}

TEST(PropertyList, ReadsArraysAndDictionaries) {
    const auto value =
        ReadValue("<dict> <key>a</key> <array> <integer>1</integer> <string>x</string> </array>\n"
                  "<!-- between --> <key>b</key> <dict/> </dict>");
    const auto *dictionary = static_cast<const ValDictionary *>(value.Get());
    ASSERT_EQ(ValDictionaryGetCount(dictionary), 2U);
    const auto *array = static_cast<const ValArray *>(ValDictionaryGetValue(dictionary, String("a").Get()));
    ASSERT_EQ(ValArrayGetCount(array), 2U);
    EXPECT_EQ(TextOf(ValArrayGetValue(array, 1)), "x");
    EXPECT_EQ(ValGetType(ValDictionaryGetValue(dictionary, String("b").Get())),
              ValType{kValTypeDictionary});
}

TEST(PropertyList, TakesTheLastValueOfEqualKeys) {
    const auto value = ReadValue("<dict><key>a</key><true/><key>a</key><false/></dict>");
    EXPECT_EQ(ValDictionaryGetValue(static_cast<const ValDictionary *>(value.Get()), String("a").Get()),
              kValBooleanFalse);
}

TEST(PropertyList, IsNoneWhenItsFormIsWrong) {
    for (const char *xml : {"",
                            "<true/><false/>",
                            "text",
                            "<other/>",
                            "<key>a</key>",
                            "<dict><key>a</key></dict>",
                            "<dict><true/></dict>",
                            "<dict><key>a</key><key>b</key></dict>",
                            "<dict><key>a</key><true/>x</dict>",
                            "<array><key>a</key></array>",
                            "<array>x</array>",
                            "<string><b/></string>",
                            "<true>x</true>",
                            "<integer></integer>",
                            "<integer>1x</integer>",
                            "<integer>0x10</integer>",
                            "<integer>9223372036854775808</integer>",
                            "<real>x</real>",
                            "<real>1,5</real>",
                            "<data>SGVsbG8</data>",
                            "<data>SG=s</data>",
                            "<data>S===</data>",
                            "<data>SGVs!G8=</data>",
                            "<vlist><true/></vlist>"}) {
        EXPECT_FALSE(ReadValue(xml)) << xml;
    }
    for (const char *xml : {"", " ", "<true/>", "<vlist><true/>", "<vlist><true/></vlist><vlist/>",
                            "not XML", "<vlist><string>\xFF</string></vlist>"}) {
        EXPECT_FALSE(Read(xml)) << xml;
    }
    EXPECT_FALSE(ReadPropertyList(nullptr, 0));
}

TEST(PropertyList, IsNoneWithADocumentTypeOrEntities) {
    EXPECT_FALSE(Read("<!DOCTYPE vlist><vlist><true/></vlist>"));
    EXPECT_FALSE(Read("<!DOCTYPE vlist [<!ENTITY a \"b\">]><vlist><string>&a;</string></vlist>"));
    EXPECT_FALSE(Read("<!DOCTYPE vlist SYSTEM \"file:///etc/passwd\"><vlist><true/></vlist>"));
    EXPECT_FALSE(ReadValue("<string>&unknown;</string>"));
}

TEST(PropertyList, IsNestedSixtyFourDeepAtTheMost) {
    EXPECT_TRUE(ReadValue(Repeat("<array>", 64) + "<true/>" + Repeat("</array>", 64)));
    EXPECT_FALSE(ReadValue(Repeat("<array>", 65) + "<true/>" + Repeat("</array>", 65)));
    EXPECT_FALSE(ReadValue(Repeat("<dict><key>a</key>", 100'000)));
}

TEST(PropertyList, IsSixteenMebibytesLongAtTheMost) {
    const std::string head = "<vlist><string>";
    const std::string tail = "</string></vlist>";
    const std::string text(kMaximumPropertyListSize - head.size() - tail.size(), 'x');
    EXPECT_TRUE(Read(head + text + tail));
    EXPECT_FALSE(Read(head + text + "x" + tail));
}

} // namespace
} // namespace vellum::test
