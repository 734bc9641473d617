// SPDX-License-Identifier: MIT
#include "autoactivation/found_fonts.hpp"

#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "platform/app/quarantine.hpp"
#include "platform/font/gx_font.hpp"
#include "query/comparison_key.hpp"
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

// A face with what its order depends on: a folder may hold more files than the parser keeps, and none is
// read again for each comparison.
struct OrderedFace {
    OrderedFace() noexcept = default;
    explicit OrderedFace(const ValURL *face)
        : url(Retain(face)), key(TClientFontEntity(CreateFontFromURL(face))) {}

    Ref<const ValURL> url;
    ComparisonKey key;
};

// As TClientFontEntity::CompareFontURLs orders them for a PostScript name, whatever was asked for.
Ref<const ValArray> BestFirst(const std::vector<Ref<const ValURL>> &faces) {
    TValMutableSet keys;
    keys.Add(kVLFontPropertyName);
    const auto request = keys.Publish();
    const TFontEntityComparisonContext context(request.Get());
    std::vector<OrderedFace> ordered;
    for (const auto &face : faces) ordered.emplace_back(face.Get());
    MergeSort(ordered, [&](const OrderedFace &a, const OrderedFace &b) {
        return CompareKeys(a.key, b.key, &context).order;
    });
    TValMutableArray urls;
    for (const OrderedFace &face : ordered) urls.Append(face.url.Get());
    return urls.Publish();
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
    const auto faces = WithoutDisabled(fitting.Get());
    return faces.empty() ? nullptr : BestFirst(faces);
}

bool HasQuarantinedFace(const ValArray *faces) {
    return std::ranges::any_of(Elements(faces),
                               [](const void *face) { return IsQuarantined(PathOf(face).c_str()); });
}

} // namespace vellum
