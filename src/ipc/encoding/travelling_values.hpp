// SPDX-License-Identifier: MIT
// Values into the memory of a message, and out of it: for both ends.
#pragma once

#include "ipc/encoding/flatten_context.hpp"
#include "ipc/encoding/resurrect_context.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "platform/port/message.hpp"
#include "values/out_of_memory.hpp"
#include "values/val_cast.hpp"

#include <memory>
#include <optional>
#include <span>

namespace vellum {

// The value as it travels; nothing for null, and for what cannot be flattened. Throws std::bad_alloc.
inline std::optional<OutgoingMemory> Flattened(const void *value) {
    TValVMFlattenContext context(value);
    const size_t length = context.GetLength();
    if (!context.GetBuffer()) return std::nullopt;
    return OutgoingMemory{std::make_shared<const MemoryBlock>(context.OrphanBuffer()), length};
}

// The same as a value; null where that is nothing. Throws std::bad_alloc.
inline Ref<const ValData> FlattenedData(const void *value) {
    const auto data = OrBadAlloc(Adopt(ValDataCreateMutable(0)));
    TValFlattenContext context(data.Get(), false);
    context.Flatten(value);
    return context.IsOk() && context.GetLength() ? Retain<const ValData>(data.Get()) : nullptr;
}

// The value that has travelled; null for no bytes.
inline Ref<const void> Resurrected(std::span<const uint8_t> bytes) noexcept {
    TValResurrectContext context(bytes.data(), bytes.size());
    return bytes.empty() ? nullptr : context.Resurrect();
}

// The same if it is a T; null for anything else.
template <class T>
Ref<const T> Resurrected(std::span<const uint8_t> bytes) noexcept {
    return Retain(Cast<T>(Resurrected(bytes).Get()));
}

} // namespace vellum
