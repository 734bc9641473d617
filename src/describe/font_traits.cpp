// SPDX-License-Identifier: MIT
#include "describe/font_traits.hpp"

#include "describe/named_faces.hpp"
#include "describe/os2_traits.hpp"
#include "describe/style_glossaries.hpp"
#include "describe/tables/head_table.hpp"
#include "describe/tables/hhea_table.hpp"
#include "describe/tables/hmtx_table.hpp"
#include "describe/tables/os2_table.hpp"
#include "describe/tables/post_table.hpp"
#include "describe/variation_values.hpp"
#include "platform/font/gx_font_round.hpp"
#include "platform/val/static_string.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

#include <array>
#include <cmath>

namespace vellum {
namespace {

// What nothing but a bit is known of.
constexpr float kBoldWeight = 0.4F;
constexpr float kCondensedWidth = -0.2F;
constexpr float kItalicSlant = 0.0694444F; // 12.5 degrees

// ---- what accompanies the face ----------------------------------------------------------------------

constinit const StaticString kIsMonoDesign("MTD_Typeface_Metrics_IsMonoDesign");
constinit const StaticString kIsFixedPitchFlag("MTD_Typeface_Metrics_IsFixedPitchFlag");
constinit const StaticString kItalicAngle("MTD_Typeface_Style_ItalicAngle");
constinit const StaticString kWidthDescriptor("MTD_Typeface_Width_VisualDescriptor");
constinit const StaticString kWeightDescriptor("MTD_Typeface_Weight_VisualDescriptor");
constinit const StaticString kFountClass("MTD_Typeface_Style_Fount_Class");

constexpr StyleWord kWidthDescriptors[] = {{"med", 0.0F}, {"cond", -0.2F}, {"ext", 0.2F}};
constexpr StyleWord kWeightDescriptors[] = {{"reg", 0.0F},    {"semi", 0.3F}, {"bold", 0.4F},
                                            {"light", -0.4F}, {"med", 0.23F}, {"black", 0.62F},
                                            {"thin", -0.8F}};

// Numbers of classes are those of the high byte of OS/2's sFamilyClass.
struct ClassName {
    std::string_view name;
    uint32_t number;
};
constexpr ClassName kClassNames[] = {
    {"old-style-serifs", 1}, {"transitional-serifs", 2}, {"modern-serifs", 3}, {"clarendon-serifs", 4},
    {"slab-serifs", 5},      {"freeform-serifs", 7},     {"sans-serif", 8},    {"ornamentals", 9},
    {"scripts", 10},         {"symbolic", 12},           {"serif", 1},
};

std::optional<float> FindExactly(std::span<const StyleWord> words, std::string_view text) noexcept {
    for (const StyleWord &row : words) {
        if (row.word == text) return row.value;
    }
    return std::nullopt;
}

// ---- the derivation -----------------------------------------------------------------------------------

// A trait, once a source has a value for it.
template <class T>
class Settled {
public:
    explicit operator bool() const noexcept { return is_settled_; }
    T Value() const noexcept { return value_; } // 0 or false while it is not settled

    Settled &operator=(T value) noexcept {
        value_ = value;
        is_settled_ = true;
        return *this;
    }
    Settled &operator=(const std::optional<T> &value) noexcept { return value ? *this = *value : *this; }

private:
    T value_{};
    bool is_settled_ = false;
};

// Asks one source after the other; what has a value is settled.
class Derivation {
public:
    Derivation(const GxFont *font, const ValDictionary *metadata) noexcept
        : font_(font), metadata_(metadata) {}

    void Run() {
        AskMetadata();
        AskNamedFaces();
        AskNames();
        AskFullNameForPitch();
        if (!weight || !width || !slant || !fixed_pitch || !face_class) AskTables();
        AskAbbreviatedWeights();
        AskFont();
    }

    Settled<float> weight;
    Settled<float> width;
    Settled<float> slant;
    Settled<bool> fixed_pitch;
    Settled<uint32_t> face_class;

private:
    const ValString *MetadataString(const ValString *key) const noexcept {
        return Cast<ValString>(ValDictionaryGetValue(metadata_, key));
    }

    void AskMetadata() noexcept {
        if (!metadata_) return;
        const ValString *mono = MetadataString(kIsMonoDesign.Get());
        if (!mono) mono = MetadataString(kIsFixedPitchFlag.Get());
        if (mono) fixed_pitch = Text(mono) == "TRUE";
        const void *angle = ValDictionaryGetValue(metadata_, kItalicAngle.Get());
        if (Cast<ValNumber>(angle)) slant = SlantOfAngle(ReadFloat64(angle));
        if (const ValString *text = MetadataString(kWidthDescriptor.Get())) {
            width = FindExactly(kWidthDescriptors, Text(text));
        }
        if (const ValString *text = MetadataString(kWeightDescriptor.Get())) {
            weight = FindExactly(kWeightDescriptors, Text(text));
        }
        if (const ValString *text = MetadataString(kFountClass.Get())) face_class = ClassOfName(Text(text));
    }

