// SPDX-License-Identifier: MIT
// A face made of sfnt tables: TrueType, OpenType, a face of a collection, an unpacked WOFF.
#pragma once

#include "platform/font/face.hpp"
#include "platform/font/names.hpp"
#include "platform/font/variations.hpp"

#include <mutex>

namespace vellum {

class TSfntFace final : public TFace {
public:
    // What is read of a face at its creation.
    struct TParts {
        TFontSourcePtr source;
        uint32_t index; // among the faces of the source
        TTableDirectory directory;
        uint16_t glyphs;
        TVariations variations;
        std::shared_ptr<const TNames> names; // loaded when there are axes
    };

    explicit TSfntFace(TParts parts);

    Ref<const ValString> CopyPostScriptName() const override;
    Ref<const ValString> CopyFamilyName() const override;
    Ref<const ValString> CopyFullName() const override;
    Ref<const ValString> CopyName(GxNameKey key) const override;
    Ref<const ValString> CopyLocalizedName(GxNameKey key, std::string_view language) const override;
    Ref<const ValArray> CopyNameLanguages() const override;
    void CopyTables(std::span<const GxTag> tags, std::span<Ref<const ValData>> tables,
                    size_t limit) const override;
    std::span<const GxTag> TableTags() const override { return parts_.directory.Tags(); }
    Ref<const ValCharacterSet> CopyCharacterSet() const override;
    std::span<const GxAxis> Axes() const override { return axes_; }
    std::span<const double> Coordinates() const override { return defaults_; }
    double ItalicAngle() const override;
    bool IsFixedPitch() const override;
    bool IsBitmapOnly() const override;

    const TNames &Names() const noexcept { return *parts_.names; }
    const std::vector<TNamedInstance> &Instances() const noexcept { return parts_.variations.instances; }

private:
    struct TPostFacts {
        double italic_angle = 0;
        bool fixed_pitch = false;
    };

    TPostFacts PostFacts() const;
    TBuffer CopyBytes(const TReading &reading, GxTag tag, size_t limit) const;
    bool HasBitmaps() const;

    const TParts parts_;
    std::vector<GxAxis> axes_;
    std::vector<double> defaults_;

    mutable std::mutex mutex_; // guards what is derived late, below
    mutable Ref<const ValCharacterSet> coverage_;
    mutable std::optional<TPostFacts> post_facts_;
    mutable std::optional<bool> bitmap_only_;
};

} // namespace vellum
