// SPDX-License-Identifier: MIT
// Looking a face up in its file's metadata:
//
//     <array>
//         <dict>
//             <key>MTD_FontFile_FileName</key> <string>Foo.ttf</string>
//             <key>MTD_FontFile_MeridianInstallLocation</key> <string>/usr/share/fonts</string>
//             <key>MTD_FontFile_DataForkSize</key> <integer>12345</integer>
//             <key>MTD_FontFile_ResourceForkSize</key> <integer>0</integer>
//             <key>MTD_Typeface_List</key>
//             <array>
//                 <dict> <key>MTD_Typeface_ID_sfnt_PostscriptName</key> <string>Foo</string> ... </dict>
//             </array>
//         </dict>
//     </array>
#include "describe/font_metadata.hpp"

#include "describe/gx_font_wrapper.hpp"
#include "describe/resource_folder.hpp"
#include "platform/app/property_list.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/fs/link_target.hpp"
#include "platform/log/log.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/process/process.hpp"
#include "platform/val/static_string.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vellum {

namespace {

constinit TResourceFolder sMetadataFolder("/FontMetadata/");

constexpr std::string_view kFileNameEnd = ".vlist";

constinit const StaticString kFileName("MTD_FontFile_FileName");
constinit const StaticString kInstallLocation("MTD_FontFile_MeridianInstallLocation");
constinit const StaticString kDataForkSize("MTD_FontFile_DataForkSize");
constinit const StaticString kResourceForkSize("MTD_FontFile_ResourceForkSize");
constinit const StaticString kTypefaceList("MTD_Typeface_List");
constinit const StaticString kSfntPostScriptName("MTD_Typeface_ID_sfnt_PostscriptName");
constinit const StaticString kFountPostScriptName("MTD_Typeface_ID_Fount_PostscriptName");
constinit const StaticString kPrimaryScript("MTD_Typeface_Repertoire_PrimaryScript");

// The numbers are those of the scripts in the font tables of platform 1.
struct ScriptRow {
    std::string_view script;
    uint32_t encoding;
};

constexpr ScriptRow kScripts[] = {
    {"Latin", 0},      {"Japanese", 1},    {"Chinese-Traditional", 2},
    {"Korean", 3},     {"Arabic", 4},      {"Hebrew", 5},
    {"Greek", 6},      {"Cyrillic", 7},    {"Devanagari", 9},
    {"Gurmikhi", 10}, // as the builders write it
    {"Gujarati", 11},  {"Oriya", 12},      {"Bengali", 13},
    {"Tamil", 14},     {"Telugu", 15},     {"Kannada", 16},
    {"Malayalam", 17}, {"Sinhalese", 18},  {"Burmese", 19},
    {"Khmer", 20},     {"Thai", 21},       {"Laotian", 22},
    {"Georgian", 23},  {"Armenian", 24},   {"Chinese-Simplified", 25},
    {"Tibetan", 26},   {"Mongolian", 27},  {"Geez", 28},
    {"Slavic", 29},    {"Vietnamese", 30}, {"Sindhi", 4}, // deliberate: it is written in Arabic letters
};

std::string_view LastComponent(std::string_view path) noexcept {
    return path.substr(path.rfind('/') + 1);
}

template <class T>
const T *Find(const ValDictionary *dictionary, const ValString &key) noexcept {
    return Cast<T>(ValDictionaryGetValue(dictionary, &key));
}

// Whether a size in an entry is the file's. One that is not given counts as 0; what is no number is
// none's size.
bool IsSize(const void *value, uint64_t size) noexcept {
    const bool reads = !value || Cast<ValNumber>(value) || Cast<ValBoolean>(value);
    const int64_t number = ReadSInt64(value);
    return reads && number >= 0 && static_cast<uint64_t>(number) == size;
}

// The font file that an entry is sought for.
class TSoughtFile {
public:
    TSoughtFile(std::string_view path, bool verify) : verify_(verify), name_(LastComponent(path)) {
        if (!verify) return;
        paths_ = LinkTargets(std::string(path));
        paths_.emplace_back(path);
        properties_ = ReadFileProperties(std::string(path));
    }

    const std::string &Name() const noexcept { return name_; }

    bool Matches(const ValDictionary *entry) const {
        const auto *name = Find<ValString>(entry, kFileName);
        if (!name) return false;
        return verify_ ? IsInstalledHere(entry, Text(name)) : Text(name) == name_;
    }

private:
    bool IsInstalledHere(const ValDictionary *entry, std::string_view name) const {
        const auto *location = Find<ValString>(entry, kInstallLocation);
        if (!location || !properties_) return false;
        std::string path(Text(location));
        if (!path.ends_with('/')) path += '/';
        path += name;
        return std::ranges::find(paths_, path) != paths_.end() &&
               IsSize(ValDictionaryGetValue(entry, &kDataForkSize), properties_->size) &&
               IsSize(ValDictionaryGetValue(entry, &kResourceForkSize), properties_->fork_size);
    }

