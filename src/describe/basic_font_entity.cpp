// SPDX-License-Identifier: MIT
#include "describe/basic_font_entity.hpp"

#include "describe/font_properties.hpp"
#include "values/out_of_memory.hpp"
#include "values/val_array.hpp"

#include <vellum/vellum.h>

#include <atomic>
#include <iterator>

namespace vellum {

Ref<const ValURL> TBasicFontEntity::CopyURL() const {
    const auto url = CopyProperty(kVLFontPropertyURL, false);
    return Retain(Cast<ValURL>(url.Get()));
}

Ref<const void> TBasicFontEntity::CopyProperty(const ValString *key, bool all) const {
    const void *value = key ? ValDictionaryGetValue(properties_.Get(), key) : nullptr;
    const auto *names = all ? nullptr : Cast<ValArray>(value);
    if (names && TFontProperties::IsNameKey(key))
        value = ValArrayGetCount(names) ? ValArrayGetValue(names, 0) : nullptr;
    return Retain(value);
}

Ref<const ValSet> TBasicFontEntity::CreateBasicProperties() {
    const void *const keys[] = {kVLFontPropertyURL, kVLFontPropertyFamilyName, kVLFontPropertySubfamilyName,
                                kVLFontPropertyTraits, kVLFontPropertyPriority};
    return OrBadAlloc(Adopt(ValSetCreate(keys, std::size(keys))));
}

// Never freed: programs ask for fonts until they end. Of two threads that make it, one keeps its own.
const ValSet *TBasicFontEntity::GetBasicProperties() {
    static constinit std::atomic<const ValSet *> sProperties = nullptr;
    if (const ValSet *known = sProperties.load(std::memory_order_acquire)) return known;
    auto fresh = CreateBasicProperties();
    const ValSet *current = nullptr;
    if (sProperties.compare_exchange_strong(current, fresh.Get(), std::memory_order_acq_rel))
        return fresh.Release();
    return current;
}

} // namespace vellum
