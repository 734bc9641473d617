// SPDX-License-Identifier: MIT
#include "platform/locale/generator/locale_database.hpp"

#include <unicode/locid.h>
#include <unicode/ulocdata.h>
#include <unicode/unistr.h>
#include <unicode/ures.h>
#include <unicode/uset.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <tuple>

namespace vellum::generator {
namespace {

struct TCloser {
    void operator()(UResourceBundle *bundle) const noexcept { ures_close(bundle); }
    void operator()(ULocaleData *data) const noexcept { ulocdata_close(data); }
    void operator()(USet *set) const noexcept { uset_close(set); }
};
using TBundle = std::unique_ptr<UResourceBundle, TCloser>;

void Check(UErrorCode error, const std::string &what) {
    if (U_FAILURE(error)) throw std::runtime_error(what + ": " + u_errorName(error));
}

TBundle Open(const char *name) {
    UErrorCode error = U_ZERO_ERROR;
    TBundle bundle(ures_openDirect(nullptr, name, &error));
    Check(error, name);
    return bundle;
}

TBundle Child(const TBundle &parent, const char *key) {
    UErrorCode error = U_ZERO_ERROR;
    TBundle bundle(ures_getByKey(parent.get(), key, nullptr, &error));
    Check(error, key);
    return bundle;
}

std::string TextOf(const TBundle &bundle) {
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    const UChar *characters = ures_getString(bundle.get(), &length, &error);
    Check(error, "a text");
    std::string text;
    icu::UnicodeString(characters, length).toUTF8String(text);
    return text;
}

// Calls visit(key, row) for every row of a table.
template <class Visit>
void ForEachRow(const TBundle &table, Visit visit) {
    for (int32_t i = 0; i < ures_getSize(table.get()); ++i) {
        UErrorCode error = U_ZERO_ERROR;
        const TBundle row(ures_getByIndex(table.get(), i, nullptr, &error));
        Check(error, "a row");
        visit(std::string(ures_getKey(row.get())), row);
    }
}

std::string Hyphenated(std::string text) {
    std::replace(text.begin(), text.end(), '_', '-');
    return text;
}

std::string LowerCase(std::string text) {
    for (char &c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return text;
}

std::vector<std::string> Split(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

TPairs AliasesOf(const char *kind) {
    TPairs aliases;
    ForEachRow(Child(Child(Open("metadata"), "alias"), kind),
               [&](const std::string &key, const TBundle &row) {
                   for (const std::string &to : Split(TextOf(Child(row, "replacement")), ' '))
                       aliases.emplace_back(key, to);
               });
    return aliases;
}

TLikelyRow ParseRow(const std::string &text) {
    const std::vector<std::string> parts = Split(text, '_');
    if (parts.size() != 3) throw std::runtime_error("no language, script and region: " + text);
    return {parts[0], parts[1], parts[2]};
}

const TLikelyRow *FindLanguage(const std::vector<TLikelyRow> &rows, const std::string &language) {
    const auto by_language = [](const TLikelyRow &row, const std::string &key) {
        return row.language < key;
    };
    const auto found = std::lower_bound(rows.begin(), rows.end(), language, by_language);
    return found != rows.end() && found->language == language ? &*found : nullptr;
}

void SortByLanguage(std::vector<TLikelyRow> &rows) {
    std::sort(rows.begin(), rows.end(), [](const TLikelyRow &a, const TLikelyRow &b) {
        return std::tie(a.language, a.script, a.region) < std::tie(b.language, b.script, b.region);
    });
}

// A row that one more subtag brings about, where it is a script; else that subtag is a region.
void AddException(TLikely &likely, const std::string &subtag, const TLikelyRow &row) {
    const TLikelyRow *usual = FindLanguage(likely.by_language, row.language);
    if (!usual) throw std::runtime_error("not likely without " + subtag + ": " + row.language);
    if (subtag.size() == 4 && row.region != usual->region) likely.by_script.push_back(row);
    if (subtag.size() != 4 && row.script != usual->script) likely.by_region.push_back(row);
}

// The tables are the only source of likely subtags, so that this says what the library will say.
struct TLocale {
    std::string language;
    std::string script;
    std::string region;
};

TLocale Maximal(const std::string &name) {
    UErrorCode error = U_ZERO_ERROR;
    icu::Locale locale(name.c_str());
    locale.addLikelySubtags(error);
    Check(error, name);
    return {locale.getLanguage(), locale.getScript(), locale.getCountry()};
}

// The script is left out where the language, and the region if it stays, bring it about; but for
// Chinese never. The region is left out where the language and the script bring it about.
std::string Canonical(const std::string &name) {
    const TLocale full = Maximal(name);
    const std::string &language = full.language;
    std::string identifier = language;
    const bool has_region = Maximal(language + "_" + full.script).region != full.region;
    const bool is_usual = Maximal(language).script == full.script &&
                          (!has_region || Maximal(language + "_" + full.region).script == full.script);
    if (!is_usual || language == "zh") identifier += "-" + full.script;
    if (has_region) identifier += "-" + full.region;
    return identifier;
}

std::set<std::string> AvailableLocales() {
    int32_t count = 0;
    const icu::Locale *locales = icu::Locale::getAvailableLocales(count);
    std::set<std::string> names;
    for (int32_t i = 0; i < count; ++i) names.insert(locales[i].getName());
    return names;
}

// The single code points; sequences that a set may also have are left out.
TRanges RangesOf(const USet *set) {
    TRanges ranges;
    for (int32_t i = 0; i < uset_getItemCount(set); ++i) {
        UErrorCode error = U_ZERO_ERROR;
        UChar32 first = 0;
        UChar32 last = 0;
        if (uset_getItem(set, i, &first, &last, nullptr, 0, &error) != 0) continue; // a sequence
        Check(error, "a range");
        ranges.emplace_back(static_cast<uint32_t>(first), static_cast<uint32_t>(last));
    }
    return ranges;
}

TRanges StandardExemplars(const std::string &name) {
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<ULocaleData, TCloser> data(ulocdata_open(name.c_str(), &error));
    Check(error, name);
    const std::unique_ptr<USet, TCloser> set(
        ulocdata_getExemplarSet(data.get(), nullptr, 0, ULOCDATA_ES_STANDARD, &error));
    Check(error, name);
    return RangesOf(set.get());
}

// The set of the nearest parent; null for none.
const TRanges *InheritedSet(const std::map<std::string, TRanges> &sets, std::string identifier) {
    for (size_t end; (end = identifier.rfind('-')) != std::string::npos;) {
        const bool has_region = identifier.size() - end - 1 < 4;
        identifier.resize(end);
        if (!has_region) return nullptr; // another script is another language
        const auto found = sets.find(Canonical(Hyphenated(identifier)));
        if (found != sets.end()) return &found->second;
    }
    return nullptr;
}

} // namespace

std::string DatabaseVersion() {
    return U_ICU_VERSION;
}

TPairs LanguageAliases() {
    TPairs aliases;
    for (const auto &[key, replacement] : AliasesOf("language")) {
        const std::string from = LowerCase(Hyphenated(key));
        const std::string to = Hyphenated(replacement);
        const bool is_said = to.find("-x-") == std::string::npos && to.size() <= 8;
        if (!from.starts_with("und") && !to.starts_with("und") && is_said) aliases.emplace_back(from, to);
    }
    return aliases;
}

TPairs SubtagAliases() {
    TPairs aliases = AliasesOf("script");
    for (const auto &alias : AliasesOf("territory")) aliases.push_back(alias);
    return aliases;
}

TPairs VariantAliases() {
    return AliasesOf("variant");
}

TLikely LikelySubtags() {
    TLikely likely;
    const TBundle table = Open("likelySubtags");
    std::vector<std::pair<std::string, TLikelyRow>> exceptions;
    ForEachRow(table, [&](const std::string &key, const TBundle &row) {
        const std::vector<std::string> parts = Split(key, '_');
        if (parts[0] == "und") return;
        if (parts.size() > 2) throw std::runtime_error("more than one subtag: " + key);
        if (parts.size() == 1)
            likely.by_language.push_back(ParseRow(TextOf(row)));
        else
            exceptions.emplace_back(parts[1], ParseRow(TextOf(row)));
    });
    SortByLanguage(likely.by_language);
    for (const auto &[subtag, row] : exceptions) AddException(likely, subtag, row);
    SortByLanguage(likely.by_region);
    SortByLanguage(likely.by_script);
    return likely;
}

std::vector<std::string> SupportedLanguages() {
    std::set<std::string> codes = {"zh_Hans", "zh_Hant"};
    for (const char *const *code = icu::Locale::getISOLanguages(); *code; ++code) codes.insert(*code);
    std::set<std::string> supported;
    for (const std::string &name : AvailableLocales()) {
        if (codes.contains(name)) supported.insert(Hyphenated(name));
    }
    return {supported.begin(), supported.end()};
}

// A parent is shorter than what inherits from it.
std::map<std::string, TRanges> ExemplarSets() {
    std::vector<std::pair<std::string, std::string>> names; // canonical identifiers, and locales
    for (const std::string &name : AvailableLocales()) names.emplace_back(Canonical(name), name);
    const auto shorter = [](const auto &a, const auto &b) {
        return std::make_pair(a.first.size(), a) < std::make_pair(b.first.size(), b);
    };
    std::sort(names.begin(), names.end(), shorter);
    std::map<std::string, TRanges> sets;
    for (const auto &[identifier, name] : names) {
        TRanges ranges = StandardExemplars(name);
        const auto known = sets.find(identifier);
        if (known != sets.end() && known->second != ranges)
            throw std::runtime_error("locales of one identifier have different sets: " + identifier);
        const TRanges *inherited = InheritedSet(sets, identifier);
        if (ranges.empty() || (inherited && *inherited == ranges)) continue;
        sets.emplace(identifier, std::move(ranges));
    }
    return sets;
}

} // namespace vellum::generator
