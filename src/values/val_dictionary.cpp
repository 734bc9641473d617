// SPDX-License-Identifier: MIT
// What dictionaries as values of C++ have over plain ones.
#include "values/val_dictionary.hpp"

#include "platform/val/dictionary.hpp"

namespace vellum {

bool ContainsSubset(const ValDictionary *dictionary, const ValDictionary *subset) noexcept {
    if (!dictionary || ValDictionaryGetCount(subset) > ValDictionaryGetCount(dictionary)) return false;
    size_t cursor = 0;
    const void *key;
    const void *wanted;
    while (ValDictionaryNext(subset, &cursor, &key, &wanted)) {
        const void *value;
        if (!ValDictionaryGetValueIfPresent(dictionary, key, &value)) return false;
        if (!EqualItems(*dictionary->value_callbacks, value, wanted)) return false;
    }
    return true;
}

} // namespace vellum
