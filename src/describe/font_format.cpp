// SPDX-License-Identifier: MIT
#include "describe/font_format.hpp"

#include "platform/font/type_identifier.hpp"

#include <vellum/vellum.h>

namespace vellum {

namespace {

// What the tables say, walked in the order in which the font lists them.
struct TableFacts {
    bool layout = false; // DSIG, GPOS or GSUB
    bool cff = false;
    bool glyf = false;
    bool loca = false;
    bool bdat = false;
    bool bloc = false;
    uint32_t format; // of the last outline table seen, else what the file's type said
};

TableFacts WalkTables(const GxFont *font, uint32_t format) {
    TableFacts facts{.format = format};
    for (const GxTag tag : GxFontGetTableTags(font)) {
        switch (tag) {
        case MakeTag("DSIG"):
        case MakeTag("GPOS"):
        case MakeTag("GSUB"):
            facts.layout = true;
            break;
        case MakeTag("CFF "):
            facts.cff = true;
            facts.format = kVLFontFormatPostScript;
            break;
        case MakeTag("TYP1"):
            facts.format = kVLFontFormatPostScript;
            break;
        case MakeTag("glyf"):
            facts.glyf = true;
            facts.format = kVLFontFormatTrueType;
            break;
        case MakeTag("loca"):
            facts.loca = true;
            break;
        case MakeTag("bdat"):
            facts.bdat = true;
            break;
        case MakeTag("bloc"):
            facts.bloc = true;
            break;
        default:
            break;
        }
    }
    return facts;
}

uint32_t FormatWithoutOutlines(const GxFont *font, const TableFacts &facts, bool suitcase) {
    const bool bitmap = suitcase ? GxFontIsBitmapOnly(font) : facts.bdat && facts.bloc;
    return bitmap ? kVLFontFormatBitmap : kVLFontFormatPostScript;
}

uint32_t FormatFromTables(const GxFont *font, uint32_t format, bool suitcase) {
    const TableFacts facts = WalkTables(font, format);
    if (facts.layout) return facts.cff ? kVLFontFormatOpenTypePostScript : kVLFontFormatOpenTypeTrueType;
    if (facts.format != kVLFontFormatTrueType) return facts.format;
    if (!facts.glyf) return FormatWithoutOutlines(font, facts, suitcase);
    if (facts.loca) return kVLFontFormatTrueType;
    return facts.bdat && facts.bloc ? kVLFontFormatBitmap : kVLFontFormatUnrecognized;
}

} // namespace

uint32_t DetermineFormat(const GxFont *font) {
    const auto url = GxFontCopyURL(font);
    const auto type = CopyTypeIdentifier(url.Get());
    if (!type) return kVLFontFormatUnrecognized;
    const std::string_view text = ValStringGetBytes(type.Get(), nullptr);

    if (TypeConformsTo(text, "com.orrery.font-suitcase"))
        return FormatFromTables(font, kVLFontFormatTrueType, true);
    if (TypeConformsTo(text, "public.opentype-font"))
        return FormatFromTables(font, kVLFontFormatOpenTypePostScript, false);
    if (TypeConformsTo(text, "public.truetype-font")) {
        const bool postscript = TypeConformsTo(text, "com.adobe.postscript-font");
        return FormatFromTables(font, postscript ? kVLFontFormatPostScript : kVLFontFormatTrueType, false);
    }
    // A plain PostScript file is what its type says, whatever tables it might hold.
    return TypeConformsTo(text, "com.adobe.postscript-font") ? kVLFontFormatPostScript
                                                             : kVLFontFormatUnrecognized;
}

} // namespace vellum
