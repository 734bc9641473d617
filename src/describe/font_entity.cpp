// SPDX-License-Identifier: MIT
#include "describe/font_entity.hpp"

#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

namespace vellum {

Ref<const ValDictionary> TFontEntity::CopyProperties(const ValSet *keys, bool all) const {
    TValMutableDict properties;
    for (const void *member : TValSet(Retain(keys))) {
        const auto *key = Cast<ValString>(member);
        if (!key) continue;
        if (const auto value = CopyProperty(key, all)) properties.Set(key, value.Get());
    }
    return properties.Publish();
}

} // namespace vellum