    // Nothing for what no angle can be.
    static std::optional<float> SlantOfAngle(double degrees) noexcept {
        constexpr double kFullTurn = 360;
        if (!(std::fabs(degrees) <= kFullTurn)) return std::nullopt;
        return static_cast<float>(degrees) / 180;
    }

    // A class of another name is settled, as none.
    static uint32_t ClassOfName(std::string_view name) noexcept {
        for (const ClassName &row : kClassNames) {
            if (row.name == name) return row.number;
        }
        return 0;
    }

    void AskNamedFaces() {
        const TValStr name(GxFontCopyName(font_, GxNameKey::kPostScript));
        for (const NamedFace &face : kNamedFaces) {
            if (face.postscript_name != name.View()) continue;
            if (!weight) weight = face.weight;
            if (!face_class) face_class = face.face_class;
        }
    }

    static void AskName(const StyleName &name, std::span<const StyleWord> glossary, Settled<float> &trait) {
        float value = 0;
        if (!trait && name.DetermineTraitValueFromString(glossary, value)) trait = value;
    }

    void AskNames() {
        constexpr GxNameKey kKeys[] = {GxNameKey::kPreferredSubfamily, GxNameKey::kSubfamily,
                                       GxNameKey::kFull, GxNameKey::kPreferredFamily, GxNameKey::kFamily};
        for (const GxNameKey key : kKeys) {
            if (weight && width && slant) return;
            const StyleName name(TValStr(GxFontCopyName(font_, key)).View());
            AskName(name, kWeightStyleGlossaryNameMap, weight);
            AskName(name, kWidthStyleGlossaryNameMap, width);
            AskName(name, kSlantStyleGlossaryNameMap, slant);
        }
    }

    // "Mono" says it, but not where it begins the name of a foundry. Only where it stands last is looked
    // at.
    void AskFullNameForPitch() {
        if (fixed_pitch) return;
        const StyleName name(TValStr(GxFontCopyFullName(font_)).View());
        const size_t place = name.FindLast("Mono");
        if (place != std::string_view::npos && !name.HasWordAt(place, "Monotype")) fixed_pitch = true;
    }

    void AskTables() {
        const GxFontRound round;
        constexpr std::array kTags = {MakeTag("OS/2"), MakeTag("hhea"), MakeTag("post"), MakeTag("head")};
        constexpr size_t kMuchMoreThanFields = 128; // "post" has all names of glyphs behind them
        std::array<Ref<const ValData>, kTags.size()> tables;
        GxFontCopyTables(font_, kTags, tables, kMuchMoreThanFields);
        if (GxFontIsInstance(font_)) AskInstance();
        AskOS2(OS2Table(std::move(tables[0])));
        if (tables[1]) AskHhea(hheaTable(std::move(tables[1])));
        if (tables[2]) AskPost(postTable(std::move(tables[2])));
        if (tables[3]) AskHead(headTable(std::move(tables[3])));
    }

    // The tables describe the default face alone; an instance differs from it by its places on the axes.
    void AskInstance() {
        const VariationValues values(font_);
        float value = 0;
        if (const auto wght = values.Find(MakeTag("wght")); wght && !weight) {
            if (WeightOfWeightClass(std::lround(*wght), value)) weight = value;
        }
        if (const auto wdth = values.Find(MakeTag("wdth")); wdth && !width)
            width = WidthOfPercentage(*wdth);
        const auto slnt = values.Find(MakeTag("slnt"));
        const auto ital = values.Find(MakeTag("ital"));
        if (slant || (!slnt && !ital)) return;
        slant = ital && *ital != 0 ? kItalicSlant : 0.0F;
        if (slnt && *slnt != 0) slant = static_cast<float>(-*slnt / 180);
    }

    void AskOS2(const OS2Table &table) noexcept {
        float value = 0;
        if (!weight && DetermineWeight(table, value)) weight = value;
        if (!width && DetermineWidth(table, value)) width = value;
        if (!fixed_pitch && table.IsFixedPitch()) fixed_pitch = true;
        const int32_t family_class = table.GetFamilyClass();
        if (!face_class && family_class) face_class = static_cast<uint32_t>(family_class) >> 8 & 0xFF;
    }

