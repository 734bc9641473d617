// SPDX-License-Identifier: MIT
#include "platform/val/collation.hpp"
#include "platform/val/shorthand.hpp"
#include "platform/val/sort_key.hpp"

#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

// The C library itself loses what it makes of LOCPATH; the leak sanitizer asks for this.
extern "C" const char *__lsan_default_suppressions();
const char *__lsan_default_suppressions() {
    return "leak:argz_add_sep";
}

namespace vellum {
namespace {

constexpr ValCompareOptions kLocalized = kValCompareLocalized;

int Compare(std::string_view a, std::string_view b, ValCompareOptions options = kLocalized) {
    return ValStringCompare(S(a).Get(), S(b).Get(), options);
}

// Builds locales of its own with the system's localedef; each test is a process, and its first
// comparison reads the environment.
class LocalizedOrder : public ::testing::Test {
protected:
    void TearDown() override {
        if (!directory_.empty()) std::filesystem::remove_all(directory_);
    }

    void Use(const std::string &locale, const std::string &charset = "UTF-8") {
        char pattern[] = "/tmp/vellum-collation-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        directory_ = pattern;
        const std::string name = locale + "." + charset;
        const std::string command = "localedef --no-archive -i " + locale + " -f " + charset + " " +
                                    directory_ + "/" + name + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << "localedef cannot make " << name;
        setenv("LOCPATH", directory_.c_str(), 1);
        unsetenv("LC_ALL");
        setenv("LANG", "C", 1);
        setenv("LC_COLLATE", name.c_str(), 1);
    }

private:
    std::string directory_;
};

TEST_F(LocalizedOrder, IsThatOfCodePointsInTheCLocale) {
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(Compare("Z", "a"), -1);
    EXPECT_EQ(Compare("z", "ä"), -1);
    EXPECT_EQ(Compare("a", "a"), 0);
    EXPECT_EQ(Compare(std::string_view("a\0b", 3), std::string_view("a\0a", 3)), 1);
}

TEST_F(LocalizedOrder, IsThatOfCodePointsWhenTheLocaleIsMissing) {
    setenv("LC_ALL", "xx_XX.UTF-8", 1);
    EXPECT_EQ(Compare("Z", "a"), -1);
    EXPECT_EQ(Compare("z", "ä"), -1);
}

TEST_F(LocalizedOrder, FollowsTheUsersCollation) {
    Use("sv_SE");
    if (IsSkipped()) return;
    EXPECT_EQ(Compare("z", "ä"), -1); // a letter behind z in Swedish
    EXPECT_EQ(Compare("ä", "ö"), -1);
    EXPECT_EQ(Compare("a", "B"), -1);
    EXPECT_EQ(Compare("b", "A"), 1);
}

TEST_F(LocalizedOrder, DiffersFromUserToUser) {
    Use("de_DE");
    if (IsSkipped()) return;
    EXPECT_EQ(Compare("ä", "z"), -1);
    EXPECT_EQ(Compare("a", "B"), -1);
}

TEST_F(LocalizedOrder, DoesNotFollowTheProgramsLocale) {
    Use("de_DE");
    if (IsSkipped()) return;
    setlocale(LC_ALL, "C");
    EXPECT_EQ(Compare("a", "B"), -1);
    EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C"); // and leaves it alone
}

TEST_F(LocalizedOrder, CombinesWithCaseAndNumbers) {
    Use("sv_SE");
    if (IsSkipped()) return;
    EXPECT_EQ(Compare("Äpple 2", "äpple 10", kLocalized | kValCompareNumeric | kValCompareCaseInsensitive),
              -1);
    EXPECT_EQ(Compare("ÄPPLE", "äpple", kLocalized | kValCompareCaseInsensitive), 0);
    EXPECT_EQ(Compare("z10", "ä2", kLocalized | kValCompareNumeric), -1);
    EXPECT_EQ(Compare("ä10", "ä2", kLocalized | kValCompareNumeric), 1);
    EXPECT_EQ(Compare("ä10", "ä2", kLocalized), -1);
}

TEST_F(LocalizedOrder, IsThatOfCodePointsInALocaleThatIsNotUtf8) {
    Use("de_DE", "ISO-8859-1");
    if (IsSkipped()) return;
    EXPECT_EQ(Compare("Z", "a"), -1);
}

// ---- sort keys ---------------------------------------------------------------------------------------

constexpr ValCompareOptions kAsFamilies =
    kValCompareCaseInsensitive | kValCompareNumeric | kValCompareLocalized;

int Sign(int order) {
    return (order > 0) - (order < 0);
}

// Words of few letters with numbers between them, so that many are nearly the same.
std::vector<std::string> SimilarTexts() {
    constexpr const char *kPieces[] = {"a",  "A", "\u00e4", "b",      "\u00df",     "ss",
                                       "z",  "-", " ",      "\u3042", "\U0001F600", "0",
                                       "00", "1", "9",      "10",     "099",        "."};
    std::mt19937 random(20);
    std::vector<std::string> texts = {"", " ", "0", "a", "\xff", "\xff\x01"};
    for (int i = 0; i < 300; ++i) {
        std::string text;
        for (size_t length = random() % 5 + 1; length > 0; --length)
            text += kPieces[random() % std::size(kPieces)];
        texts.push_back(text);
    }
    return texts;
}

void ExpectKeysInTheOrderOfTexts() {
    struct Keyed {
        Ref<const ValString> string;
        std::string key;
    };
    std::vector<Keyed> all;
    for (const std::string &text : SimilarTexts()) {
        auto string = Adopt(ValStringCreateWithFileSystemRepresentation(text.data(), text.size()));
        all.push_back({string, MakeSortKey(*string)});
    }
    for (const Keyed &a : all)
        for (const Keyed &b : all)
            ASSERT_EQ(Sign(a.key.compare(b.key)),
                      Sign(ValStringCompare(a.string.Get(), b.string.Get(), kAsFamilies)))
                << TextOf(a.string) << " and " << TextOf(b.string);
}

TEST_F(LocalizedOrder, OfSortKeysIsThatOfTheirTextsInGerman) {
    Use("de_DE");
    ExpectKeysInTheOrderOfTexts();
}

TEST_F(LocalizedOrder, OfSortKeysIsThatOfTheirTextsInSwedish) {
    Use("sv_SE");
    ExpectKeysInTheOrderOfTexts();
}

TEST_F(LocalizedOrder, OfSortKeysIsThatOfTheirTextsWithoutALocale) {
    ExpectKeysInTheOrderOfTexts();
}

} // namespace
} // namespace vellum
