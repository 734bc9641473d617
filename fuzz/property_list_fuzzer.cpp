// SPDX-License-Identifier: MIT
// Any bytes as a property list: a whole value or none, of the kinds that property lists have.
#include "platform/app/property_list.hpp"

#include <vellum/values.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace vellum;

namespace {

void Check(bool holds) {
    if (!holds) std::abort();
}

void Walk(const void *value, size_t nesting) {
    const ValType type = ValGetType(value);
    Check(type == kValTypeString || type == kValTypeNumber || type == kValTypeBoolean ||
          type == kValTypeData ||
          ((type == kValTypeArray || type == kValTypeDictionary) && nesting < kMaximumPropertyListNesting));
    if (type == kValTypeArray) {
        const auto *array = static_cast<const ValArray *>(value);
        for (size_t i = 0; i < ValArrayGetCount(array); ++i) Walk(ValArrayGetValue(array, i), nesting + 1);
    } else if (type == kValTypeDictionary) {
        size_t cursor = 0;
        for (const void *key, *item;
             ValDictionaryNext(static_cast<const ValDictionary *>(value), &cursor, &key, &item);) {
            Check(ValGetType(key) == kValTypeString);
            Walk(item, nesting + 1);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const auto value = ReadPropertyList(bytes, size);
    if (value) Walk(value.Get(), 0);
    return 0;
}
