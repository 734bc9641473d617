// SPDX-License-Identifier: MIT
// A face for people to read: its answers as a few lines, the empty ones left out.
#include "tools/face.hpp"
#include "tools/lines.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace vellum::tool {

namespace {

struct Word {
    const char *json;
    const char *text;
};
constexpr Word kFormats[] = {
    {"unrecognized", "other"},
    {"opentype-postscript", "OpenType, PostScript outlines"},
    {"opentype-truetype", "OpenType, TrueType outlines"},
    {"truetype", "TrueType"},
    {"postscript", "PostScript"},
    {"bitmap", "bitmap"},
};

struct Bit {
    uint32_t bit;
    const char *text;
};
constexpr Bit kTraitBits[] = {{kVLFontTraitBold, "bold"},
                              {kVLFontTraitItalic, "italic"},
                              {kVLFontTraitExpanded, "expanded"},
                              {kVLFontTraitCondensed, "condensed"},
                              {kVLFontTraitMonospace, "monospaced"}};
constexpr Bit kFlagBits[] = {{kVLFontFlagHidden, "hidden"},
                             {kVLFontFlagSystem, "of the system"},
                             {kVLFontFlagCritical, "critical"},
                             {kVLFontFlagSuperCritical, "super-critical"},
                             {kVLFontFlagUserInterface, "user interface"},
                             {kVLFontFlagLastResort, "last resort"},
                             {kVLFontFlagKeyboard, "keyboard"}};

// Classes of faces, as the high byte of OS/2's sFamilyClass numbers them.
constexpr const char *kClasses[] = {nullptr,         "old-style serifs", "transitional serifs",
                                    "modern serifs", "clarendon serifs", "slab serifs",
                                    nullptr,         "freeform serifs",  "sans serif",
                                    "ornamental",    "script",           nullptr,
                                    "symbolic"};

// The scripts of platform 1, as OpenType's cmap table numbers them: legacy encodings have their numbers.
constexpr const char *kScripts[] = {"Roman",
                                    "Japanese",
                                    "Traditional Chinese",
                                    "Korean",
                                    "Arabic",
                                    "Hebrew",
                                    "Greek",
                                    "Cyrillic",
                                    "symbols",
                                    "Devanagari",
                                    "Gurmukhi",
                                    "Gujarati",
                                    "Oriya",
                                    "Bengali",
                                    "Tamil",
                                    "Telugu",
                                    "Kannada",
                                    "Malayalam",
                                    "Sinhala",
                                    "Burmese",
                                    "Khmer",
                                    "Thai",
                                    "Lao",
                                    "Georgian",
                                    "Armenian",
                                    "Simplified Chinese",
                                    "Tibetan",
                                    "Mongolian",
                                    "Ethiopic",
                                    "Slavic",
                                    "Vietnamese",
                                    "Sindhi"};

std::string TextAt(const Json &face, const char *name) {
    const Json &answer = face.at(name);
    return answer.is_string() ? answer.get<std::string>() : std::string();
}

// Bits as words; the first of them may be something else already.
std::string Named(uint32_t bits, std::span<const Bit> names, std::string text = {}) {
    for (const Bit &row : names)
        if ((bits & row.bit) != 0) text += (text.empty() ? "" : ", ") + std::string(row.text);
    return text;
}

std::string Join(const Json &texts) {
    std::string line;
    for (const Json &text : texts)
        if (text.is_string()) line += (line.empty() ? "" : " ") + text.get<std::string>();
    return line;
}

std::string DescribeFormat(const Json &face) {
    const auto *format = std::ranges::find(kFormats, TextAt(face, "format"), &Word::json);
    const std::string type = TextAt(face, "typeIdentifier");
    return (format == std::end(kFormats) ? "other" : format->text) +
           (type.empty() ? "" : " (" + type + ")");
}

std::string DescribeTraits(const Json &traits) {
    if (traits.is_null()) return {};
    const auto symbolic = traits.at("symbolic").get<uint32_t>();
    const size_t number = symbolic >> 28;
    const char *face_class = number < std::size(kClasses) ? kClasses[number] : nullptr;
    std::ostringstream text;
    text << "weight " << traits.at("weight") << ", width " << traits.at("width") << ", slant "
         << traits.at("slant");
    const std::string words = Named(symbolic, kTraitBits, face_class ? face_class : "");
    if (!words.empty()) text << " (" << words << ')';
    return text.str();
}

std::string DescribeLanguages(const Json &languages) {
    if (!languages.is_array()) return {};
    return std::to_string(languages.size()) + ": " + Join(languages);
}

std::string DescribeAxis(const Json &axis) {
    std::ostringstream text;
    const auto tag = axis.at("tag").get<std::string>();
    text << tag << ' ' << axis.at("minimum").get<double>() << " to " << axis.at("maximum").get<double>()
         << ", " << axis.at("default").get<double>() << " by default";
    if (axis.at("name").is_string() && axis.at("name") != tag)
        text << " (" << axis.at("name").get<std::string>() << ')';
    return text.str();
}

std::string DescribePlaces(const Json &variations) {
    std::ostringstream text;
    for (const auto &[axis, place] : variations.items())
        text << (text.tellp() > 0 ? ", " : "") << axis << ' ' << place.get<double>();
    return text.str();
}

std::string DescribeEncoding(const Json &encoding) {
    if (encoding.is_null()) return {};
    const auto number = encoding.get<uint32_t>();
    if (number == kValStringEncodingUnicode) return {}; // as almost every font
    return number < std::size(kScripts) ? kScripts[number] : "script " + std::to_string(number);
}

// The names by which speakers of other languages know the face.
void AddOtherNames(Lines &lines, const Json &face) {
    const Json &localized = face.at("localizedNames");
    if (!localized.is_object()) return;
    for (const auto &[language, names] : localized.items()) {
        const Json family = names.value("familyName", Json());
        const Json full = names.value("fullName", Json());
        const Json &name = full.is_string() && full != face.at("fullName") ? full : family;
        if (!name.is_string() || name == face.at("familyName") || name == face.at("fullName")) continue;
        lines.Add("in " + language, name.get<std::string>());
    }
}

} // namespace

