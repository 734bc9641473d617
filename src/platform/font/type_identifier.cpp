// SPDX-License-Identifier: MIT
// The tables of type identifiers: which kind of file has which, and what each is a case of.
#include "platform/font/type_identifier.hpp"

#include "platform/font/font_kind.hpp"
#include "platform/font/font_source.hpp"
#include "platform/font/freetype_library.hpp"
#include "platform/font/guarded.hpp"
#include "platform/font/inflate.hpp"
#include "platform/font/resource_fork.hpp"
#include "platform/val/static_string.hpp"
#include "platform/val/string.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <string>

namespace vellum {
namespace {

constinit const StaticString kTrueType("public.truetype-ttf-font");
constinit const StaticString kTrueTypeCollection("public.truetype-collection-font");
constinit const StaticString kOpenType("public.opentype-font");
constinit const StaticString kOpenTypeCollection("public.opentype-collection-font");
constinit const StaticString kPostScript("com.adobe.postscript-font");
constinit const StaticString kPostScriptText("com.adobe.postscript-pfa-font");
constinit const StaticString kPostScriptBinary("com.adobe.postscript-pfb-font");
constinit const StaticString kPostScriptOutlines("com.adobe.postscript-ptfn-font");
constinit const StaticString kSuitcase("com.orrery.font-suitcase");
constinit const StaticString kWoff("public.woff-font");
constinit const StaticString kWoff2("public.woff2-font");
constinit const StaticString kPcf("public.pcf-font");
constinit const StaticString kBdf("public.bdf-font");

struct TParentRow {
    std::string_view type;
    std::string_view parent;
};

constexpr TParentRow kParents[] = {
    {"public.truetype-font", "public.font"},
    {"public.truetype-ttf-font", "public.truetype-font"},
    {"public.truetype-collection-font", "public.truetype-font"},
    {"public.opentype-font", "public.font"},
    {"public.opentype-collection-font", "public.opentype-font"},
    {"com.adobe.postscript-font", "public.font"},
    {"com.adobe.postscript-pfa-font", "com.adobe.postscript-font"},
    {"com.adobe.postscript-pfb-font", "com.adobe.postscript-font"},
    {"com.adobe.postscript-ptfn-font", "com.adobe.postscript-font"},
    {"com.orrery.font-suitcase", "public.font"},
    {"public.woff-font", "public.font"},
    {"public.woff2-font", "public.font"},
    {"public.bitmap-font", "public.font"},
    {"public.pcf-font", "public.bitmap-font"},
    {"public.bdf-font", "public.bitmap-font"},
};

std::string_view ParentOf(std::string_view type) noexcept {
    for (const TParentRow &row : kParents) {
        if (row.type == type) return row.parent;
    }
    return {};
}

// Case is ignored: font files come from systems that do not tell it apart.
bool EndsWith(std::string_view path, std::string_view ending) noexcept {
    if (path.size() < ending.size()) return false;
    path.remove_prefix(path.size() - ending.size());
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(path.begin(), path.end(), ending.begin(),
                      [lower](char a, char b) { return lower(a) == b; });
}

const ValString *TypeOfKind(TFontKind kind) noexcept {
    switch (kind) {
    case TFontKind::kTrueType:
        return kTrueType.Get();
    case TFontKind::kOpenType:
        return kOpenType.Get();
    case TFontKind::kType1Text:
        return kPostScriptText.Get();
    case TFontKind::kType1Binary:
        return kPostScriptBinary.Get();
    case TFontKind::kCid:
    case TFontKind::kType42:
        return kPostScript.Get();
    case TFontKind::kPcf:
        return kPcf.Get();
    case TFontKind::kBdf:
        return kBdf.Get();
    case TFontKind::kWoff:
        return kWoff.Get();
    case TFontKind::kWoff2:
        return kWoff2.Get();
    default:
        return nullptr;
    }
}

// A collection is what its first face is.
const ValString *TypeOfCollection(const TReading &reading, TBytes head) {
    const uint32_t offset = ReadU32(head, 12);
    const TBuffer face = reading.Copy(offset, kSniffedBytes);
    switch (SniffFontKind(face.View())) {
    case TFontKind::kOpenType:
        return kOpenTypeCollection.Get();
    case TFontKind::kTrueType:
        return kTrueTypeCollection.Get();
    default:
        return nullptr;
    }
}

// Only bitmap fonts are fonts when they are compressed. The name tells, or else the content.
const ValString *TypeOfCompressed(const TReading &reading, TFontKind kind, std::string_view path) {
    const std::string_view name = path.substr(0, std::min(path.rfind('.'), path.size()));
    if (EndsWith(name, ".pcf")) return kPcf.Get();
    if (EndsWith(name, ".bdf")) return kBdf.Get();
    const TFreeType freetype;
    const TBuffer head = InflateHead(freetype, reading, kind, kSniffedBytes);
    const TFontKind inner = SniffFontKind(head.View());
    return inner == TFontKind::kPcf || inner == TFontKind::kBdf ? TypeOfKind(inner) : nullptr;
}

// PostScript programs that do not say that they are fonts.
const ValString *TypeOfProgram(std::string_view path) noexcept {
    constexpr std::string_view kEndings[] = {".pfa", ".t1", ".t42"};
    const auto fits = [path](std::string_view ending) { return EndsWith(path, ending); };
    return std::any_of(std::begin(kEndings), std::end(kEndings), fits) ? kPostScriptText.Get() : nullptr;
}

// A file that is nothing but its second fork.
const ValString *TypeOfFork(const TReading &reading, const std::string &path) {
    switch (ReadForkContent(reading, path)) {
    case TForkContent::kSuitcase:
        return kSuitcase.Get();
    case TForkContent::kPostScriptOutlines:
        return kPostScriptOutlines.Get();
    default:
        return nullptr;
    }
}

const ValString *TypeOfFile(const TReading &reading, const std::string &path) {
    if (reading.Size() == 0) return TypeOfFork(reading, path);
    uint8_t bytes[kSniffedBytes];
    const TBytes head(bytes, reading.Read(0, bytes));
    const TFontKind kind = SniffFontKind(head);
    if (kind == TFontKind::kCollection) return TypeOfCollection(reading, head);
    if (kind == TFontKind::kPostScript) return TypeOfProgram(path);
    return IsCompressed(kind) ? TypeOfCompressed(reading, kind, path) : TypeOfKind(kind);
}

// Whether a file with bytes of its own can be of that kind, or only one that is nothing but its second
// fork.
bool CanHaveBytes(std::string_view tag) noexcept {
    return tag != Text(kPostScriptOutlines.Get()) && tag != Text(kSuitcase.Get());
}

bool HasBytes(const ValURL *url) noexcept {
    char path[PATH_MAX];
    struct stat status;
    return ValURLGetFileSystemRepresentation(url, path, sizeof path) && ::stat(path, &status) == 0 &&
           status.st_size > 0;
}

// A constant, or null.
const ValString *GetTypeIdentifier(const ValURL *url) noexcept {
    return Guarded([&]() -> const ValString * {
        char path[PATH_MAX];
        if (!ValURLGetFileSystemRepresentation(url, path, sizeof path)) return nullptr;
        TFileIdentity identity;
        TDescriptor descriptor = OpenRegularFile(path, &identity);
        if (!descriptor.IsOpen()) {
            ++tPassingFailures;
            return nullptr;
        }
        return TypeOfFile(TReading(std::move(descriptor), identity.size), path);
    });
}

} // namespace

Ref<const ValString> CopyTypeIdentifier(const ValURL *url) noexcept {
    return Retain(GetTypeIdentifier(url));
}

bool TypeConformsTo(std::string_view type, std::string_view tag) noexcept {
    for (; !type.empty(); type = ParentOf(type)) {
        if (type == tag) return true;
    }
    return false;
}

// Whether a file is a printer's font is asked of each that is registered: most need not be opened for it.
bool ConformsToTypeTag(const ValURL *url, std::string_view tag) noexcept {
    if (!CanHaveBytes(tag) && HasBytes(url)) return false;
    return TypeConformsTo(Text(GetTypeIdentifier(url)), tag);
}

} // namespace vellum
