// SPDX-License-Identifier: MIT
#include "platform/val/collation.hpp"
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>
#include <filesystem>

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

} // namespace
} // namespace vellum
