// SPDX-License-Identifier: MIT
// Font references: the 32-bit numbers that name the faces of one process's register.
//
//   bit 31      always set: a reference of a register that lives in a process
//   bits 16-30  the font index, 0 to 32766
//   bits 0-15   the low half of the process id, so that references of different processes differ
#pragma once

#include <cstdint>

namespace vellum {

using FontReference = uint32_t;

// The highest font index; the next one is 0 again.
constexpr uint32_t kLastFontIndex = 0x7FFE;

constexpr FontReference MakeFontReference(uint32_t index, uint32_t process_id) noexcept {
    return 0x80000000u | ((index << 16) & 0x7FFF0000u) | (process_id & 0xFFFFu);
}

// References live in sets and dictionaries as what they are: integers of a pointer's size.
inline const void *AsItem(FontReference reference) noexcept {
    return reinterpret_cast<const void *>(static_cast<uintptr_t>(reference));
}

inline FontReference AsReference(const void *item) noexcept {
    return static_cast<FontReference>(reinterpret_cast<uintptr_t>(item));
}

} // namespace vellum
