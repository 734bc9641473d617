// SPDX-License-Identifier: MIT
// A named instance of a variable face: names and place of its own, all else from the face.
#pragma once

#include "platform/font/sfnt_face.hpp"

namespace vellum {

class TInstanceFace final : public TFace {
public:
    // The instance of that index among face->Instances().
    TInstanceFace(std::shared_ptr<const TSfntFace> face, size_t index)
        : face_(std::move(face)), instance_(face_->Instances()[index]) {}

    Ref<const ValString> CopyPostScriptName() const override;
    Ref<const ValString> CopyFamilyName() const override { return face_->CopyFamilyName(); }
    Ref<const ValString> CopyFullName() const override;
    Ref<const ValString> CopyName(GxNameKey key) const override;
    Ref<const ValString> CopyLocalizedName(GxNameKey key, std::string_view language) const override;
    Ref<const ValArray> CopyNameLanguages() const override { return face_->CopyNameLanguages(); }
    void CopyTables(std::span<const GxTag> tags, std::span<Ref<const ValData>> tables,
                    size_t limit) const override {
        face_->CopyTables(tags, tables, limit);
    }
    std::span<const GxTag> TableTags() const override { return face_->TableTags(); }
    Ref<const ValCharacterSet> CopyCharacterSet() const override { return face_->CopyCharacterSet(); }
    std::span<const GxAxis> Axes() const override { return face_->Axes(); }
    std::span<const double> Coordinates() const override { return instance_.coordinates; }
    bool IsInstance() const override { return true; }
    double ItalicAngle() const override { return face_->ItalicAngle(); }
    bool IsFixedPitch() const override { return face_->IsFixedPitch(); }
    bool IsBitmapOnly() const override { return face_->IsBitmapOnly(); }

private:
    Ref<const ValString> CopySubfamilyName() const;
    Ref<const ValString> MakeFullName() const;
    Ref<const ValString> MakePostScriptName() const;
    Ref<const ValString> CopyLocalizedFullName(std::string_view language) const;

    const std::shared_ptr<const TSfntFace> face_;
    const TNamedInstance &instance_; // lives in *face_

    mutable std::mutex mutex_; // guards the names below
    mutable Ref<const ValString> full_name_;
    mutable Ref<const ValString> postscript_name_;
};

} // namespace vellum
