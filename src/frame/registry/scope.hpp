// SPDX-License-Identifier: MIT
// What the library reads from the scope word.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

constexpr VLScope kScopeShared = kVLScopeUser | kVLScopeSession;

// What a register that lives in a process hears of a data font's scope: which register, and
// whether the legacy service was told.
constexpr VLScope kScopeDataFonts = kVLScopeLegacyTold | kVLScopeProcess;

constexpr bool AsksProcess(VLScope scope) noexcept {
    return (scope & kVLScopeProcess) != 0;
}
constexpr bool AsksShared(VLScope scope) noexcept {
    return (scope & kScopeShared) != 0;
}
constexpr bool AsksAny(VLScope scope) noexcept {
    return (scope & kVLScopeAll) != 0;
}

} // namespace vellum
