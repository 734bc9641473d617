// SPDX-License-Identifier: MIT
#include "platform/val/format.hpp"
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>
#include <locale.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace vellum {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

template <class... Arguments>
std::string Format(const char *format, Arguments... arguments) {
    return TextOf(FormatString(format, arguments...));
}

// The first `limit` bytes of a text.
std::string FormatFirst(size_t limit, const char *format, ...) {
    TextBuffer text;
    text.Append("> ");
    va_list arguments;
    va_start(arguments, format);
    AppendFormatV(text, limit, format, arguments);
    va_end(arguments);
    return text.Failed() ? "(failed)" : std::string(text.View());
}

// What printf makes of the same arguments: what is not text or a value is to be the same.
template <class... Arguments>
void ExpectAsPrintf(const char *format, Arguments... arguments) {
    char expected[4096];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(expected, sizeof expected, format, arguments...);
#pragma GCC diagnostic pop
    ASSERT_GE(length, 0) << format;
    ASSERT_LT(static_cast<size_t>(length), sizeof expected) << format;
    EXPECT_EQ(Format(format, arguments...), expected) << format;
}

TEST(FormatString, KeepsPlainText) {
    EXPECT_EQ(Format(""), "");
    EXPECT_EQ(Format("plain é text\n"), "plain é text\n");
    EXPECT_EQ(Format("100%%"), "100%");
    EXPECT_EQ(Format("%-5%|"), "%|");
}

TEST(FormatString, TakesNullForTheEmptyFormat) {
    EXPECT_EQ(Format(nullptr), "");
}

TEST(FormatString, WritesIntegersAsPrintf) {
    for (const char *format :
         {"%d",      "%i",   "%5d|", "%-5d|",  "%05d",   "%+d",  "% d",  "%.3d", "%8.3d|", "%-+8.3d|",
          "%08.3d|", "%.0d", "%.d",  "%'d",    "%-05d|", "%+ d", "%u",   "%x",   "%X",     "%o",
          "%#x",     "%#X",  "%#o",  "%#010x", "%hhd",   "%hd",  "%hhu", "%hu",  "%hhx"}) {
        for (int number : {0, 1, -1, 42, -1234567, INT_MAX, INT_MIN}) ExpectAsPrintf(format, number);
    }
}

TEST(FormatString, WritesIntegersOfEveryLength) {
    ExpectAsPrintf("%ld %li %lu %lx %lX %lo", LONG_MIN, LONG_MAX, ULONG_MAX, ULONG_MAX, 255ul, 8ul);
    ExpectAsPrintf("%lld %llu %llx", LLONG_MIN, ULLONG_MAX, ULLONG_MAX);
    ExpectAsPrintf("%jd %ju", INTMAX_MIN, UINTMAX_MAX);
    ExpectAsPrintf("%zd %zu %zx", SSIZE_MAX, SIZE_MAX, SIZE_MAX);
    ExpectAsPrintf("%td %tx", PTRDIFF_MIN, PTRDIFF_MAX);
}

TEST(FormatString, WritesRealNumbersAsPrintf) {
    for (const char *format : {"%f",    "%F",   "%e",    "%E",    "%g",      "%G",       "%a",
                               "%A",    "%.0f", "%#.0f", "%.10f", "%12.3f|", "%-12.3f|", "%012.3f",
                               "%+.2e", "% g",  "%#g",   "%.17g", "%.3a",    "%300f",    "%.400f"}) {
        for (double number : {0.0, -0.0, 1.0, 0.1, -12345.678, 1e300, 5e-324, DBL_MAX, HUGE_VAL, -HUGE_VAL,
                              std::strtod("nan", nullptr)})
            ExpectAsPrintf(format, number);
        std::string of_long_double = format;
        of_long_double.insert(of_long_double.find_first_of("fFeEgGaA"), "L");
        for (long double number : {0.1L, 1e4L, -3.5L}) ExpectAsPrintf(of_long_double.c_str(), number);
    }
}

