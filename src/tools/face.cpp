// SPDX-License-Identifier: MIT
#include "tools/face.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

namespace vellum::tool {

namespace {

// The kinds of names that there are lists of.
constexpr size_t kNameKinds = 6;

// The places of a face on its axes differ from the defaults only for a named instance.
bool IsInstance(const Json &axes, const Json &variations) {
    return std::ranges::any_of(axes, [&](const Json &axis) {
        const auto place = variations.find(axis.at("name"));
        return place != variations.end() && *place != axis.at("default");
    });
}

Json ReadNames(const ValURL *url) {
    Json names = Json::object();
    for (const FaceProperty &property : FaceProperties().first(kNameKinds)) {
        const auto list = Adopt(VLCopyNamesForFont(url, *property.key));
        names[property.name] = list ? ToJson(list.Get()) : Json::array();
    }
    return names;
}

Json ReadTags(const ValURL *url) {
    const auto tags = Adopt(VLCopyTableTagsForFont(url));
    return tags ? ToJson(tags.Get()) : Json::array();
}

// What the library tells beside the properties. An instance is known by where it stands on its axes.
struct FaceFact {
    const char *name;
    Json (*read)(const ValDictionary *properties, const ValURL *url);
};

constexpr FaceFact kFacts[] = {
    {"path", [](const ValDictionary *, const ValURL *url) { return Json(PathOf(url)); }},
    {"typeIdentifier", [](const ValDictionary *,
                          const ValURL *url) { return ToJson(Adopt(VLCopyTypeIdentifier(url)).Get()); }},
    {"instance",
     [](const ValDictionary *properties, const ValURL *) {
         const Json axes = PropertyOf(properties, kVLFontPropertyVariationAxes);
         return Json(IsInstance(axes, PropertyOf(properties, kVLFontPropertyVariations)));
     }},
    {"tableTags", [](const ValDictionary *, const ValURL *url) { return ReadTags(url); }},
    {"names", [](const ValDictionary *, const ValURL *url) { return ReadNames(url); }},
};

// Every answer's name, for people who asked for one that there is not.
std::string AllNames() {
    std::string names;
    for (const FaceProperty &property : FaceProperties()) names += std::string(property.name) + ", ";
    for (const FaceFact &fact : kFacts) names += std::string(fact.name) + ", ";
    return names.substr(0, names.size() - 2);
}

// The name of an answer from that name or from a property's key; empty for neither.
std::string NameOf(const std::string &text) {
    for (const FaceProperty &property : FaceProperties())
        if (text == property.name || text == Bytes(*property.key)) return property.name;
    for (const FaceFact &fact : kFacts)
        if (text == fact.name) return fact.name;
    return {};
}

} // namespace

FaceQuestion::FaceQuestion(const std::string &name) : name_(NameOf(name)) {
    if (name_.empty())
        throw CLI::ValidationError("--property", "there is no property '" + Printable(name) +
                                                     "'; there are " + AllNames());
}

Ref<const ValSet> FaceQuestion::Keys() const {
    std::vector<const void *> keys = {kVLFontPropertyURL};
    for (const FaceProperty &property : FaceProperties())
        if (IsAbout(property.name)) keys.push_back(*property.key);
    if (IsAbout("instance"))
        keys.insert(keys.end(), {kVLFontPropertyVariationAxes, kVLFontPropertyVariations});
    return Adopt(ValSetCreate(keys.data(), keys.size()));
}

Json ReadFace(const ValDictionary *properties, const FaceQuestion &question) {
    const ValURL *url = URLAt(properties, kVLFontPropertyURL);
    Json face = {{"path", PathOf(url)}};
    for (const FaceProperty &property : FaceProperties())
        if (question.IsAbout(property.name)) face[property.name] = PropertyOf(properties, *property.key);
    for (const FaceFact &fact : kFacts)
        if (question.IsAbout(fact.name)) face[fact.name] = fact.read(properties, url);
    return face;
}

} // namespace vellum::tool
