// SPDX-License-Identifier: MIT
#include "beacon/query_language.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

std::vector<NameClause> Parsed(std::string_view text) {
    const auto clauses = ParseQuery(text);
    EXPECT_TRUE(clauses) << text;
    return clauses.value_or(std::vector<NameClause>());
}

const std::string kPostScriptIs = "com_orrery_fount_name_postscript == \"";
const std::string kFamilyIs = "com_orrery_fount_name_family == \"";
const std::string kStyleIs = "com_orrery_fount_name_style == \"";
const std::string kFullIs = "com_orrery_fount_name_full == \"";

NameClause Family(std::string value) {
    return {NameAttribute::kFamily, std::move(value)};
}

TEST(QueryLanguage, HasAClauseForEachAttributeInAnyOrder) {
    EXPECT_THAT(Parsed(kPostScriptIs + "A-B\" && " + kFamilyIs + "A\" && " + kStyleIs + "B\" && " +
                       kFullIs + "A B\""),
                ElementsAre(NameClause{NameAttribute::kPostScript, "A-B"}, Family("A"),
                            NameClause{NameAttribute::kStyle, "B"},
                            NameClause{NameAttribute::kFull, "A B"}));
    EXPECT_THAT(Parsed(kStyleIs + "B\" && " + kFamilyIs + "A\""),
                ElementsAre(NameClause{NameAttribute::kStyle, "B"}, Family("A")));
}

// What stands in a name does not end it, nor begin anything.
TEST(QueryLanguage, TakesQuotesBackslashesAndOperatorsInAValueForItsOwn) {
    for (const std::string value :
         {"\"", "\\", "\\\"", "a\" b", "a\" && b", "a\" && b == \"c", "\" || \"", "a\" &&", "\" && ", "*",
          "A*", "a\"  && com_orrery_fount_name_style == \"b", "a\" && com_orrery_fount_name_styles == \"b",
          "a\" && com_orrery_fount_name_style=\"b", "a\" && com_orrery_fount_name_style == b", "ü\xff",
          "'; DROP", ""}) {
        EXPECT_THAT(Parsed(kFamilyIs + value + "\""), ElementsAre(Family(value)));
        EXPECT_THAT(Parsed(kFamilyIs + value + "\" && " + kStyleIs + "s\""),
                    ElementsAre(Family(value), NameClause{NameAttribute::kStyle, "s"}));
    }
    const std::string zeros("a\0b", 3);
    EXPECT_THAT(Parsed(kFamilyIs + zeros + "\""), ElementsAre(Family(zeros)));
}

// All that a name can do that says a clause is to ask for less.
TEST(QueryLanguage, TakesAWholeClauseInAValueForAnotherClause) {
    EXPECT_THAT(Parsed(kFamilyIs + "a\" && " + kStyleIs + "b\""),
                ElementsAre(Family("a"), NameClause{NameAttribute::kStyle, "b"}));
    EXPECT_FALSE(ParseQuery(kFamilyIs + "a\" && " + kFamilyIs + "b\""));
}

TEST(QueryLanguage, RefusesWhatIsNoQuery) {
    for (const std::string &text :
         {std::string(), std::string("\""), std::string("a"), std::string("kMDItemFSName == \"a\""),
          kFamilyIs, kFamilyIs + "a", " " + kFamilyIs + "a\"", kFamilyIs + "a\" ", kFamilyIs + "a\" && ",
          kFamilyIs + "a\"c", kFamilyIs + "a\" || " + kStyleIs + "b\"x", "(" + kFamilyIs + "a\")",
          "!(" + kFamilyIs + "a\")", std::string("com_orrery_fount_name_family != \"a\""),
          std::string("com_orrery_fount_name_family == 'a'"),
          std::string("com_orrery_fount_name_family==\"a\""),
          std::string("COM_ORRERY_FOUNT_NAME_FAMILY == \"a\"")})
        EXPECT_FALSE(ParseQuery(text)) << text;
}

TEST(QueryLanguage, RefusesMoreThanTheLongestQuery) {
    const std::string beginning = kFamilyIs;
    const size_t left = kLongestQuery - beginning.size() - 1;
    EXPECT_TRUE(ParseQuery(beginning + std::string(left, 'a') + '"'));
    EXPECT_FALSE(ParseQuery(beginning + std::string(left + 1, 'a') + '"'));
}

} // namespace
} // namespace vellum::test
