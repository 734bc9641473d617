// SPDX-License-Identifier: MIT
// Faces that FreeType reads: Type 1, CID-keyed and Type 42 PostScript fonts, PCF and BDF.
#pragma once

#include "platform/font/face.hpp"
#include "platform/font/font_kind.hpp"
#include "platform/font/font_source.hpp"

#include <mutex>
#include <vector>

namespace vellum {

// What a face says of itself, gathered while it is open for the first time.
struct TFreeTypeFacts {
    Ref<const ValString> postscript_name;
    Ref<const ValString> family;
    Ref<const ValString> subfamily;
    Ref<const ValString> full_name;
    Ref<const ValString> version;
    Ref<const ValString> copyright;
    double italic_angle = 0;
    bool fixed_pitch = false;
    bool bitmap_only = false;
};

class TFreeTypeFace final : public TFace {
public:
    TFreeTypeFace(TFontSourcePtr source, TFontKind kind, uint32_t index, TFreeTypeFacts facts)
        : source_(std::move(source)), kind_(kind), index_(index), facts_(std::move(facts)) {}

    Ref<const ValString> CopyPostScriptName() const override { return facts_.postscript_name; }
    Ref<const ValString> CopyFamilyName() const override { return facts_.family; }
    Ref<const ValString> CopyFullName() const override { return facts_.full_name; }
    Ref<const ValString> CopyName(GxNameKey key) const override;
    Ref<const ValCharacterSet> CopyCharacterSet() const override;
    double ItalicAngle() const override { return facts_.italic_angle; }
    bool IsFixedPitch() const override { return facts_.fixed_pitch; }
    bool IsBitmapOnly() const override { return facts_.bitmap_only; }

private:
    const TFontSourcePtr source_;
    const TFontKind kind_; // of the file, perhaps compressed
    const uint32_t index_;
    const TFreeTypeFacts facts_;

    mutable std::mutex mutex_; // guards coverage_
    mutable Ref<const ValCharacterSet> coverage_;
};

// Appends the faces of a file of that kind.
void LoadFreeTypeFaces(const TFontSourcePtr &source, const TReading &reading, TFontKind kind,
                       std::vector<TFacePtr> &faces);

// True when an sfnt face has pictures of glyphs and no outlines.
bool IsBitmapOnlySfnt(const TReading &reading, uint32_t index);

} // namespace vellum