std::string ToText(const Json &face, bool colour) {
    std::ostringstream out;
    std::string title = TextAt(face, "fullName");
    if (title.empty()) title = TextAt(face, "familyName");
    if (title.empty()) title = "(without a name)";
    out << (colour ? "\033[1m" : "") << Printable(title) << (colour ? "\033[0m" : "") << '\n';
    Lines lines(out);
    lines.Add("PostScript", TextAt(face, "postscriptName"));
    lines.Add("family", TextAt(face, "familyName"));
    lines.Add("style", TextAt(face, "subfamilyName"));
    AddOtherNames(lines, face);
    lines.Add("version", TextAt(face, "versionName"));
    lines.Add("format", DescribeFormat(face));
    lines.Add("traits", DescribeTraits(face.at("traits")));
    lines.Add("flags", Named(face.at("flags").get<uint32_t>(), kFlagBits));
    lines.Add("characters", Grouped(face.at("characterSet").at("count").get<size_t>()));
    lines.Add("languages", DescribeLanguages(face.at("supportedLanguages")));
    lines.Add("designed for",
              face.at("designLanguages").is_array() ? Join(face.at("designLanguages")) : "");
    lines.Add("encoding", DescribeEncoding(face.at("stringEncoding")));
    for (const Json &axis : face.at("axes")) lines.Add("axis", DescribeAxis(axis));
    lines.Add("instance", face.at("instance").get<bool>() ? DescribePlaces(face.at("variations")) : "");
    lines.Add("tables", Join(face.at("tableTags")));
    lines.Add("copyright", TextAt(face, "copyrightName"));
    lines.Add("URL", TextAt(face, "url"));
    return out.str();
}

std::string ToLine(const Json &answer) {
    const auto is_plain = [](const Json &value) { return value.is_string() || value.is_number(); };
    if (answer.is_null()) return {};
    if (answer.is_string()) return Printable(answer.get<std::string>());
    if (!answer.is_array() || !std::ranges::all_of(answer, is_plain)) return Dump(answer, -1);
    std::string line;
    for (const Json &value : answer) line += (line.empty() ? "" : " ") + ToLine(value);
    return line;
}

} // namespace vellum::tool