    void AskHhea(const hheaTable &table) noexcept {
        if (!slant) slant = table.GetItalicAngle();
        if (fixed_pitch) return;
        const uint16_t metrics = table.GetMetricsCount();
        if (metrics <= 1)
            fixed_pitch = true;
        else
            AskHmtx(metrics);
    }

    // Two different widths are mostly found among the first.
    void AskHmtx(uint16_t metrics) noexcept {
        constexpr size_t kFirst = 512;
        auto hmtx = GxFontCopyTable(font_, MakeTag("hmtx"), kFirst);
        if (!hmtx) return;
        fixed_pitch = hmtxTable(std::move(hmtx), metrics).IsFixedPitch();
        if (fixed_pitch.Value())
            fixed_pitch = hmtxTable(GxFontCopyTable(font_, MakeTag("hmtx"), size_t{4} * metrics), metrics)
                              .IsFixedPitch();
    }

    void AskPost(const postTable &table) noexcept {
        if (!slant) slant = table.GetItalicAngle();
        if (!fixed_pitch) fixed_pitch = table.IsFixedPitch();
    }

    // That a face which is extended becomes narrow is deliberate and must stay: such widths are kept and
    // asked for by others.
    void AskHead(const headTable &table) noexcept {
        if (!weight && table.IsBold()) weight = kBoldWeight;
        if (!width && (table.IsCondensed() || table.IsExtended())) width = kCondensedWidth;
        if (!slant && table.IsItalic()) slant = kItalicSlant;
    }

    void AskAbbreviatedWeights() {
        for (const GxNameKey key : {GxNameKey::kPreferredSubfamily, GxNameKey::kSubfamily}) {
            if (weight) return;
            const StyleName name(TValStr(GxFontCopyName(font_, key)).View());
            float value = 0;
            if (name.DetermineTraitValueFromWholeString(kAbbreviatedWeightStyleGlossaryNameMap, value))
                weight = value;
        }
    }

    // The angle is in degrees, unlike all others: deliberate, for the reason given above.
    void AskFont() noexcept {
        if (!fixed_pitch) fixed_pitch = GxFontIsFixedPitch(font_);
        if (!slant) slant = static_cast<float>(GxFontGetItalicAngle(font_));
    }

    const GxFont *const font_;
    const ValDictionary *const metadata_;
};

} // namespace

TFontTraits::TFontTraits(const GxFont *font, const ValDictionary *metadata) {
    constexpr float kLeastBold = 0.239F;
    constexpr float kLeastWidth = 0.15F;
    constexpr float kLeastSlant = 0.000001F;
    constexpr float kLeastItalic = 0.005F;
    constexpr unsigned kClassShift = 28;

    Derivation derivation(font, metadata);
    derivation.Run();
    weight_ = derivation.weight.Value();
    width_ = derivation.width.Value();
    slant_ = derivation.slant.Value();
    if (std::fabs(slant_) < kLeastSlant) slant_ = 0;
    if (weight_ > kLeastBold) symbolic_ |= kVLFontTraitBold;
    if (width_ > kLeastWidth) symbolic_ |= kVLFontTraitExpanded;
    if (width_ < -kLeastWidth) symbolic_ |= kVLFontTraitCondensed;
    if (std::fabs(slant_) > kLeastItalic) symbolic_ |= kVLFontTraitItalic;
    if (derivation.fixed_pitch.Value()) symbolic_ |= kVLFontTraitMonospace;
    symbolic_ |= derivation.face_class.Value() << kClassShift;
}

Ref<const ValDictionary> TFontTraits::CreateTraitsDictionary() const {
    TValMutableDict traits;
    traits.Set(kVLFontTraitSymbolic, MakeNumber(static_cast<int32_t>(symbolic_)).Get());
    traits.Set(kVLFontTraitWeight, MakeNumber(weight_).Get());
    traits.Set(kVLFontTraitWidth, MakeNumber(width_).Get());
    traits.Set(kVLFontTraitSlant, MakeNumber(slant_).Get());
    return traits.Publish();
}

uint32_t ClassifyReduceTraitsClass(uint32_t traits_class) noexcept {
    constexpr uint32_t kRanks[] = {999, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 3};
    return kRanks[traits_class < std::size(kRanks) ? traits_class : 0];
}

uint8_t StyleIndexOfLegacyStyle(uint8_t style) noexcept {
    constexpr unsigned kBoldAndItalic = 3;
    constexpr unsigned kWidths = 0x60; // condensed and extended, which cancel each other out
    const unsigned bits = style & 0x7F;
    const unsigned above_underline = (bits & kWidths) == kWidths ? bits >> 3 & 3 : bits >> 3;
    return static_cast<uint8_t>((bits & kBoldAndItalic) | above_underline << 2);
}

} // namespace vellum
