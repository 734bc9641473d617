// SPDX-License-Identifier: MIT
#include "beacon/font_names.hpp"

#include "describe/client_font_entity.hpp"
#include "platform/font/font_kind.hpp"
#include "platform/font/gx_font_round.hpp"
#include "platform/font/limits.hpp"
#include "platform/font/type_identifier.hpp"
#include "platform/val/string.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <array>
#include <set>

namespace vellum {

namespace {

constexpr std::string_view kSuffixes[] = {".ttf", ".otf",    ".ttc",    ".otc",   ".woff",   ".woff2",
                                          ".pfa", ".pfb",    ".t1",     ".t42",   ".cid",    ".pcf",
                                          ".bdf", ".pcf.gz", ".bdf.gz", ".pcf.z", ".pcf.bz2"};

// More names than any honest file has.
constexpr size_t kMostNames = 16 * 1024;

struct NameKind {
    NameAttribute attribute;
    GxNameKey key;
};

constexpr NameKind kKinds[] = {{NameAttribute::kPostScript, GxNameKey::kPostScript},
                               {NameAttribute::kFamily, GxNameKey::kPreferredFamily},
                               {NameAttribute::kFamily, GxNameKey::kFamily},
                               {NameAttribute::kStyle, GxNameKey::kPreferredSubfamily},
                               {NameAttribute::kStyle, GxNameKey::kSubfamily},
                               {NameAttribute::kFull, GxNameKey::kFull}};

char LowerCase(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool EndsWith(std::string_view name, std::string_view suffix) noexcept {
    return name.size() > suffix.size() &&
           std::ranges::equal(name.substr(name.size() - suffix.size()), suffix, {}, LowerCase);
}

class NamesOfFile {
public:
    void AddFace(const GxFont *font) {
        Add(NameAttribute::kPostScript, Adopted(GxFontCopyPostScriptName(font)));
        Add(NameAttribute::kFamily, Adopted(GxFontCopyFamilyName(font)));
        Add(NameAttribute::kFull, Adopted(GxFontCopyFullName(font)));
        for (const NameKind &kind : kKinds) Add(kind.attribute, Adopted(GxFontCopyName(font, kind.key)));
        const auto languages = GxFontCopyNameLanguages(font);
        for (const void *language : Elements(languages.Get()))
            for (const NameKind &kind : kKinds)
                Add(kind.attribute,
                    Adopted(GxFontCopyLocalizedName(font, kind.key, Text(Cast<ValString>(language)))));
    }

    // What a face without a name for its style is called.
    void AddStyle(const TClientFontEntity &face) {
        Add(NameAttribute::kStyle, Text(Cast<ValString>(face.CopySubfamilyName(false).Get())));
    }

    std::vector<IndexedName> Publish() { return {names_.begin(), names_.end()}; }

private:
    static std::string Adopted(const Ref<const ValString> &name) { return std::string(Text(name)); }

    void Add(NameAttribute attribute, std::string_view name) {
        if (!name.empty() && names_.size() < kMostNames) names_.insert({attribute, std::string(name)});
    }

    std::set<IndexedName> names_;
};

} // namespace

bool HasFontSuffix(std::string_view name) noexcept {
    return std::ranges::any_of(kSuffixes,
                               [name](std::string_view suffix) { return EndsWith(name, suffix); });
}

bool HasNoSuffix(std::string_view name) noexcept {
    return name.find('.') == std::string_view::npos;
}

bool BeginsAsFont(const std::string &path) noexcept {
    TFileIdentity identity;
    const TDescriptor file = OpenRegularFile(path.c_str(), limits::kFileSize, &identity);
    std::array<uint8_t, kSniffedBytes> head;
    if (!file.IsOpen()) return false;
    const size_t length = ReadFully(file.Get(), 0, head).length;
    const TFontKind kind = SniffFontKind({head.data(), length});
    return kind != TFontKind::kUnknown && kind != TFontKind::kPostScript && !IsCompressed(kind);
}

IndexedFile ReadFontNames(const std::string &path, const TFileIdentity &identity) {
    IndexedFile file = {identity, {}, 0, {}};
    const TValURL url = TValURL::FromPath(path);
    const GxFontRound round; // the file is opened once
    const auto fonts = GxFontCreateFontsWithURL(url.Get());
    NamesOfFile names;
    for (const void *item : Elements(fonts.Get())) {
        const auto *font = static_cast<const GxFont *>(item);
        names.AddFace(font);
        names.AddStyle(TClientFontEntity(Retain(font), nullptr));
        ++file.faces;
    }
    if (file.faces) file.content_type = Text(CopyTypeIdentifier(url.Get()));
    file.names = names.Publish();
    FacetFontPurgeCaches(TValStr(path).Get()); // it is not asked for again
    return file;
}

} // namespace vellum
