// SPDX-License-Identifier: MIT
#include "describe/registration_info.hpp"

#include "describe/basic_font_entity.hpp"
#include "describe/client_font_entity.hpp"
#include "describe/font_info.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/process/passing_failures.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <string>
#include <string_view>

namespace vellum {

namespace {

bool IsNamed(const TFontEntity &face, const TValStr &fragment) {
    return !fragment || face.MatchesFragment(fragment.Get());
}

// Properties without what tells where the file lies: readers know better, and the same font gives the same
// bytes everywhere.
Ref<const ValDictionary> WithoutPlace(const ValDictionary *properties, std::string_view file_name) {
    TValMutableDict kept;
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(properties, &cursor, &key, &value);) {
        if (!ValEqual(key, kVLFontPropertyBookmark)) kept.Set(key, value);
    }
    const auto *url = Cast<ValURL>(ValDictionaryGetValue(properties, kVLFontPropertyURL));
    const TValStr fragment(Adopt(ValURLCopyFragment(url)));
    const TValURL here = TValURL::FromPath("/" + std::string(file_name)).WithFragment(fragment);
    kept.Remove(kVLFontPropertyURL);
    kept.Set(kVLFontPropertyURL, here.Get());
    return kept.Publish();
}

Ref<const ValDictionary> CopyPrepared(const ValURL *url, const TValStr &fragment) {
    const auto faces = TFontInfo::CreateFontInfoForFontURL(url);
    for (const void *item : Elements(faces.Get())) {
        auto properties = Retain(static_cast<const ValDictionary *>(item));
        const TBasicFontEntity face(properties);
        if (IsNamed(face, fragment)) return face.CopyRegistrationProperties();
    }
    return nullptr;
}

Ref<const ValDictionary> Compute(const ValURL *url, const TValStr &fragment) {
    const auto faces = CreateFontsFromURL(url);
    for (const void *item : Elements(faces.Get())) {
        const TClientFontEntity face(Retain(static_cast<const GxFont *>(item)));
        if (IsNamed(face, fragment)) return face.CopyRegistrationProperties();
    }
    return nullptr;
}

} // namespace

Ref<const ValDictionary> CopyRegistrationInfo(const ValURL *url, bool use_font_info) {
    const TValStr fragment = TValURL(Retain(url)).Fragment();
    if (use_font_info) {
        if (auto prepared = CopyPrepared(url, fragment)) return prepared;
    }
    return Compute(url, fragment);
}

FontInfoFile MakeFontInfo(const ValURL *url) {
    const TValURL file = TValURL(Retain(url)).Absolute().WithFragment(TValStr());
    const std::string path(file.Path().View());
    const uint32_t failures = tPassingFailures;
    const auto properties = ReadFileProperties(path);
    const auto fonts = CreateFontsFromURL(file.Get());
    if (!fonts || !properties || TGxFont::IsInMemoryURL(file.Get())) return {};
    TValMutableArray faces;
    for (const void *font : Elements(fonts.Get())) {
        const TClientFontEntity face(Retain(static_cast<const GxFont *>(font)));
        faces.Append(WithoutPlace(face.CopyRegistrationProperties().Get(), properties->name).Get());
    }
    // Nobody would notice that something is missing, or of another file.
    const auto now = ReadFileProperties(path);
    if (failures != tPassingFailures || !now || !now->IsOfSameState(*properties)) return {};
    const std::string name = FontInfoFileName(properties->name, properties->size, properties->fork_size);
    return {OrBadAlloc(Adopt(ValStringCreateWithFileSystemRepresentation(name.data(), name.size()))),
            TFontInfo::FlattenFontInfo(faces.Publish().Get())};
}

} // namespace vellum
