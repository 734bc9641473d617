// SPDX-License-Identifier: MIT
// How an exported query asks the registers: the process's own first, the shared one only when that
// had nothing, each through a handle of its own, never both at once.
#pragma once

#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/scope.hpp"

namespace vellum {

// `ask(register)` answers a reference; the first one that is not null is the answer.
template <class Ask>
auto AskProcessThenShared(VLScope scope, Ask ask) -> decltype(ask(TLocalGlyphary())) {
    if (AsksProcess(scope))
        if (auto answer = ask(TLocalGlyphary())) return answer;
    if (AsksShared(scope)) return ask(TGlobalGlyphary());
    return nullptr;
}

} // namespace vellum
