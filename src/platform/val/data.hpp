// SPDX-License-Identifier: MIT
// How data lies in memory: right behind the object, in a block of its own once it has grown, or
// with whoever lent it.
#pragma once

#include "platform/val/object.hpp"

#include <string_view>

namespace vellum {
extern const ValKind kDataKind;
} // namespace vellum

struct ValData : vellum::ValObject {
    ValData() noexcept : ValObject(vellum::kDataKind) {}

    enum class Place : uint8_t { kInObject, kHeap, kLent };

    Place place = Place::kInObject;
    uint8_t *bytes = nullptr;
    size_t length = 0;
    size_t capacity = 0;
};

namespace vellum {

// The bytes of data, as text is viewed.
inline std::string_view Bytes(const ValData *data) noexcept {
    return data ? std::string_view(reinterpret_cast<const char *>(data->bytes), data->length)
                : std::string_view();
}

} // namespace vellum
