// SPDX-License-Identifier: MIT
// Writes the tables of languages (platform/locale/locale_tables.hpp) as a source file, from the locale
// database of ICU. It runs while the library is built; the library itself does without ICU. Equal
// databases give equal files.
//
//     generate_locale_tables OUTPUT
#include "platform/locale/generator/locale_database.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using namespace vellum::generator;

namespace {

std::string Quoted(const std::string &text, size_t width) {
    if (text.size() > width) throw std::runtime_error("too long for its table: " + text);
    std::string characters;
    for (const char c : text) characters += std::string(characters.empty() ? "'" : ", '") + c + "'";
    return "{{" + characters + "}}";
}

struct TWidths {
    size_t from;
    size_t to;
};

// Rows of one `from` keep their order, which tells the parts of a region apart.
void WriteAliases(std::ostream &out, const char *type, const char *table, const char *count, TWidths widths,
                  TPairs rows) {
    const auto by_from = [](const auto &a, const auto &b) { return a.first < b.first; };
    std::stable_sort(rows.begin(), rows.end(), by_from);
    out << "const " << type << ' ' << table << "[] = {\n";
    for (const auto &[from, to] : rows)
        out << "    {" << Quoted(from, widths.from) << ", " << Quoted(to, widths.to) << "},\n";
    out << "};\nconst size_t " << count << " = std::size(" << table << ");\n\n";
}

using TScripts = std::vector<std::string>;

void WriteScripts(std::ostream &out, const TScripts &scripts) {
    out << "const TShortText<4> kScripts[] = {\n";
    for (const std::string &script : scripts) out << "    " << Quoted(script, 4) << ",\n";
    out << "};\n\n";
}

void WriteLikely(std::ostream &out, const char *table, const char *count, const TScripts &scripts,
                 const std::vector<TLikelyRow> &rows) {
    out << "const TLikelySubtags " << table << "[] = {\n";
    for (const TLikelyRow &row : rows) {
        const auto script = std::lower_bound(scripts.begin(), scripts.end(), row.script) - scripts.begin();
        out << "    {" << Quoted(row.language, 3) << ", " << script << ", " << Quoted(row.region, 3)
            << "},\n";
    }
    out << "};\nconst size_t " << count << " = std::size(" << table << ");\n\n";
}

void WriteLikelySubtags(std::ostream &out) {
    const TLikely likely = LikelySubtags();
    std::set<std::string> names;
    for (const auto *rows : {&likely.by_language, &likely.by_region, &likely.by_script}) {
        for (const TLikelyRow &row : *rows) names.insert(row.script);
    }
    const TScripts scripts(names.begin(), names.end());
    if (scripts.size() > 256) throw std::runtime_error("more scripts than a byte can count");
    WriteScripts(out, scripts);
    WriteLikely(out, "kLikelySubtags", "kLikelySubtagsCount", scripts, likely.by_language);
    WriteLikely(out, "kLikelyScripts", "kLikelyScriptCount", scripts, likely.by_region);
    WriteLikely(out, "kLikelyRegions", "kLikelyRegionCount", scripts, likely.by_script);
}

void WriteSupportedLanguages(std::ostream &out) {
    out << "const TShortText<8> kSupportedLanguages[] = {\n";
    for (const std::string &language : SupportedLanguages()) out << "    " << Quoted(language, 8) << ",\n";
    out << "};\nconst size_t kSupportedLanguageCount = std::size(kSupportedLanguages);\n\n";
}

// Seven bits a byte, the lowest first.
void AppendNumber(std::string &bytes, uint32_t number) {
    for (; number >= 0x80; number >>= 7) bytes += static_cast<char>(number | 0x80);
    bytes += static_cast<char>(number);
}

std::string PackRanges(const TRanges &ranges) {
    std::string bytes;
    uint32_t end = 0;
    for (const auto &[first, last] : ranges) {
        AppendNumber(bytes, first - end);
        AppendNumber(bytes, last - first);
        end = last + 1;
    }
    return bytes;
}

void WriteBytes(std::ostream &out, const std::string &bytes) {
    constexpr size_t kBytesOnLine = 20;
    out << "const uint8_t kExemplarBytes[] = {";
    for (size_t i = 0; i < bytes.size(); ++i)
        out << (i % kBytesOnLine == 0 ? "\n    " : " ") << +static_cast<unsigned char>(bytes[i]) << ',';
    out << "\n};\n\n";
}

// Languages with equal sets share their bytes.
void WriteExemplars(std::ostream &out) {
    std::string bytes;
    std::map<std::string, size_t> offsets;
    out << "const TExemplars kExemplars[] = {\n";
    for (const auto &[language, ranges] : ExemplarSets()) {
        const std::string packed = PackRanges(ranges);
        const auto [place, is_new] = offsets.emplace(packed, bytes.size());
        if (is_new) bytes += packed;
        out << "    {" << Quoted(language, 8) << ", " << place->second << ", " << packed.size() << "},\n";
    }
    out << "};\nconst size_t kExemplarsCount = std::size(kExemplars);\n\n";
    WriteBytes(out, bytes);
}

void WriteTables(std::ostream &out) {
    out << "// SPDX-License-Identifier: MIT\n"
           "// Made by generate_locale_tables from the locale database of ICU "
        << DatabaseVersion()
        << ".\n"
           "#include \"platform/locale/locale_tables.hpp\"\n\n#include <iterator>\n\nnamespace vellum "
           "{\n\n";
    WriteAliases(out, "TLanguageAlias", "kLanguageAliases", "kLanguageAliasCount", {12, 8},
                 LanguageAliases());
    WriteAliases(out, "TSubtagAlias", "kSubtagAliases", "kSubtagAliasCount", {4, 4}, SubtagAliases());
    WriteAliases(out, "TVariantAlias", "kVariantAliases", "kVariantAliasCount", {8, 8}, VariantAliases());
    WriteLikelySubtags(out);
    WriteSupportedLanguages(out);
    WriteExemplars(out);
    out << "} // namespace vellum\n";
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: generate_locale_tables OUTPUT\n");
        return EXIT_FAILURE;
    }
    try {
        std::ofstream out(arguments[1], std::ios::binary | std::ios::trunc);
        WriteTables(out);
        out.close();
        if (!out) throw std::runtime_error(std::string("cannot write ") + arguments[1]);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "generate_locale_tables: %s\n", error.what());
        std::remove(arguments[1]); // half a file would pass for a whole one
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
