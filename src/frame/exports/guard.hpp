// SPDX-License-Identifier: MIT
// The boundary: nothing that is thrown inside leaves an exported function, and no other thread forks while
// one is inside.
//
// What can be thrown is std::bad_alloc; the answer is then the same as for any other failure.
#pragma once

#include "platform/process/fork_gate.hpp"

#include <vellum/values.hpp>

#include <type_traits>

namespace vellum {

// The result of `body`, or a null, 0 or false one when it throws.
template <class Body>
auto Guard(Body body) noexcept -> std::invoke_result_t<Body> {
    const InLibrary inside;
    try {
        return body();
    } catch (...) {
        return std::invoke_result_t<Body>();
    }
}

// The same for a body that answers an owned reference, which the caller gets.
template <class Body>
auto GuardCopy(Body body) noexcept -> decltype(body().Release()) {
    const InLibrary inside;
    try {
        return body().Release();
    } catch (...) {
        return nullptr;
    }
}

} // namespace vellum
