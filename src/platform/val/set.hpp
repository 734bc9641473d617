// SPDX-License-Identifier: MIT
// How a set lies in memory.
#pragma once

#include "platform/val/hash_table.hpp"

namespace vellum {
extern const ValKind kSetKind;
} // namespace vellum

struct ValSet : vellum::ValObject {
    ValSet() noexcept : ValObject(vellum::kSetKind) {}

    const ValCallbacks *callbacks = nullptr;
    vellum::HashTable<vellum::SetEntry> table;
};
