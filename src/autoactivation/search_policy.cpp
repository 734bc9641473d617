// SPDX-License-Identifier: MIT
// Which names fonts are searched by, and which of the files that are found may be activated.
#include "autoactivation/auto_activation_manager.hpp"
#include "platform/font/type_identifier.hpp"
#include "platform/fs/directory.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/fs/volume_root.hpp"
#include "platform/val/string.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <string>

namespace vellum {

namespace {

constexpr char kMark[] = ".FountDoNotAutoActivate";

// Of a PostScript name. What PostScript itself takes for an end, and what ends a word of a query.
constexpr std::string_view kNotInPostScriptNames = "{}<>[]()/%\"";

bool IsInPostScriptNames(char c) noexcept {
    return c >= 33 && c <= 126 && kNotInPostScriptNames.find(c) == std::string_view::npos;
}

bool HasMark(const std::string &folder) {
    return HasEntry(folder, kMark);
}

} // namespace

bool TAutoActivationManager::IsValidNameToQuery(const ValString *name, const ValString *key) noexcept {
    const std::string_view text = Text(name);
    if (text.empty() || text.front() == ' ' || text.back() == ' ') return false;
    return !ValEqual(key, kVLFontPropertyName) || std::ranges::all_of(text, IsInPostScriptNames);
}

bool TAutoActivationManager::IsValidFileForAutoActivation(const ValURL *file) {
    const TValURL url(Retain(file));
    const std::string path(url.Path().View());
    const std::string volume = VolumeRoot(path);
    if (volume.empty() || HasMark(volume)) return false;
    const auto properties = ReadFileProperties(path);
    if (!properties || properties->parent.empty() || HasMark(properties->parent)) return false;
    return !ConformsToTypeTag(file, "com.adobe.postscript-ptfn-font");
}

} // namespace vellum
