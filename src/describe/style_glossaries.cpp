// SPDX-License-Identifier: MIT
#include "describe/style_glossaries.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr StyleWord kWeightWords[] = {
    {"Ultra Light", -0.8F}, {"Ultra Black", 0.75F}, {"Extra Light", -0.5F}, {"UltraLight", -0.8F},
    {"UltraBlack", 0.75F},  {"ExtraBlack", 0.8F},   {"UltraLight", -0.8F},  {"ExtraLight", -0.5F},
    {"Ultra Thin", -0.8F},  {"Extra Thin", -0.8F},  {"Heavy Face", 0.56F},  {"Semi Light", -0.2F},
    {"Extra Bold", 0.5F},   {"Ultra Bold", 0.7F},   {"HeavyFace", 0.56F},   {"ExtraBold", 0.5F},
    {"UltraBold", 0.7F},    {"Ext Black", 0.8F},    {"SemiLight", -0.2F},   {"Demi Bold", 0.25F},
    {"Semi Bold", 0.3F},    {"Ext Light", -0.5F},   {"Ext Bold", 0.5F},     {"DemiBold", 0.25F},
    {"SemiBold", 0.3F},     {"HairLine", -0.8F},    {"Ext Thin", -0.8F},    {"Medium", 0.23F},
    {"Poster", 0.8F},       {"Light", -0.4F},       {"Ultra", 0.5F},        {"Heavy", 0.56F},
    {"Extra", 0.5F},        {"Black", 0.62F},       {"Super", 0.62F},       {"Obese", 0.85F},
    {"Lite", -0.4F},        {"Book", -0.23F},       {"Demi", 0.25F},        {"Semi", 0.3F},
    {"Thin", -0.5F},        {"Bold", 0.4F},         {"Nord", 0.8F},         {"Fat", 0.75F},
    {"W1", -0.23F},         {"W2", -0.5F},          {"W3", -0.23F},         {"W4", 0.0F},
    {"W5", 0.23F},          {"W6", 0.3F},           {"W7", 0.44F},          {"W8", 0.54F},
    {"W9", 0.62F},
};

constexpr StyleWord kWidthWords[] = {
    {"Extra Compressed", -0.7F},
    {"Ultra Compressed", -0.7F},
    {"Ultra Condensed", -0.7F},
    {"Extra Condensed", -0.5F},
    {"Extra Extended", 0.4F},
    {"Ext Compressed", -0.7F},
    {"Ultra Expanded", 0.8F},
    {"Ultra Extended", 0.8F},
    {"Extra Expanded", 0.4F},
    {"Semi Condensed", -0.7F},
    {"Semi Condensed", -0.1F},
    {"Ext Condensed", -0.5F},
    {"SemiCondensed", -0.1F},
    {"ExtraExpanded", 0.4F},
    {"Semi Expanded", 0.1F},
    {"Semi Extended", 0.1F},
    {"Ext Expanded", 0.4F},
    {"Ext Extended", 0.4F},
    {"SemiExpanded", 0.1F},
    {"Extra Narrow", -0.5F},
    {"ExtraNarrow", -0.5F},
    {"Extra Wide", 0.8F},
    {"Ultra Cond", -0.7F},
    {"Compressed", -0.5F},
    {"Extra Cond", -0.5F},
    {"Semi Cond", -0.1F},
    {"Condensed", -0.2F},
    {"ExtraWide", 0.8F},
    {"Extended", 0.2F},
    {"Expanded", 0.2F},
    {"Ext Cond", -0.5F},
    {"Narrow", -0.4F},
    {"Compact", -0.4F},
    {"Cond", -0.2F},
    {"Wide", 0.6F},
    {"Thin", -0.7F},
};

constexpr StyleWord kSlantWords[] = {
    {"BackSlanted", -0.0694444F}, {"Extra Slant", 0.138889F}, {"Back Slant", -0.0694444F},
    {"ExtraSlant", 0.138889F},    {"BackSlant", -0.0694444F}, {"Inclined", 0.0694444F},
    {"Oblique", 0.0694444F},      {"Slanted", 0.0694444F},    {"Upright", 0.0F},
    {"Cursive", 0.0694444F},      {"Kursiv", 0.0694444F},     {"BookIt", 0.0694444F},
    {"Italic", 0.0694444F},       {"Slant", 0.0694444F},      {"Ital", 0.0694444F},
    {"Ita", 0.0694444F},
};

constexpr StyleWord kAbbreviatedWeightWords[] = {
    {"EL", -0.2F}, {"EB", 0.5F}, {"SB", 0.3F}, {"UH", 0.8F}, {"U", 0.7F},
    {"L", -0.4F},  {"H", 0.56F}, {"B", 0.4F},  {"M", 0.23F}, {"R", 0.0F},
};

bool StartsWith(std::string_view folded, std::string_view word) noexcept {
    return folded.size() >= word.size() &&
           std::ranges::equal(folded.substr(0, word.size()), word, {}, {}, LowerAscii);
}

// Two characters outside of ASCII are letters of it in another case: the long s and the Kelvin sign.
struct Folding {
    std::string_view character;
    char letter;
};
constexpr Folding kFoldings[] = {{"\u017F", 's'}, {"\u212A", 'k'}};

} // namespace

constinit const std::span<const StyleWord> kWeightStyleGlossaryNameMap(kWeightWords);
constinit const std::span<const StyleWord> kWidthStyleGlossaryNameMap(kWidthWords);
constinit const std::span<const StyleWord> kSlantStyleGlossaryNameMap(kSlantWords);
constinit const std::span<const StyleWord> kAbbreviatedWeightStyleGlossaryNameMap(kAbbreviatedWeightWords);

StyleName::StyleName(std::string_view name) {
    folded_.reserve(name.size());
    while (!name.empty()) {
        const auto *folding = std::ranges::find_if(
            kFoldings, [name](const Folding &row) { return name.starts_with(row.character); });
        const bool found = folding != std::end(kFoldings);
        folded_.push_back(found ? folding->letter : LowerAscii(name[0]));
        name.remove_prefix(found ? folding->character.size() : 1);
    }
    letters_ = StyleWord::LettersOf(folded_);
}

bool StyleName::HasWordAt(size_t place, std::string_view word) const noexcept {
    return place <= folded_.size() && StartsWith(std::string_view(folded_).substr(place), word);
}

size_t StyleName::FindLast(std::string_view word) const noexcept {
    for (size_t place = folded_.size() + 1; place-- > 0;) {
        if (HasWordAt(place, word)) return place;
    }
    return std::string_view::npos;
}

bool StyleName::DetermineTraitValueFromString(std::span<const StyleWord> glossary,
                                              float &value) const noexcept {
    for (const StyleWord &row : glossary) {
        if ((row.letters & ~letters_) != 0 || FindLast(row.word) == std::string_view::npos) continue;
        value = row.value;
        return true;
    }
    return false;
}

bool StyleName::DetermineTraitValueFromWholeString(std::span<const StyleWord> glossary,
                                                   float &value) const noexcept {
    for (const StyleWord &row : glossary) {
        if (row.word.size() != folded_.size() || !HasWordAt(0, row.word)) continue;
        value = row.value;
        return true;
    }
    return false;
}

} // namespace vellum
