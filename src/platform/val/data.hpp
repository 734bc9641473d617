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

// Makes room for `capacity` bytes in all; the data must be mutable.
bool ReserveData(ValData *data, size_t capacity) noexcept;

// Lengthens mutable data by `more` bytes, which the caller writes; null when memory is exhausted.
inline uint8_t *ExtendData(ValData *data, size_t more) noexcept {
    if (more > data->capacity - data->length &&
        (more > kMaximumSize - data->length || !ReserveData(data, data->length + more))) {
        return nullptr;
    }
    uint8_t *end = data->bytes + data->length;
    data->length += more;
    return end;
}

} // namespace vellum
