// SPDX-License-Identifier: MIT
// How an exported function reaches the registers: each through a handle of its own, never both at once.
#pragma once

#include "frame/handles/registers.hpp"
#include "frame/registry/scope.hpp"
#include "values/lookup_trace.hpp"

#include <string_view>

namespace vellum {

inline void TellRegister(std::string_view which) noexcept {
    LookupTrace::Tell("register", [&](TValMutableDict &stage) {
        stage.Set(TraceText("register").Get(), TraceText(which).Get());
    });
}

// `ask(register)` answers a reference.
template <class Ask>
auto AskProcess(Ask ask) {
    TellRegister("process");
    return ask(ProcessRegister());
}

template <class Ask>
auto AskShared(Ask ask) {
    TellRegister("shared");
    return ask(SharedRegister());
}

// The process's own register, and the shared one only when that had nothing.
template <class Ask>
auto AskProcessThenShared(VLScope scope, Ask ask) -> decltype(ask(ProcessRegister())) {
    if (AsksProcess(scope))
        if (auto answer = AskProcess(ask)) return answer;
    if (AsksShared(scope)) return AskShared(ask);
    return nullptr;
}

} // namespace vellum