TEST(FormatString, WritesPointersAsPrintf) {
    int here = 0;
    for (const char *format : {"%p", "%20p|", "%-20p|"}) {
        ExpectAsPrintf(format, static_cast<void *>(&here));
        ExpectAsPrintf(format, nullptr);
    }
}

TEST(FormatString, WritesCharactersAsPrintf) {
    for (const char *format : {"%c", "%3c|", "%-3c|"}) ExpectAsPrintf(format, 'x');
    EXPECT_EQ(Format("a%cb", 0), "a\0b"s);
    EXPECT_EQ(Format("%c", 0x141), "A"); // as an unsigned char
}

TEST(FormatString, WritesTextAsPrintf) {
    for (const char *format :
         {"%s", "%8s|", "%-8s|", "%.2s", "%8.2s|", "%-8.2s|", "%.0s|", "%.s|", "%.99s"}) {
        for (const char *text : {"", "a", "abc", "abcdefghijkl"}) ExpectAsPrintf(format, text);
    }
}

TEST(FormatString, WritesNullTextAsSuch) {
    const char *none = nullptr;
    const wchar_t *wide = nullptr;
    EXPECT_EQ(Format("%s|%9s|%-9s|%.3s", none, none, none, none), "(null)|   (null)|(null)   |(nu");
    EXPECT_EQ(Format("%ls", wide), "(null)");
}

TEST(FormatString, ReadsNoMoreOfATextThanThePrecision) {
    const std::vector<char> open{'a', 'b', 'c'}; // without a zero
    EXPECT_EQ(Format("%.3s|%.2s", open.data(), open.data()), "abc|ab");
    const std::vector<wchar_t> wide{L'a', L'b', L'c'};
    EXPECT_EQ(Format("%.3ls|%.2ls", wide.data(), wide.data()), "abc|ab");
}

TEST(FormatString, WritesWideTextAsUtf8InWholeCharacters) {
    EXPECT_EQ(Format("%ls|%lc|%5lc|", L"a\u00E9\U0001F600", wint_t{0xE9}, wint_t{0xE9}), "aé😀|é|   é|");
    EXPECT_EQ(Format("%.1ls|%.2ls|%.3ls", L"a\u00E9", L"a\u00E9", L"a\u00E9"), "a|a|aé");
    const wchar_t broken[] = {0xD800, 0x7FFFFFFF, 0};
    EXPECT_EQ(Format("%ls|%lc", broken, wint_t{0xFFFFFFFF}), "\uFFFD\uFFFD|\uFFFD");
}

TEST(FormatString, KeepsBytesThatAreNoUtf8) {
    EXPECT_EQ(Format("\xFF%s\xC3", "\xE2\x82"), "\xFF\xE2\x82\xC3");
    EXPECT_EQ(Format("%.2s|%c", "€", 0xFF), "\xE2\x82|\xFF");
    EXPECT_EQ(Format("%@", Name("a\xFF").Get()), "a\xFF");
}

TEST(FormatString, TakesWidthAndPrecisionFromTheArguments) {
    for (int width : {0, 1, 9, -9}) {
        ExpectAsPrintf("%*d|", width, 42);
        ExpectAsPrintf("%*s|", width, "text");
        for (int precision : {0, 2, 5, -1, INT_MIN}) {
            ExpectAsPrintf("%*.*d|%s", width, precision, 42, "next");
            ExpectAsPrintf("%*.*f|%s", width, precision, 1.5, "next");
            ExpectAsPrintf("%*.*s|%s", width, precision, "text", "next");
        }
    }
    EXPECT_EQ(Format("%-*d|%0*d", -3, 1, -3, 1), "1  |1  ");
}

