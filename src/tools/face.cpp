// SPDX-License-Identifier: MIT
#include "tools/face.hpp"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace vellum::tool {

namespace {

struct FormatName {
    const char *json;
    const char *text;
};

// By kVLFontFormat....
constexpr FormatName kFormatNames[] = {
    {"unrecognized", "other"},
    {"opentype-postscript", "OpenType, PostScript outlines"},
    {"opentype-truetype", "OpenType, TrueType outlines"},
    {"truetype", "TrueType"},
    {"postscript", "PostScript"},
    {"bitmap", "bitmap"},
};

const FormatName &NameOfFormat(int32_t format) {
    const auto index = static_cast<size_t>(format);
    return kFormatNames[index < std::size(kFormatNames) ? index : 0];
}

std::string TagText(uint32_t tag) {
    return {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16), static_cast<char>(tag >> 8),
            static_cast<char>(tag)};
}

std::vector<Axis> ReadAxes(const ValArray *array) {
    std::vector<Axis> axes;
    for (size_t i = 0; i < ValArrayGetCount(array); ++i) {
        const auto *axis = static_cast<const ValDictionary *>(ValArrayGetValue(array, i));
        const auto tag =
            static_cast<uint32_t>(static_cast<int64_t>(NumberAt(axis, kVLVariationAxisIdentifier)));
        axes.push_back({TagText(tag), Text(StringAt(axis, kVLVariationAxisName)),
                        NumberAt(axis, kVLVariationAxisMinValue),
                        NumberAt(axis, kVLVariationAxisDefaultValue),
                        NumberAt(axis, kVLVariationAxisMaxValue)});
    }
    return axes;
}

std::vector<std::pair<std::string, double>> ReadVariations(const ValDictionary *places) {
    std::vector<std::pair<std::string, double>> variations;
    size_t cursor = 0;
    for (const void *key; ValDictionaryNext(places, &cursor, &key, nullptr);)
        variations.emplace_back(Text(static_cast<const ValString *>(key)).value_or(""),
                                NumberAt(places, key));
    return variations;
}

std::vector<std::string> ReadTags(const ValURL *url) {
    const auto array = Adopt(VLCopyTableTagsForFont(url));
    std::vector<std::string> tags;
    for (size_t i = 0; i < ValArrayGetCount(array.Get()); ++i)
        tags.push_back(Text(static_cast<const ValString *>(ValArrayGetValue(array.Get(), i))).value_or(""));
    return tags;
}

Json ToJson(const std::optional<std::string> &text) {
    return text ? Json(*text) : Json(nullptr);
}

Json ToJson(const std::vector<Axis> &axes) {
    Json list = Json::array();
    for (const Axis &axis : axes)
        list.push_back({{"tag", axis.tag},
                        {"name", ToJson(axis.name)},
                        {"minimum", axis.minimum},
                        {"default", axis.default_value},
                        {"maximum", axis.maximum}});
    return list;
}

Json ToJson(const std::vector<std::pair<std::string, double>> &variations) {
    if (variations.empty()) return nullptr;
    Json places = Json::object();
    for (const auto &[axis, place] : variations) places[axis] = place;
    return places;
}

std::string Join(const std::vector<std::string> &words) {
    std::string line;
    for (const std::string &word : words) line += (line.empty() ? "" : " ") + word;
    return line;
}

// The places of a face on its axes differ from the defaults only for a named instance.
bool IsInstance(const Face &face) {
    return std::ranges::any_of(face.axes, [&](const Axis &axis) {
        return std::ranges::any_of(face.variations, [&](const auto &place) {
            return place.first == axis.name.value_or("") && place.second != axis.default_value;
        });
    });
}

// Lines of "  label      text", the empty ones left out.
class Lines {
public:
    explicit Lines(std::ostream &out) : out_(out) {}

    void Add(const char *label, const std::string &text) {
        if (text.empty()) return;
        out_ << "  " << label << std::string(12 - std::string_view(label).size(), ' ') << Printable(text)
             << '\n';
    }

private:
    std::ostream &out_;
};

std::string Describe(const Axis &axis) {
    std::ostringstream text;
    text << axis.tag << ' ' << axis.minimum << " to " << axis.maximum << ", " << axis.default_value
         << " by default";
    if (axis.name && *axis.name != axis.tag) text << " (" << *axis.name << ')';
    return text.str();
}

std::string Describe(const std::vector<std::pair<std::string, double>> &variations) {
    std::ostringstream text;
    for (const auto &[axis, place] : variations)
        text << (text.tellp() > 0 ? ", " : "") << axis << ' ' << place;
    return text.str();
}

} // namespace

Ref<const ValSet> FaceKeys() {
    const void *const keys[] = {
        kVLFontPropertyURL,           kVLFontPropertyName,          kVLFontPropertyFamilyName,
        kVLFontPropertyFullName,      kVLFontPropertySubfamilyName, kVLFontPropertyFormat,
        kVLFontPropertyVariationAxes, kVLFontPropertyVariations,
    };
    return Adopt(ValSetCreate(keys, std::size(keys)));
}

Face ReadFace(const ValDictionary *properties) {
    const ValURL *url = URLAt(properties, kVLFontPropertyURL);
    Face face;
    face.path = PathOf(url);
    face.url = Bytes(ValURLGetString(url));
    face.postscript_name = Text(StringAt(properties, kVLFontPropertyName));
    face.family_name = Text(StringAt(properties, kVLFontPropertyFamilyName));
    face.full_name = Text(StringAt(properties, kVLFontPropertyFullName));
    face.subfamily_name = Text(StringAt(properties, kVLFontPropertySubfamilyName));
    face.type_identifier = Text(Adopt(VLCopyTypeIdentifier(url)).Get());
    face.format = static_cast<int32_t>(NumberAt(properties, kVLFontPropertyFormat));
    face.table_tags = ReadTags(url);
    face.axes = ReadAxes(ArrayAt(properties, kVLFontPropertyVariationAxes));
    face.variations = ReadVariations(DictionaryAt(properties, kVLFontPropertyVariations));
    face.is_instance = IsInstance(face);
    return face;
}

Json ToJson(const Face &face) {
    return {
        {"path", face.path},
        {"url", face.url},
        {"postscriptName", ToJson(face.postscript_name)},
        {"familyName", ToJson(face.family_name)},
        {"fullName", ToJson(face.full_name)},
        {"subfamilyName", ToJson(face.subfamily_name)},
        {"format", NameOfFormat(face.format).json},
        {"typeIdentifier", ToJson(face.type_identifier)},
        {"instance", face.is_instance},
        {"tableTags", face.table_tags},
        {"axes", ToJson(face.axes)},
        {"variations", ToJson(face.variations)},
    };
}

std::string ToText(const Face &face, bool colour) {
    std::ostringstream out;
    const std::string title = face.full_name.value_or(face.family_name.value_or("(without a name)"));
    out << (colour ? "\033[1m" : "") << Printable(title) << (colour ? "\033[0m" : "") << '\n';
    Lines lines(out);
    lines.Add("PostScript", face.postscript_name.value_or(""));
    lines.Add("family", face.family_name.value_or(""));
    lines.Add("style", face.subfamily_name.value_or(""));
    lines.Add("format", std::string(NameOfFormat(face.format).text) +
                            (face.type_identifier ? " (" + *face.type_identifier + ")" : ""));
    lines.Add("URL", face.url);
    for (const Axis &axis : face.axes) lines.Add("axis", Describe(axis));
    lines.Add("instance", face.is_instance ? Describe(face.variations) : "");
    lines.Add("tables", Join(face.table_tags));
    return out.str();
}

} // namespace vellum::tool
