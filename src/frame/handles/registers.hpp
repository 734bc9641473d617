// SPDX-License-Identifier: MIT
// The two registers, for those who ask them with no lock held: the exported functions, and what activates
// fonts.
#pragma once

#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "store/legacy_bridge.hpp"

namespace vellum {

// The handles. A register that is being made tells the legacy font service of its fonts, whose code is to
// be loaded before: other threads wait until the register is there, perhaps with the loader's lock held.
inline TLocalGlyphary ProcessRegister() {
    if (!TLocalGlyphary::IsCreated()) FindFountFunctions();
    return TLocalGlyphary();
}

inline TGlobalGlyphary SharedRegister() {
    if (!TGlobalGlyphary::IsCreated()) FindFountFunctions();
    return TGlobalGlyphary();
}

} // namespace vellum
