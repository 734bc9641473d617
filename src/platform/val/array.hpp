// SPDX-License-Identifier: MIT
// How an array lies in memory.
#pragma once

#include "platform/val/callbacks.hpp"

#include <span>

namespace vellum {
extern const ValKind kArrayKind;
} // namespace vellum

// Room for the items that it was created for stands right behind it; more go to the heap.
struct ValArray : vellum::ValObject {
    ValArray() noexcept : ValObject(vellum::kArrayKind) {}

    bool on_heap = false;
    const ValCallbacks *callbacks = nullptr;
    const void **items = nullptr;
    size_t count = 0;
    size_t capacity = 0;
};

namespace vellum {

inline std::span<const void *const> Items(const ValArray *array) noexcept {
    return array ? std::span<const void *const>(array->items, array->count)
                 : std::span<const void *const>();
}

// An array of values (or null) whose references it takes over. Null when memory is exhausted, with
// the references released.
ValArray *AdoptIntoArray(std::span<const void *const> items) noexcept;

} // namespace vellum
