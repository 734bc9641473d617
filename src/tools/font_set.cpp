// SPDX-License-Identifier: MIT
#include "tools/font_set.hpp"

#include "tools/arguments.hpp"
#include "tools/file_faces.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <algorithm>
#include <iterator>

namespace vellum::tool {

namespace {

std::string StringIn(const ValDictionary *properties, const ValString *key) {
    return Text(StringAt(properties, key)).value_or("");
}

FoundFont Read(const ValURL *font, const ValDictionary *properties) {
    return {
        Text(ValURLGetString(font)).value_or(""),           PathOf(font),
        StringIn(properties, kVLFontPropertyName),          StringIn(properties, kVLFontPropertyFamilyName),
        StringIn(properties, kVLFontPropertySubfamilyName), StringIn(properties, kVLFontPropertyFullName)};
}

Ref<const ValSet> NameKeys() {
    const void *const keys[] = {kVLFontPropertyName, kVLFontPropertyFamilyName,
                                kVLFontPropertySubfamilyName, kVLFontPropertyFullName};
    return Adopt(ValSetCreate(keys, std::size(keys)));
}

Json OrNull(const std::string &name) {
    return name.empty() ? Json() : Json(name);
}

VLScope ScopeFor(const FontChoice &choice) {
    if (!choice.paths.empty()) return kVLScopeProcess;
    return choice.scope.empty() ? VLScope{kVLScopeAll} : ScopeOf(choice.scope);
}

} // namespace

void AddFontSetOptions(CLI::App &verb, FontChoice &choice) {
    auto *in = verb.add_option("--in", choice.paths,
                               "only the fonts of these files and folders, not the machine's")
                   ->type_name("PATH")
                   ->check(IsPath())
                   ->allow_extra_args(false);
    verb.add_option(
            "--scope", choice.scope,
            "only the fonts that this program alone has (process), or that all have (session, user)")
        ->type_name("SCOPE")
        ->check(IsScope())
        ->excludes(in);
}

FontSet::FontSet(const FontChoice &choice, VLScope more) : scope_(ScopeFor(choice)) {
    if (choice.paths.empty()) {
        if (scope_ != kVLScopeProcess && ServerIsMissed()) ReportNoServer("these are the machine's fonts");
        return;
    }
    const FontFiles files = FindFontFiles(choice.paths);
    refusals_ = files.refusals;
    size_t registered = 0;
    for (const std::string &path : files.paths) {
        if (VLRegisterFont(FileURL(path).Get(), 0, kVLScopeProcess | kVLScopeLegacyTold | more))
            ++registered;
        else
            refusals_.push_back(ExplainRefusal(path));
    }
    Report(refusals_);
    if (registered == 0) not_found_ = Judge({0, refusals_});
}

FoundFont Describe(const ValURL *font, VLScope scope) {
    return Read(font, Adopt(VLCopyPropertiesForFont(font, NameKeys().Get(), scope)).Get());
}

std::vector<FoundFont> DescribeAll(const ValArray *fonts, VLScope scope) {
    const auto properties = Adopt(VLCopyPropertiesForFonts(fonts, NameKeys().Get(), scope));
    std::vector<FoundFont> found;
    for (size_t i = 0; i < ValArrayGetCount(fonts); ++i) {
        const auto *font = static_cast<const ValURL *>(ValArrayGetValue(fonts, i));
        const void *own = ValDictionaryGetValue(properties.Get(), font);
        found.push_back(Read(font, static_cast<const ValDictionary *>(own)));
    }
    return found;
}

Json ToJson(const FoundFont &font) {
    return {{"path", font.path},
            {"url", font.url},
            {"postscriptName", OrNull(font.postscript_name)},
            {"familyName", OrNull(font.family)},
            {"subfamilyName", OrNull(font.style)},
            {"fullName", OrNull(font.full_name)}};
}

std::string NameOf(const FoundFont &font) {
    for (const std::string *name : {&font.full_name, &font.postscript_name, &font.family})
        if (!name->empty()) return Printable(*name);
    return "(without a name)";
}

std::string ToLine(const FoundFont &font) {
    return NameOf(font) + "  " + Printable(font.path);
}

} // namespace vellum::tool
