// SPDX-License-Identifier: MIT
#include "platform/locale/locale_names.hpp"

#include "platform/locale/locale_tables.hpp"

#include <algorithm>
#include <array>

namespace vellum {
namespace {

struct TParts {
    std::string language;
    std::string script;
    std::string region;
    std::vector<std::string> variants;
};

// Languages whose dialects were once said after them, as "zh-yue", and are languages of their own now.
constexpr std::array<std::string_view, 8> kDialectPrefixes = {"ar",  "kok", "lv", "ms",
                                                              "sgn", "sw",  "uz", "zh"};

struct TScriptModifier {
    std::string_view modifier;
    std::string_view script;
};

// The modifiers of POSIX locales that name a script.
constexpr TScriptModifier kScriptModifiers[] = {
    {"cyrillic", "Cyrl"}, {"devanagari", "Deva"}, {"latin", "Latn"}};

constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
constexpr bool IsLower(char c) noexcept {
    return c >= 'a' && c <= 'z';
}
constexpr char Lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
constexpr char Upper(char c) noexcept {
    return IsLower(c) ? static_cast<char>(c - 32) : c;
}

std::string Normalized(std::string_view text) {
    std::string normal(text);
    for (char &c : normal) c = c == '_' ? '-' : Lower(c);
    return normal;
}

bool IsAlphabetic(std::string_view subtag) noexcept {
    return std::ranges::all_of(subtag, IsLower);
}

bool IsAlphanumeric(std::string_view subtag) noexcept {
    return std::ranges::all_of(subtag, [](char c) noexcept { return IsLower(c) || IsDigit(c); });
}

bool IsLanguage(std::string_view subtag) noexcept {
    return (subtag.size() == 2 || subtag.size() == 3) && IsAlphabetic(subtag) && subtag != "und";
}

bool IsDialect(std::string_view subtag) noexcept {
    return subtag.size() == 3 && IsAlphabetic(subtag);
}

bool IsScript(std::string_view subtag) noexcept {
    return subtag.size() == 4 && IsAlphabetic(subtag);
}

// Three letters are no subtag of BCP 47's, but have an alias.
bool IsRegion(std::string_view subtag) noexcept {
    if (subtag.size() == 3 && std::ranges::all_of(subtag, IsDigit)) return true;
    return (subtag.size() == 2 || subtag.size() == 3) && IsAlphabetic(subtag);
}

bool IsVariant(std::string_view subtag) noexcept {
    if (!IsAlphanumeric(subtag)) return false;
    return (subtag.size() >= 5 && subtag.size() <= 8) || (subtag.size() == 4 && IsDigit(subtag[0]));
}

// A text taken apart, one subtag after the other.
class SubtagReader {
public:
    explicit SubtagReader(std::string_view text) noexcept : rest_(text) { Advance(); }

    // The next subtag if it is of the kind, else the empty one, which is of none.
    template <class IsKind>
    std::string_view Take(IsKind is_kind) noexcept {
        const std::string_view subtag = next_;
        if (subtag.empty() || !is_kind(subtag)) return {};
        Advance();
        return subtag;
    }

private:
    void Advance() noexcept {
        const size_t end = std::min(rest_.find('-'), rest_.size());
        next_ = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
    }

