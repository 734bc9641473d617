// SPDX-License-Identifier: MIT
// What a dialogue program finds in its environment: it may use this library itself, and must not ask in
// turn.
#pragma once

namespace vellum::companion {

inline constexpr char kAskedMark[] = "VELLUM_COMPANION_ASKS";

} // namespace vellum::companion
