// SPDX-License-Identifier: MIT
// Names and traits of PostScript fonts from their dictionaries, of bitmap fonts from their properties.
#include "platform/font/freetype_facts.hpp"

#include "platform/font/limits.hpp"
#include "platform/val/character_set.hpp"
#include "platform/val/string.hpp"

#include <cstring>
#include <optional>
#include <string>

namespace vellum {
namespace {

// These formats predate Unicode; newer fonts put UTF-8 into them.
Ref<const ValString> MakeText(const char *text) {
    const size_t length = text ? strnlen(text, limits::kNameLength + 1) : 0;
    if (length == 0 || length > limits::kNameLength) return nullptr;
    auto utf8 = Adopt(ValStringCreateWithUTF8(text, length));
    return utf8 ? utf8 : Adopt(ValStringCreateWithBytes(text, length, kValStringEncodingLatin1));
}

Ref<const ValString> JoinStyle(const Ref<const ValString> &family, const Ref<const ValString> &style) {
    if (!family || !style || Text(style) == "Regular") return family;
    return MakeString(std::string(Text(family)) + ' ' + std::string(Text(style)));
}

const char *BitmapText(FT_Face face, const char *property) noexcept {
    BDF_PropertyRec value = {};
    if (FT_Get_BDF_Property(face, property, &value) != 0) return nullptr;
    return value.type == BDF_PROPERTY_TYPE_ATOM ? value.u.atom : nullptr;
}

std::optional<double> BitmapNumber(FT_Face face, const char *property) noexcept {
    BDF_PropertyRec value = {};
    if (FT_Get_BDF_Property(face, property, &value) != 0) return std::nullopt;
    if (value.type == BDF_PROPERTY_TYPE_INTEGER) return value.u.integer;
    if (value.type == BDF_PROPERTY_TYPE_CARDINAL) return value.u.cardinal;
    return std::nullopt;
}

// The property counts 64ths of a degree from the baseline: upright is 90 degrees.
void GatherBitmapFacts(FT_Face face, TFreeTypeFacts &facts) {
    facts.family = MakeText(BitmapText(face, "FAMILY_NAME"));
    if (!facts.family) facts.family = MakeText(face->family_name);
    facts.full_name = JoinStyle(facts.family, facts.subfamily);
    facts.copyright = MakeText(BitmapText(face, "COPYRIGHT"));
    if (const auto angle = BitmapNumber(face, "ITALIC_ANGLE")) facts.italic_angle = *angle / 64 - 90;
}

void GatherPostScriptFacts(FT_Face face, TFreeTypeFacts &facts) {
    PS_FontInfoRec info = {};
    const bool known = FT_Get_PS_Font_Info(face, &info) == 0;
    facts.postscript_name = MakeText(FT_Get_Postscript_Name(face));
    facts.family = MakeText(known && info.family_name ? info.family_name : face->family_name);
    facts.full_name = MakeText(info.full_name);
    if (!facts.full_name) facts.full_name = JoinStyle(facts.family, facts.subfamily);
    facts.version = MakeText(info.version);
    facts.copyright = MakeText(info.notice);
    facts.italic_angle = static_cast<double>(info.italic_angle);
    if (known) facts.fixed_pitch = info.is_fixed_pitch != 0;
}

} // namespace

TFreeTypeFacts GatherFreeTypeFacts(FT_Face face) {
    TFreeTypeFacts facts;
    facts.subfamily = MakeText(face->style_name);
    facts.bitmap_only = !FT_IS_SCALABLE(face);
    facts.fixed_pitch = FT_IS_FIXED_WIDTH(face) != 0;
    if (facts.bitmap_only) {
        GatherBitmapFacts(face, facts);
    } else {
        GatherPostScriptFacts(face, facts);
    }
    return facts;
}

namespace {

// Walks the characters of the selected map as runs of consecutive ones; see MakeCharacterSet.
class TCharacterWalk {
public:
    explicit TCharacterWalk(FT_Face face) noexcept : face_(face) {}

    bool operator()(uint32_t *first, uint32_t *last) const noexcept {
        FT_UInt glyph = 0;
        FT_ULong next =
            *last == UINT32_MAX ? FT_Get_First_Char(face_, &glyph) : FT_Get_Next_Char(face_, *last, &glyph);
        if (glyph == 0) return false;
        *first = static_cast<uint32_t>(next);
        do {
            *last = static_cast<uint32_t>(next);
            next = FT_Get_Next_Char(face_, next, &glyph);
        } while (glyph != 0 && next == *last + 1ul);
        return true;
    }

private:
    FT_Face face_;
};

} // namespace

Ref<const ValCharacterSet> GatherFreeTypeCoverage(FT_Face face) {
    if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0) {
        return ShareCharacterSet(MakeCharacterSet([](uint32_t *, uint32_t *) { return false; }));
    }
    return ShareCharacterSet(MakeCharacterSet(TCharacterWalk(face)));
}

} // namespace vellum