    const bool verify_;
    const std::string name_;
    std::vector<std::string> paths_; // these two are looked up to verify only
    std::optional<TFileProperties> properties_;
};

// The metadata of a font file: an array, or null for what is none.
Ref<const void> ReadMetadata(const std::string &font_name) {
    const auto content =
        sMetadataFolder.Read(font_name + std::string(kFileNameEnd), kMaximumPropertyListSize);
    return content ? ReadPropertyList(content->View().data(), content->Size()) : nullptr;
}

// The last file that was read: the faces of one font file are mostly asked about one after the other, and
// share what it says.
class TLastMetadata {
public:
    Ref<const void> Copy(const std::string &font_name) {
        const ValString *folder = sMetadataFolder.Path();
        if (!folder) return nullptr;
        const auto now =
            ReadFileProperties(std::string(Text(folder)) + font_name + std::string(kFileNameEnd));
        if (!now) return nullptr;
        {
            const std::lock_guard lock(mutex_);
            if (file_ && file_->IsOfSameState(*now)) return content_;
        }
        const uint32_t failures = tPassingFailures;
        auto content = ReadMetadata(font_name);
        if (failures != tPassingFailures) return content;
        auto replaced = content; // dies outside of the lock
        const std::lock_guard lock(mutex_);
        std::swap(content_, replaced);
        file_ = now;
        return content;
    }

private:
    std::mutex mutex_; // guards what follows
    std::optional<TFileProperties> file_;
    Ref<const void> content_;
};

// Never destroyed: programs ask for fonts until they end.
TLastMetadata &LastMetadata() {
    static TLastMetadata &sLast = *new TLastMetadata;
    return sLast;
}

const ValDictionary *FindEntry(const ValArray *entries, const TSoughtFile &file) {
    for (const void *item : Elements(entries)) {
        const auto *entry = Cast<ValDictionary>(item);
        if (entry && file.Matches(entry)) return entry;
    }
    return nullptr;
}

const ValDictionary *FindFaceNamed(const ValArray *faces, const ValString *name) noexcept {
    const auto has_name = [name](const ValDictionary *face, const ValString &key) {
        const auto *own = Find<ValString>(face, key);
        return own && ValEqual(own, name);
    };
    for (const void *item : Elements(faces)) {
        const auto *face = Cast<ValDictionary>(item);
        if (has_name(face, kSfntPostScriptName) || has_name(face, kFountPostScriptName)) return face;
    }
    return nullptr;
}

// The PostScript name that an item of a fragment asks for; null when it asks for something else. The
// separators were sought in the escaped text, so that escaped ones are part of names.
Ref<const ValString> PostScriptNameIn(const ValString *item) {
    const TValArray pieces(Adopt(ValStringCopyComponents(item, kVLFontURLParameterKeyValueSeparator)));
    if (pieces.Count() != 2) return nullptr;
    const auto key = Adopt(ValStringCopyRemovingPercentEscapes(pieces.At<ValString>(0)));
    if (!ValEqual(key.Get(), kVLFontURLParameterPostScriptName)) return nullptr;
    return Adopt(ValStringCopyRemovingPercentEscapes(pieces.At<ValString>(1)));
}

// The face that the fragment names, else the first; null when that is no dictionary.
const ValDictionary *ChooseFace(const ValArray *faces, const ValString *fragment) {
    const TValArray items(Adopt(ValStringCopyComponents(fragment, kVLFontURLParameterSeparator)));
    for (const void *item : items) {
        const auto name = PostScriptNameIn(Cast<ValString>(item));
        if (!name) continue;
        if (const ValDictionary *face = FindFaceNamed(faces, name.Get())) return face;
    }
    return Cast<ValDictionary>(ValArrayGetValue(faces, 0));
}

// For those who make the files: the variable shows them who reads metadata meanwhile. The text is kept as
// it stands, since programs look for it.
void CheckAccess(const ValURL *url) noexcept {
    if (!GetEnvironment("VL_METADATA_CHECK")) return;
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    Log(LogLevel::kWarning,
        "REMOVE BEF SHIPPING: Accessing metadata for %@. Only OK while generating dump files\n",
        ValURLGetString(absolute.Get()));
}

} // namespace

Ref<const ValDictionary> TFontMetadata::CreateMetadataForFontURL(const ValURL *url, bool verify) {
    if (!url || !sMetadataFolder.Path() || TGxFont::IsInMemoryURL(url)) return nullptr;
    const TValStr path(Adopt(ValURLCopyFileSystemPath(url)));
    if (!path) return nullptr;
    const TSoughtFile file(path.View(), verify);
    const auto metadata = LastMetadata().Copy(file.Name());
    const ValDictionary *entry = FindEntry(Cast<ValArray>(metadata.Get()), file);
    if (!entry) return nullptr;
    CheckAccess(url);
    const auto fragment = Adopt(ValURLCopyFragment(url));
    return Retain(ChooseFace(Find<ValArray>(entry, kTypefaceList), fragment.Get()));
}

uint32_t TFontMetadata::GetStringEncoding() const noexcept {
    const auto *script = Get<ValString>(&kPrimaryScript);
    if (!script) return kNoStringEncoding;
    const auto *row = std::ranges::find(kScripts, Text(script), &ScriptRow::script);
    return row == std::end(kScripts) ? kNoStringEncoding : row->encoding;
}

} // namespace vellum
