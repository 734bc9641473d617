// SPDX-License-Identifier: MIT
// GxFont: one face of a font file or of a byte buffer, read by the platform's font parser.
//
// A GxFont is a value: it is counted, lives in containers, and may be used from any thread. It
// reads what it is asked for, once, and keeps the answer. A file is opened for each round of
// reading and must still be the file that it was (device, inode, size, modification time); from one
// that has changed nothing more is read, and what was not read before is answered as absent.
//
// Faces of a file stand in this order: the faces of the collection, then each named instance of a
// variable face that is not its default. An instance answers names and variations as that instance.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

struct GxFont;

namespace vellum {

// A four-character table tag, or axis tag, as a big-endian number.
using GxTag = uint32_t;

constexpr GxTag MakeTag(const char (&text)[5]) noexcept {
    return static_cast<GxTag>(static_cast<uint8_t>(text[0])) << 24 |
           static_cast<GxTag>(static_cast<uint8_t>(text[1])) << 16 |
           static_cast<GxTag>(static_cast<uint8_t>(text[2])) << 8 |
           static_cast<GxTag>(static_cast<uint8_t>(text[3]));
}

// Name-table keys: the OpenType name identifiers.
enum class GxNameKey : uint16_t {
    kCopyright = 0,
    kFamily = 1,
    kSubfamily = 2,
    kFull = 4,
    kVersion = 5,
    kPostScript = 6,
    kManufacturer = 8,
    kDesigner = 9,
    kPreferredFamily = 16,
    kPreferredSubfamily = 17,
};

// One axis of a variable face; values in the axis's own units.
struct GxAxis {
    GxTag tag;
    Ref<const ValString> name; // English, else the first record, else the tag's text
    double minimum;
    double default_value;
    double maximum;
};

// All faces of a font file, in parser order; an array of GxFont. A fragment with "postscript-name"
// and/or "var:" parameters selects the first face that fits them all; other parameters select
// nothing and all faces come. Null when the file is no font, is refused, or no face fits.
Ref<const ValArray> GxFontCreateFontsWithURL(const ValURL *url) noexcept;

// The first face in a buffer; the buffer is retained. Null when it holds no font.
Ref<const GxFont> GxFontCreateWithData(const ValData *data) noexcept;

// The live font made from a buffer whose object stands at the address that `text` gives ("0x…", as
// printf's %p writes it), provided that it is alive and its PostScript name is `postscript_name`
// (null: any). The address is looked up among the live ones and never followed.
Ref<const GxFont> GxFontCopyLiveDataFont(std::string_view text, const ValString *postscript_name) noexcept;

// Forgets what the parser's cache keeps of one file (a path), or, with null, of all.
void FacetFontPurgeCaches(const ValString *path) noexcept;

// The file URL; with a face-selecting fragment when the file holds several faces. Null for a font
// made from a buffer.
Ref<const ValURL> GxFontCopyURL(const GxFont *font) noexcept;

// The names that the face goes by; null when it has none.
Ref<const ValString> GxFontCopyPostScriptName(const GxFont *font) noexcept;
Ref<const ValString> GxFontCopyFamilyName(const GxFont *font) noexcept;
Ref<const ValString> GxFontCopyFullName(const GxFont *font) noexcept;

// The name-table entry for a key: English, else the first record that can be decoded.
Ref<const ValString> GxFontCopyName(const GxFont *font, GxNameKey key) noexcept;

// The name-table entry for a key in one language (a canonical BCP 47 identifier), or null.
Ref<const ValString> GxFontCopyLocalizedName(const GxFont *font, GxNameKey key,
                                             std::string_view language) noexcept;

// The languages that the name table lists, in the order of its records, each once: canonical BCP 47
// identifiers without the language's principal region ("en", "en-GB", "zh-Hans"), the empty string
// for records of no language. Null without a name table.
Ref<const ValArray> GxFontCopyNameLanguages(const GxFont *font) noexcept;

// The bytes of a table, at most `limit` of them, or null. Bytes that the file no longer holds are
// missing from the end.
Ref<const ValData> GxFontCopyTable(const GxFont *font, GxTag tag, size_t limit = SIZE_MAX) noexcept;

// Several tables in one round of reading: tables[i] becomes that of tags[i], at most `limit` bytes of
// it, or null.
void GxFontCopyTables(const GxFont *font, std::span<const GxTag> tags, std::span<Ref<const ValData>> tables,
                      size_t limit = SIZE_MAX) noexcept;

// The tags of the face's tables in the order of the file's directory, without those that begin past
// the file's end; empty for fonts without a directory. The span lives as long as the font.
std::span<const GxTag> GxFontGetTableTags(const GxFont *font) noexcept;

// The code points that the face maps to a glyph. Never null; faces with equal coverage share one.
Ref<const ValCharacterSet> GxFontCopyCharacterSet(const GxFont *font) noexcept;

// The axes of a variable face, in the font's order; empty for other faces.
std::span<const GxAxis> GxFontGetVariationAxes(const GxFont *font) noexcept;

// For a variable face, its place on each axis: a dictionary from axis name (a string) to Float64.
// The default face holds every axis at its default. Null for other faces.
Ref<const ValDictionary> GxFontCopyVariations(const GxFont *font) noexcept;

// True when the face is a named instance of a variable face.
bool GxFontIsInstance(const GxFont *font) noexcept;

// Degrees counter-clockwise from the vertical, as the font states them: negative leans right.
double GxFontGetItalicAngle(const GxFont *font) noexcept;
bool GxFontIsFixedPitch(const GxFont *font) noexcept;
bool GxFontIsBitmapOnly(const GxFont *font) noexcept;

// What the floors above derive from a font and keep with it.
class GxFontCompanion {
public:
    GxFontCompanion() = default;
    GxFontCompanion(const GxFontCompanion &) = delete;
    GxFontCompanion &operator=(const GxFontCompanion &) = delete;
    virtual ~GxFontCompanion() = default;
};

// The companion of a font, made by the first call and destroyed with the font; every caller gives the
// same function. Null for a null font, and when memory is exhausted.
GxFontCompanion *GxFontGetCompanion(const GxFont *font,
                                    std::unique_ptr<GxFontCompanion> (*make)()) noexcept;

} // namespace vellum
