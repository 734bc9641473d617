// SPDX-License-Identifier: MIT
// TBasicFontEntity: the entity over properties that are known already, because another process or a file
// has told them.
#pragma once

#include "describe/font_entity.hpp"

namespace vellum {

class TBasicFontEntity final : public TFontEntity {
public:
    explicit TBasicFontEntity(Ref<const ValDictionary> properties) noexcept
        : properties_(std::move(properties)) {}

    Ref<const ValURL> CopyURL() const override;

    // As it was told. Of the names (not of other properties) there may be arrays: without `all`, the first
    // element stands for one; null for an empty array.
    Ref<const void> CopyProperty(const ValString *key, bool all) const override;

    // TFontEntity::Compare of two faces, told as their properties; null is a face without any.
    static int CompareBasicFontInfo(const ValDictionary *a, const ValDictionary *b,
                                    const TFontEntityComparisonContext *context);

    // The keys that faces are ordered by (borrowed). Made by the first call; it throws std::bad_alloc when
    // memory is exhausted, and so does every later one until one succeeds.
    static const ValSet *GetBasicProperties();

private:
    static Ref<const ValSet> CreateBasicProperties();

    const Ref<const ValDictionary> properties_;
};

} // namespace vellum
