// SPDX-License-Identifier: MIT
#include "describe/registration_info.hpp"

#include "describe/basic_font_entity.hpp"
#include "describe/client_font_entity.hpp"
#include "describe/font_info.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "platform/fs/file_properties.hpp"
#include "values/val_array.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

namespace vellum {

namespace {

bool IsNamed(const TFontEntity &face, const TValStr &fragment) {
    return !fragment || face.MatchesFragment(fragment.Get());
}

Ref<const ValDictionary> CopyPrepared(const ValURL *url, const TValStr &fragment) {
    const auto faces = TFontInfo::CreateFontInfoForFontURL(url);
    for (const void *item : Elements(faces.Get())) {
        auto properties = Retain(static_cast<const ValDictionary *>(item));
        if (IsNamed(TBasicFontEntity(properties), fragment)) return properties;
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
    const auto fonts = CreateFontsFromURL(file.Get());
    const auto properties = ReadFileProperties(std::string(file.Path().View()));
    if (!fonts || !properties || TGxFont::IsInMemoryURL(file.Get())) return {};
    TValMutableArray faces;
    for (const void *font : Elements(fonts.Get())) {
        const TClientFontEntity face(Retain(static_cast<const GxFont *>(font)));
        faces.Append(face.CopyRegistrationProperties().Get());
    }
    const std::string name = FontInfoFileName(properties->name, properties->size, properties->fork_size);
    return {OrBadAlloc(Adopt(ValStringCreateWithFileSystemRepresentation(name.data(), name.size()))),
            TFontInfo::FlattenFontInfo(faces.Publish().Get())};
}

} // namespace vellum
