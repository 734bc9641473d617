// SPDX-License-Identifier: MIT
// What every kind of face answers; the functions of gx_font.hpp ask it.
//
// A face is shared by threads: whatever it derives late it guards by a mutex of its own, and what
// it lends out (spans) stays as it is for the life of the face.
#pragma once

#include "platform/font/gx_font.hpp"

#include <vellum/values.hpp>

#include <memory>
#include <string_view>

namespace vellum {

class TFace {
public:
    virtual ~TFace() = default;

    virtual Ref<const ValString> CopyPostScriptName() const = 0;
    virtual Ref<const ValString> CopyFamilyName() const = 0;
    virtual Ref<const ValString> CopyFullName() const = 0;
    virtual Ref<const ValString> CopyName(GxNameKey key) const = 0;
    virtual Ref<const ValCharacterSet> CopyCharacterSet() const = 0;
    virtual double ItalicAngle() const = 0;
    virtual bool IsFixedPitch() const = 0;
    virtual bool IsBitmapOnly() const = 0;

    // What only sfnt faces have.
    virtual Ref<const ValString> CopyLocalizedName(GxNameKey, std::string_view) const { return nullptr; }
    virtual Ref<const ValArray> CopyNameLanguages() const { return nullptr; }
    virtual void CopyTables(std::span<const GxTag>, std::span<Ref<const ValData>>, size_t) const {}
    virtual std::span<const GxTag> TableTags() const { return {}; }
    virtual std::span<const GxAxis> Axes() const { return {}; }

    // Where the face stands on each axis, in their order.
    virtual std::span<const double> Coordinates() const { return {}; }
    virtual bool IsInstance() const { return false; }
};

using TFacePtr = std::shared_ptr<const TFace>;

} // namespace vellum
