// SPDX-License-Identifier: MIT
// The names of the files that PostScript outlines lie in, one row for each name.
#include "store/printer_font_name.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vellum::test {
namespace {

using namespace std::string_view_literals;

struct NameRow {
    std::string_view postscript_name;
    std::string_view file;
};

void ExpectRows(std::initializer_list<NameRow> rows) {
    for (const NameRow &row : rows)
        EXPECT_EQ(PrinterFontName(row.postscript_name), row.file) << row.postscript_name;
}

TEST(PrinterFontName, KeepsFiveOfTheFirstWordAndThreeOfEachLaterOne) {
    ExpectRows({
        {"Garamond-BoldItalic", "GaramBolIta"},
        {"Garamond-Bold", "GaramBol"},
        {"Garamond", "Garam"},
        {"Times-Roman", "TimesRom"},
        {"Times-BoldItalic", "TimesBolIta"},
        {"Helvetica", "Helve"},
        {"Helvetica-BoldOblique", "HelveBolObl"},
        {"NewCenturySchlbk-Roman", "NewCenSchRom"},
        {"ZapfDingbats", "ZapfDin"},
        {"AvantGarde-DemiOblique", "AvantGarDemObl"},
        {"StoneSans-SemiboldItalic", "StoneSanSemIta"},
    });
}

TEST(PrinterFontName, KeepsShortWordsWhole) {
    ExpectRows({
        {"A", "A"},
        {"Abcde", "Abcde"},
        {"Abcdef", "Abcde"},
        {"Abc-Def", "AbcDef"},
        {"Abc-Defg", "AbcDef"},
        {"OfNewTwo", "OfNewTwo"},
    });
}

TEST(PrinterFontName, TakesEveryCapitalForAWord) {
    ExpectRows({
        {"MACRO", "MACRO"},
        {"MACROfont", "MACROfo"},
        {"HTFirstword", "HTFir"}, // the first word is H alone
        {"Hx-TFirstword", "HxTFir"},
        {"OCRAbcde", "OCRAbc"},
        {"ABCDEFGH", "ABCDEFGH"},
    });
}

TEST(PrinterFontName, CountsDigitsAndSignsAsLetters) {
    ExpectRows({
        {"Univers55", "Unive"},
        {"Uni55567", "Uni55"},
        {"A12345", "A1234"},
        {"Abc-B123", "AbcB12"},
        {"A.b c+d", "A.b c"},
        {"F55Roman", "F55Rom"},
    });
}

TEST(PrinterFontName, SkipsHyphensAndUnderscoresWithoutCountingThem) {
    ExpectRows({
        {"A-b-c-d-e-f", "Abcde"},
        {"A_b_c_d_e_f", "Abcde"},
        {"Ab-cdef", "Abcde"}, // a hyphen begins no word
        {"Abcde-fgh", "Abcde"},
        {"Foo--Bar", "FooBar"},
        {"Foo_Bar", "FooBar"},
        {"Foo_bar", "Fooba"},
        {"-Foo-", "Foo"},
        {"Foo_", "Foo"},
        {"_", ""},
        {"-", ""},
        {"-_-", ""},
        {"Foo__Bar", "FooBar"},
    });
}

TEST(PrinterFontName, EndsAtAnUnderscoreBeforeADigit) {
    ExpectRows({
        {"Foo_1", "Foo"},
        {"Foo_9Bar", "Foo"},
        {"Foo_0Bar_Baz", "Foo"},
        {"Foo__1Bar", "Foo"},
        {"Foo_Bar_2Baz", "FooBar"},
        {"Foo_-1Bar", "Foo1Bar"}, // the next character is the hyphen
        {"Foo-1Bar", "Foo1Bar"},
        {"Foolish_1Bar", "Fooli"},
        {"_1Foo", ""},
        {"Foo_a1Bar", "Fooa1Bar"},
        {"Foo_/Bar", "Foo/Bar"}, // the signs on both sides of the digits are none
        {"Foo_:Bar", "Foo:Bar"},
    });
}

TEST(PrinterFontName, DropsTheFoundryInFrontOfOtherThings) {
    ExpectRows({
        {"ITC-Garamond", "Garam"},
        {"ITC-GaramondBook", "GaramBoo"},
        {"ITC-A", "A"},
        {"ITC-", "ITC"},
        {"ITC", "ITC"},
        {"ITC-a", ""},
        {"ITC--Foo", "Foo"},
        {"ITC-ITC-Foo", "ITCFoo"}, // once
        {"ITCGaramond", "ITCGar"},
        {"ITC_Garamond", "ITCGar"},
        {"itc-Garamond", "Garam"}, // begins with no capital
        {"Itc-Garamond", "ItcGar"},
        {"AITC-Garamond", "AITCGar"},
        {"ITC-_1Foo", ""},
    });
}

TEST(PrinterFontName, KeepsNothingInFrontOfTheFirstCapital) {
    ExpectRows({
        {"garamond", ""},
        {"garamondBold", "Bold"},
        {"xGaramond", "Garam"},
        {"1Garamond", "Garam"},
        {"x1y2Garamond-Bold", "GaramBol"},
        {"", ""},
        {"./Foo", "Foo"},
        {"..", ""},
    });
}

TEST(PrinterFontName, TakesTheTwentySixCapitalsAlone) {
    ExpectRows({
        {"AbcZbcd", "AbcZbc"},
        {"Abc@Zbcd", "Abc@Zbc"},
        {"A@[`{x", "A@[`{"}, // the signs on both sides of the letters
        {"@bcd", ""},
        {"[bcd", ""},
        {"A\xC4\xD6\xDC\xE4\xF6", "A\xC4\xD6\xDC\xE4"}, // neither are those of other alphabets
        {"\xC4"
         "Foo",
         "Foo"},
        {"A\0b/c"sv, "A\0b/c"sv},
    });
}

TEST(PrinterFontName, IsNoLongerThan32Bytes) {
    ExpectRows({
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDE", "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDE"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEF", "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEF"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFG", "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEF"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEfg", "ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEf"},
        {"Abcde-AbcAbcAbcAbcAbcAbcAbcAbcAbcAbc", "AbcdeAbcAbcAbcAbcAbcAbcAbcAbcAbc"},
    });
    EXPECT_EQ(PrinterFontName(std::string(100000, 'A')), std::string(32, 'A'));
    EXPECT_EQ(PrinterFontName("Abcde" + std::string(100000, 'f') + "Ghij"), "AbcdeGhi");
}

TEST(PlainFileName, StaysInItsFolder) {
    for (const std::string_view name : {"a"sv, "GaramBol"sv, "..."sv, ".a"sv, "a.."sv, " "sv, "\xFF"sv})
        EXPECT_TRUE(IsPlainFileName(name)) << name;
    for (const std::string_view name : {""sv, "."sv, ".."sv, "/"sv, "a/b"sv, "/a"sv, "a/"sv, "../a"sv,
                                        "A/.."sv, "\0"sv, "a\0"sv, "a\0b"sv})
        EXPECT_FALSE(IsPlainFileName(name)) << name;
}

} // namespace
} // namespace vellum::test