    std::string_view rest_;
    std::string_view next_;
};

TParts Parse(std::string_view text) {
    SubtagReader reader(text);
    TParts parts;
    parts.language = reader.Take(IsLanguage);
    if (parts.language.empty()) return parts;
    if (std::ranges::count(kDialectPrefixes, parts.language) != 0) {
        if (const std::string_view dialect = reader.Take(IsDialect); !dialect.empty())
            parts.language = dialect;
    }
    parts.script = reader.Take(IsScript);
    if (!parts.script.empty()) parts.script[0] = Upper(parts.script[0]);
    parts.region = reader.Take(IsRegion);
    std::ranges::transform(parts.region, parts.region.begin(), Upper);
    for (std::string_view variant; !(variant = reader.Take(IsVariant)).empty();)
        parts.variants.emplace_back(variant);
    return parts;
}

std::string_view FindLanguageAlias(std::string_view from) noexcept {
    const auto rows = RowsOf(std::span(kLanguageAliases, kLanguageAliasCount), &TLanguageAlias::from, from);
    return rows.empty() ? std::string_view() : rows.front().to.View();
}

std::span<const TSubtagAlias> FindSubtagAliases(std::string_view from) noexcept {
    return RowsOf(std::span(kSubtagAliases, kSubtagAliasCount), &TSubtagAlias::from, from);
}

std::span<const TLikelySubtags> FindLikely(std::span<const TLikelySubtags> rows,
                                           std::string_view language) noexcept {
    return RowsOf(rows, &TLikelySubtags::language, language);
}

// What a language is mostly written in, in a region if one is given; empty where that is not known.
std::string_view LikelyScript(std::string_view language, std::string_view region) noexcept {
    for (const auto &row : FindLikely({kLikelyScripts, kLikelyScriptCount}, language)) {
        if (row.region.View() == region) return kScripts[row.script].View();
    }
    const auto rows = FindLikely({kLikelySubtags, kLikelySubtagsCount}, language);
    return rows.empty() ? std::string_view() : kScripts[rows.front().script].View();
}

// Where a language is mostly written, in a script if one is given; empty where that is not known.
std::string_view LikelyRegion(std::string_view language, std::string_view script) noexcept {
    for (const auto &row : FindLikely({kLikelyRegions, kLikelyRegionCount}, language)) {
        if (kScripts[row.script].View() == script) return row.region.View();
    }
    const auto rows = FindLikely({kLikelySubtags, kLikelySubtagsCount}, language);
    return rows.empty() ? std::string_view() : rows.front().region.View();
}

// Tags that were registered as a whole, and dialects: the longest beginning that has an alias.
void ReplaceBeginning(std::string &text) {
    for (size_t end = text.size(); end != 0 && end != std::string::npos; end = text.rfind('-', end - 1)) {
        const std::string_view beginning(text.data(), end);
        if (beginning.find('-') == std::string_view::npos) return; // Replacing a language comes later.
        if (const std::string_view alias = FindLanguageAlias(beginning); !alias.empty())
            return void(text.replace(0, end, Normalized(alias)));
    }
}

void ReplaceScriptAndRegion(TParts &parts) {
    if (const auto rows = FindSubtagAliases(parts.script); !rows.empty())
        parts.script = rows.front().to.View();
    const auto rows = FindSubtagAliases(parts.region);
    if (rows.empty()) return;
    const std::string_view likely = LikelyRegion(parts.language, parts.script);
    const auto part = std::ranges::find(rows, likely, [](const auto &row) { return row.to.View(); });
    parts.region = (part != rows.end() ? *part : rows.front()).to.View();
}

void ReplaceVariants(TParts &parts) {
    for (std::string &variant : parts.variants) {
        const auto rows =
            RowsOf(std::span(kVariantAliases, kVariantAliasCount), &TVariantAlias::from, variant);
        if (!rows.empty()) variant = rows.front().to.View();
    }
    std::erase(parts.variants, "posix"); // an extension in BCP 47
    std::ranges::sort(parts.variants);
    parts.variants.erase(std::unique(parts.variants.begin(), parts.variants.end()), parts.variants.end());
}

// An alias says more than a language only where the identifier does not.
void TakeLanguage(TParts &parts, std::string_view alias) {
    TParts other = Parse(Normalized(alias));
    parts.language = std::move(other.language);
    if (parts.script.empty()) parts.script = std::move(other.script);
    if (parts.region.empty()) parts.region = std::move(other.region);
}

void ReplaceLanguage(TParts &parts) {
    const std::string prefix = parts.language + '-';
    if (const auto alias = FindLanguageAlias(prefix + Normalized(parts.region)); !alias.empty()) {
        parts.region.clear();
        TakeLanguage(parts, alias);
    }
    for (auto variant = parts.variants.begin(); variant != parts.variants.end(); ++variant) {
        const auto alias = FindLanguageAlias(prefix + *variant);
        if (alias.empty()) continue;
        parts.variants.erase(variant);
        TakeLanguage(parts, alias);
        break;
    }
    if (const auto alias = FindLanguageAlias(parts.language); !alias.empty()) TakeLanguage(parts, alias);
}

// Leaves out what goes without saying; first what does not has to be found out.
void Minimize(TParts &parts) {
    const std::string_view given = LikelyScript(parts.language, parts.region);
    if (parts.script.empty()) parts.script = given;
    const bool is_usual_there = parts.script == given;
    if (parts.region == LikelyRegion(parts.language, parts.script)) parts.region.clear();
    const bool is_usual = parts.script == LikelyScript(parts.language, {});
    if (is_usual && (is_usual_there || parts.region.empty()) && parts.language != "zh")
        parts.script.clear();
}

std::string Join(const TParts &parts) {
    std::string identifier = parts.language;
    for (const std::string *subtag : {&parts.script, &parts.region}) {
        if (!subtag->empty()) identifier.append("-").append(*subtag);
    }
    for (const std::string &variant : parts.variants) {
        if (identifier.size() + 1 + variant.size() > kMaximumLanguageIdentifier) break;
        identifier.append("-").append(variant);
    }
    return identifier;
}

std::string_view ScriptOfModifier(std::string_view modifier) {
    const auto *found =
        std::ranges::find(kScriptModifiers, Normalized(modifier), &TScriptModifier::modifier);
    return found != std::end(kScriptModifiers) ? found->script : std::string_view();
}

} // namespace

std::string CanonicalLanguageIdentifier(std::string_view identifier) {
    if (identifier.size() > kMaximumLanguageIdentifier) return {};
    std::string text = Normalized(identifier.substr(0, identifier.find_first_of(".@")));
    if (text == "c" || text == "posix") return "en";
    ReplaceBeginning(text);
    TParts parts = Parse(text);
    if (parts.language.empty()) return {};
    if (const size_t at = identifier.find('@'); at != std::string_view::npos && parts.script.empty())
        parts.script = ScriptOfModifier(identifier.substr(at + 1));
    ReplaceScriptAndRegion(parts);
    ReplaceVariants(parts);
    ReplaceLanguage(parts);
    Minimize(parts);
    return Join(parts);
}

std::vector<std::string> LanguageAndParents(std::string_view canonical) {
    std::vector<std::string> languages;
    for (std::string language(canonical); !language.empty();) {
        languages.push_back(language);
        const size_t end = language.rfind('-');
        if (end == std::string::npos || IsScript(Normalized(language.substr(end + 1)))) break;
        language = CanonicalLanguageIdentifier(std::string_view(language).substr(0, end));
    }
    return languages;
}

} // namespace vellum
