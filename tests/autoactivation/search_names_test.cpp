// SPDX-License-Identifier: MIT
// By which names of a request a font is sought, and in which words. The trace of a lookup tells.
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {
namespace {

class QueriedNames : public ::testing::Test {
protected:
    QueriedNames() {
        ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
        VLSetLookupTraceCallback(Hear, &query_);
    }
    ~QueriedNames() override { VLSetLookupTraceCallback(nullptr, nullptr); }

    using Entries = std::vector<std::pair<const ValString *, Ref<const void>>>;

    // The query for a request; "(not looked for)" when it was answered without.
    std::string QueryFor(const Entries &entries) {
        TValMutableDict request;
        for (const auto &[key, value] : entries) request.Set(key, value.Get());
        query_ = "(not looked for)";
        EXPECT_FALSE(Adopt(VLCopyFontWithProperties(request.Get(), kVLScopeProcess, 0)));
        return query_;
    }
    std::string QueryFor(const ValString *key, std::string_view text) {
        return QueryFor({{key, Text(text)}});
    }

    static Ref<const void> Text(std::string_view text) { return String(text); }

private:
    static void Hear(const ValDictionary *trace, void *context) {
        const auto *stages =
            static_cast<const ValArray *>(ValDictionaryGetValue(trace, String("stages").Get()));
        for (size_t i = 0; i < ValArrayGetCount(stages); ++i) {
            const auto *stage = static_cast<const ValDictionary *>(ValArrayGetValue(stages, i));
            if (TextOf(ValDictionaryGetValue(stage, String("stage").Get())) == "activation")
                *static_cast<std::string *>(context) =
                    TextOf(ValDictionaryGetValue(stage, String("search").Get()));
        }
    }

    std::string query_;
};

TEST_F(QueriedNames, AreTheFourOfAFontEachUnderItsAttribute) {
    EXPECT_EQ(QueryFor(kVLFontPropertyName, "Foo-Bold"),
              "com_orrery_fount_name_postscript == \"Foo-Bold\"");
    EXPECT_EQ(QueryFor(kVLFontPropertyFamilyName, "Foo"), "com_orrery_fount_name_family == \"Foo\"");
    EXPECT_EQ(QueryFor(kVLFontPropertySubfamilyName, "Bold"), "com_orrery_fount_name_style == \"Bold\"");
    EXPECT_EQ(QueryFor(kVLFontPropertyFullName, "Foo Bold"), "com_orrery_fount_name_full == \"Foo Bold\"");
}

TEST_F(QueriedNames, AreJoinedInOneOrder) {
    EXPECT_EQ(
        QueryFor({{kVLFontPropertyFullName, Text("Foo Bold")},
                  {kVLFontPropertySubfamilyName, Text("Bold")},
                  {kVLFontPropertyFamilyName, Text("Foo")},
                  {kVLFontPropertyName, Text("Foo-Bold")}}),
        "com_orrery_fount_name_postscript == \"Foo-Bold\" && com_orrery_fount_name_family == \"Foo\" && "
        "com_orrery_fount_name_style == \"Bold\" && com_orrery_fount_name_full == \"Foo Bold\"");
}

TEST_F(QueriedNames, AreOnlyThoseThatAreValid) {
    EXPECT_EQ(QueryFor({{kVLFontPropertyName, Text("Foo Bold")}, {kVLFontPropertyFamilyName, Text("Foo")}}),
              "com_orrery_fount_name_family == \"Foo\"");
    for (const char *name :
         {"", " Foo", "Foo ", "Foo Bold", "Foo(Bold)", "Foo\"", "F\xC3\xB6\xC3\xB6", "F/o"})
        EXPECT_EQ(QueryFor(kVLFontPropertyName, name), "") << name;
    for (const char *name : {"", " Foo", "Foo "}) {
        EXPECT_EQ(QueryFor(kVLFontPropertyFamilyName, name), "") << name;
        EXPECT_EQ(QueryFor(kVLFontPropertyFullName, name), "") << name;
    }
}

TEST_F(QueriedNames, GoInAsTheyAre) {
    EXPECT_EQ(QueryFor(kVLFontPropertyFamilyName, "a\" && b == \"c\\"),
              "com_orrery_fount_name_family == \"a\" && b == \"c\\\"");
}

TEST_F(QueriedNames, AreTextAndNothingElse) {
    EXPECT_EQ(QueryFor({{kVLFontPropertyFamilyName, MakeNumber(7)}}), "");
    EXPECT_EQ(QueryFor({{kVLFontPropertyFamilyName, OneElement(String("Foo").Get())}}), "");
    EXPECT_EQ(
        QueryFor({{kVLFontPropertyFamilyName, MakeNumber(7)}, {kVLFontPropertyFullName, Text("Foo")}}),
        "com_orrery_fount_name_full == \"Foo\"");
}

TEST_F(QueriedNames, AreNoneOfTraits) {
    TValMutableDict traits;
    traits.Set(kVLFontTraitSymbolic, MakeNumber(int32_t{0x40000000}).Get());
    EXPECT_EQ(QueryFor({{kVLFontPropertyTraits, traits.Publish()}}), "");
}

} // namespace
} // namespace vellum::test