TEST(FormatString, WritesAStringValueAsItsText) {
    EXPECT_EQ(Format("<%@>", S("Noto \"Sans\"").Get()), "<Noto \"Sans\">");
    EXPECT_EQ(Format("<%@>", S("a\0b"sv).Get()), "<a\0b>"s);
    const std::string large(100'000, 'x');
    EXPECT_EQ(Format("%@%@", S(large).Get(), S(large).Get()), large + large);
}

TEST(FormatString, WritesOtherValuesAsTheirDescription) {
    const auto number = N(-5);
    const auto text = S("a");
    const auto array = A({number.Get(), text.Get(), nullptr});
    EXPECT_EQ(Format("%@ %@ %@", number.Get(), kValBooleanTrue, array.Get()), "-5 true [-5, \"a\", null]");
    EXPECT_EQ(Format("%@", array.Get()), TextOf(Adopt(ValCopyDescription(array.Get()))));
}

TEST(FormatString, WritesANullValueAsSuch) {
    const void *none = nullptr;
    EXPECT_EQ(Format("%@|%d", none, 3), "(null)|3");
}

TEST(FormatString, PadsAndCutsValuesAsText) {
    const auto text = S("abc");
    EXPECT_EQ(Format("%5@|%-5@|%.2@|%5.1@|", text.Get(), text.Get(), text.Get(), N(12).Get()),
              "  abc|abc  |ab|    1|");
}

TEST(FormatString, BorrowsItsValues) {
    const auto text = S("a string of its own");
    const auto number = N(1'000'003);
    const auto references = [](const void *value) { return AsObject(value)->references.load(); };
    const auto before = std::pair(references(text.Get()), references(number.Get()));
    Format("%@ %@", text.Get(), number.Get());
    EXPECT_EQ(std::pair(references(text.Get()), references(number.Get())), before);
}

TEST(FormatString, WritesUnknownConversionsAsTheyStandAndTakesNoArgument) {
    EXPECT_EQ(Format("%y %d", 5), "%y 5");
    EXPECT_EQ(Format("%-08.3lky|%d", 5), "%-08.3lky|5");
    EXPECT_EQ(Format("%C%S%m%w|%d", 5), "%C%S%m%w|5");
    EXPECT_EQ(Format("%2$d"), "%2$d");
    EXPECT_EQ(Format("%é|%d", 5), "%é|5");
    EXPECT_EQ(Format("%\n%d", 5), "%\n5");
}

TEST(FormatString, WritesAnUnfinishedConversionAsItStands) {
    for (const char *format : {"%", "a%", "%-", "%5", "%.", "%5.", "%l", "%hh", "%08.3ll"})
        EXPECT_EQ(Format(format), format);
}

TEST(FormatString, NeverWritesThroughTheArgumentOfN) {
    int untouched = -7;
    EXPECT_EQ(Format("abc%n|%hhn|%d", &untouched, &untouched, 5), "abc%n|%hhn|5");
    EXPECT_EQ(untouched, -7);
}

TEST(FormatString, PassesOverTheArgumentOfAStar) {
    EXPECT_EQ(Format("%*y %d", 3, 5), "%*y 5");
    EXPECT_EQ(Format("%.*", 3), "%.*");
}

TEST(FormatString, ReadsItsArgumentsWithoutMovingTheCallers) {
    const auto twice = [](const char *format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const std::string first = TextOf(FormatStringV(format, arguments));
        const std::string second = TextOf(FormatStringV(format, arguments));
        va_end(arguments);
        return first + "," + second;
    };
    EXPECT_EQ(twice("%d %s", 1, "a"), "1 a,1 a");
}

TEST(FormatString, ReadsManyArgumentsOfAllKindsInTheirOrder) {
    ExpectAsPrintf("%d %f %s %c %ld %g %u %Lf %p %x %e %hd %zu %s %f %f %f %f %f %f %d", 1, 2.0, "3", '4',
                   5l, 6.0, 7u, 8.0L, static_cast<void *>(nullptr), 9, 10.0, 11, size_t{12}, "13", 14.0,
                   15.0, 16.0, 17.0, 18.0, 19.0, 20);
}

TEST(FormatString, TakesNoLargerWidthsAndPrecisionsThan65536) {
    const std::string zeros(1 << 16, '0');
    EXPECT_EQ(Format("%065535d", 0).size(), 65'535u);
    EXPECT_EQ(Format("%065536d", 0), zeros);
    EXPECT_EQ(Format("%065537d", 0), zeros);
    EXPECT_EQ(Format("%.65537d", 0), zeros);
    EXPECT_EQ(Format("%.*d", INT_MAX, 0), zeros);
    EXPECT_EQ(Format("%99999999999999999999s", "").size(), zeros.size());
    EXPECT_EQ(Format("%*s", INT_MIN, "").size(), zeros.size());
}

TEST(FormatString, HasAPointInEveryLocale) {
    char folder[] = "/tmp/vellum-format-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string make =
        "localedef --no-archive -i de_DE -f UTF-8 " + std::string(folder) + "/de_DE.UTF-8 >/dev/null 2>&1";
    const bool made = std::system(make.c_str()) == 0;
    setenv("LOCPATH", folder, 1);
    const bool set = setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    std::filesystem::remove_all(folder);
    ASSERT_TRUE(made && set) << "localedef cannot make a locale";
    char with_comma[16];
    std::snprintf(with_comma, sizeof with_comma, "%.1f", 1.5);
    ASSERT_STREQ(with_comma, "1,5");

    EXPECT_EQ(Format("%.1f %g %e %'d %@ %.2Lf", 1.5, 0.25, 2.5, 1234567, F(12.5).Get(), 1.25L),
              "1.5 0.25 2.500000e+00 1234567 12.5 1.25");
    std::snprintf(with_comma, sizeof with_comma, "%.1f", 1.5);
    EXPECT_STREQ(with_comma, "1,5"); // and leaves the locale alone
}

TEST(AppendFormatV, AppendsTheFirstBytesOfTheText) {
    EXPECT_EQ(FormatFirst(0, "abc"), "> ");
    EXPECT_EQ(FormatFirst(2, "abc"), "> ab");
    EXPECT_EQ(FormatFirst(3, "abc"), "> abc");
    EXPECT_EQ(FormatFirst(5, "%d-%s|", 12, "three"), "> 12-th");
    EXPECT_EQ(FormatFirst(5, "%8s|%d", "a", 5), ">      ");
    EXPECT_EQ(FormatFirst(5, "%5s|%d", "a", 5), ">     a");
    EXPECT_EQ(FormatFirst(5, "%-8s|%d", "a", 5), "> a    ");
    EXPECT_EQ(FormatFirst(5, "%@%@", S("abc").Get(), N(12345).Get()), "> abc12");
    EXPECT_EQ(FormatFirst(5, "%ls", L"aéé€"), "> aéé");
}

// What has a large width or precision begins as it does without a limit.
TEST(AppendFormatV, SeesTheBeginningOfTheSameTextHoweverLongThatIs) {
    for (const char *format : {"%60000d", "%-60000d|", "%.60000d", "%+.60000d", "%2147483647d",
                               "%.2147483647o", "%20000d", "%20000.19990d", "%.20000d", "%11d", "%.11d"}) {
        for (size_t limit : {1u, 4u, 10u, 11u, 12u, 8192u, 20'000u})
            EXPECT_EQ(FormatFirst(limit, format, 1), "> " + Format(format, 1).substr(0, limit)) << format;
    }
    for (const char *format : {"%.60000Lf", "%60000.2Lf", "%-60000Lf|", "%30000.20000Lf", "%.20000Lg"}) {
        for (size_t limit : {1u, 4u, 300u, 8192u, 20'000u})
            EXPECT_EQ(FormatFirst(limit, format, LDBL_MAX),
                      "> " + Format(format, LDBL_MAX).substr(0, limit))
                << format;
    }
    for (const char *format : {"%60000s", "%-60000s|", "%60000.3s", "%.60000s"}) {
        for (size_t limit : {1u, 4u, 999u})
            EXPECT_EQ(FormatFirst(limit, format, "text"), "> " + Format(format, "text").substr(0, limit))
                << format;
    }
}

} // namespace
} // namespace vellum
