// SPDX-License-Identifier: MIT
#include "autoactivation/found_fonts.hpp"

#include "describe/client_font_entity.hpp"
#include "platform/app/quarantine.hpp"
#include "platform/font/gx_font.hpp"
#include "values/merge_sort.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <algorithm>
#include <string>

namespace vellum {

namespace {

std::string PathOf(const void *url) {
    return std::string(TValURL(Retain(Cast<ValURL>(url))).Path().View());
}

std::string FolderOf(const void *file) {
    const std::string path = PathOf(file);
    return path.substr(0, path.rfind('/') + 1);
}

void AppendFittingFaces(const ValURL *file, const ValDictionary *request, TValMutableArray &faces) {
    const auto fonts = GxFontCreateFontsWithURL(file);
    for (const void *font : Elements(fonts.Get())) {
        const TClientFontEntity face(Retain(static_cast<const GxFont *>(font)));
        if (face.MatchesProperties(request)) faces.Append(face.GetURL());
    }
}

// Null, of a face that no register knows, says nothing; nor does what is neither truth nor number.
bool SaysDisabled(const void *enabled) {
    return (Cast<ValBoolean>(enabled) || Cast<ValNumber>(enabled)) && ReadFloat64(enabled) == 0;
}

std::vector<Ref<const ValURL>> WithoutDisabled(const ValArray *faces) {
    const auto enabled = Adopt(VLCopyPropertyForFonts(faces, kVLFontPropertyEnabled, kVLScopeAll));
    std::vector<Ref<const ValURL>> left;
    for (const void *face : Elements(faces))
        if (!SaysDisabled(ValDictionaryGetValue(enabled.Get(), face)))
            left.push_back(Retain(Cast<ValURL>(face)));
    return left;
}

// As of a request for a PostScript name, whatever was asked for.
void SortBestFirst(std::vector<Ref<const ValURL>> &faces) {
    TValMutableSet keys;
    keys.Add(kVLFontPropertyName);
    const auto request = keys.Publish();
    const TFontEntityComparisonContext context(request.Get());
    MergeSort(faces, [&](const Ref<const ValURL> &a, const Ref<const ValURL> &b) {
        return TClientFontEntity::CompareFontURLs(a.Get(), b.Get(), &context);
    });
}

} // namespace

std::vector<Ref<const ValArray>> GroupByFolder(const ValArray *files) {
    std::vector<std::string> folders;
    std::vector<TValMutableArray> groups;
    for (const void *file : Elements(files)) {
        const std::string folder = FolderOf(file);
        const auto known = std::ranges::find(folders, folder);
        const auto at = static_cast<size_t>(known - folders.begin());
        if (known == folders.end()) {
            folders.push_back(folder);
            groups.emplace_back();
        }
        groups[at].Append(file);
    }
    std::vector<Ref<const ValArray>> published;
    for (TValMutableArray &group : groups) published.push_back(group.Publish());
    return published;
}

Ref<const ValArray> CopyFittingFaces(const ValArray *files, const ValDictionary *request) {
    TValMutableArray fitting;
    for (const void *file : Elements(files)) AppendFittingFaces(Cast<ValURL>(file), request, fitting);
    if (fitting.IsEmpty()) return nullptr;
    auto faces = WithoutDisabled(fitting.Get());
    if (faces.empty()) return nullptr;
    SortBestFirst(faces);
    TValMutableArray sorted;
    for (const auto &face : faces) sorted.Append(face.Get());
    return sorted.Publish();
}

bool HasQuarantinedFace(const ValArray *faces) {
    return std::ranges::any_of(Elements(faces),
                               [](const void *face) { return IsQuarantined(PathOf(face).c_str()); });
}

} // namespace vellum
