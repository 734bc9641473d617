// SPDX-License-Identifier: MIT
// Reading of font info, which comes from a file: every value is looked at before it is passed on.
#include "describe/font_info.hpp"

#include "describe/directory_flags.hpp"
#include "describe/font_properties.hpp"
#include "describe/resource_folder.hpp"
#include "ipc/encoding/flatten_context.hpp"
#include "ipc/encoding/resurrect_context.hpp"
#include "platform/fs/file_properties.hpp"
#include "values/val_array.hpp"
#include "values/val_bookmark.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace vellum {

namespace {

constinit TResourceFolder sFontInfoFolder("/FontInfo/");

bool IsOneOf(const void *value, KindSet kinds) noexcept {
    return (kinds & KindBit(ValGetType(value))) != 0;
}

// Whether a value may stand under a key; under one that is no property's, all may.
bool IsPropertyValue(const ValString *key, const void *value) {
    const PropertyRow *row = TFontProperties::Find(key);
    if (!row) return true;
    if (!IsOneOf(value, row->kinds)) return false;
    for (const void *item : Elements(Cast<ValArray>(value)))
        if (!IsOneOf(item, row->items)) return false;
    const auto *dictionary = Cast<ValDictionary>(value);
    size_t cursor = 0;
    for (const void *name, *item; ValDictionaryNext(dictionary, &cursor, &name, &item);)
        if (!Cast<ValString>(name) || !IsOneOf(item, row->items)) return false;
    return true;
}

// A key, a value or a whole fragment without separators, escaped anew as the parser escapes those of a
// face. What cannot be decoded stays as it is.
std::string EscapedAnew(std::string_view piece) {
    const TValStr decoded(Adopt(ValStringCopyRemovingPercentEscapes(TValStr(piece).Get())));
    if (!decoded) return std::string(piece);
    const TValStr also(std::string(TValStr(Retain(kVLFontURLAdditionalEscapedChars)).View()) + ";=");
    const TValStr escaped(OrBadAlloc(Adopt(ValStringCopyAddingPercentEscapes(decoded.Get(), also.Get()))));
    return std::string(escaped.View());
}

// The separators that stand in the fragment stay, and those that were escaped do: the fragment names the
// face that it named.
TValStr FragmentAnew(const TValStr &fragment) {
    if (!fragment) return TValStr();
    std::string anew;
    std::string_view rest = fragment.View();
    for (size_t end; (end = rest.find_first_of(";=")) != rest.npos; rest.remove_prefix(end + 1))
        anew += EscapedAnew(rest.substr(0, end)) + rest[end];
    return TValStr(anew + EscapedAnew(rest));
}

// A font file as it is now, and what all of its faces have from it.
class TInstalledFile {
public:
    TInstalledFile(const ValURL *url, const TValStr &path)
        : url_(TValURL::FromPath(path.View())), bookmark_(url),
          flags_(FontFlagsForDirectoryFlags(DirectoryFlags(url))) {}

    // The properties of a face, brought up to date; null for what is no face.
    Ref<const ValDictionary> Update(const ValDictionary *stored) const {
        const auto *stored_url = Cast<ValURL>(ValDictionaryGetValue(stored, kVLFontPropertyURL));
        const void *stored_flags = ValDictionaryGetValue(stored, kVLFontPropertyFlags);
        if (!stored_url || (stored_flags && !IsPropertyValue(kVLFontPropertyFlags, stored_flags)))
            return nullptr;
        TValMutableDict face = CopyProperties(stored);
        const TValStr fragment(Adopt(ValURLCopyFragment(stored_url)));
        face.Set(kVLFontPropertyURL, url_.WithFragment(FragmentAnew(fragment)).Get());
        face.Remove(kVLFontPropertyBookmark); // the file's may be gone
        face.Set(kVLFontPropertyBookmark, bookmark_.Get());
        const uint32_t flags = static_cast<uint32_t>(ReadSInt32(stored_flags)) | flags_;
        face.Set(kVLFontPropertyFlags, MakeNumber(static_cast<int32_t>(flags)).Get());
        return face.Publish();
    }

private:
    static TValMutableDict CopyProperties(const ValDictionary *stored) {
        TValMutableDict copy;
        size_t cursor = 0;
        for (const void *key, *value; ValDictionaryNext(stored, &cursor, &key, &value);) {
            const auto *name = Cast<ValString>(key);
            if (name && IsPropertyValue(name, value)) copy.Set(name, value);
        }
        return copy;
    }

    const TValURL url_;
    const TValBookmark bookmark_;
    const uint32_t flags_;
};

// What is stored for the file, null when it is no array.
TValArray ReadStored(const TFileProperties &file) {
    const auto content =
        sFontInfoFolder.Read(FontInfoFileName(file.name, file.size, file.fork_size), kMaximumFontInfoSize);
    if (!content) return TValArray();
    TValResurrectContext context(content->View().data(), content->Size());
    const auto value = context.Resurrect();
    return TValArray(Retain(Cast<ValArray>(value.Get())));
}

} // namespace

std::string FontInfoFileName(std::string_view font_name, uint64_t data_size, uint64_t fork_size) {
    char sizes[2 * 16 + 3];
    std::snprintf(sizes, sizeof sizes, ".%" PRIX64 "_%" PRIX64, data_size, fork_size);
    return std::string(font_name).append(sizes).append(".fontinfo");
}

Ref<const ValArray> TFontInfo::CreateFontInfoForFontURL(const ValURL *url) {
    if (!url || !sFontInfoFolder.Path()) return nullptr;
    const TValStr path(Adopt(ValURLCopyFileSystemPath(url)));
    const auto properties = path ? ReadFileProperties(std::string(path.View())) : std::nullopt;
    if (!properties || properties->kind != TFileKind::kRegular) return nullptr;
    const TValArray stored = ReadStored(*properties);
    if (!stored) return nullptr;
    const TInstalledFile file(url, path);
    TValMutableArray faces;
    for (const void *item : stored)
        if (const auto face = file.Update(Cast<ValDictionary>(item))) faces.Append(face.Get());
    return faces.Publish();
}

Ref<const ValData> TFontInfo::FlattenFontInfo(const ValArray *faces) {
    if (!faces) return nullptr;
    const auto content = OrBadAlloc(Adopt(ValDataCreateMutable(0)));
    TValFlattenContext context(content.Get(), false);
    context.FlattenValArray(faces);
    if (!context.IsOk() || context.GetLength() > kMaximumFontInfoSize) return nullptr;
    return content;
}

} // namespace vellum
