// SPDX-License-Identifier: MIT
// Chance, from the system.
#pragma once

#include <cstddef>

namespace vellum {

// Fills memory, 64 bytes at the most, with bytes that nobody can guess. False, with the memory as it was,
// when it is more or the system has none to give.
bool FillRandom(void *memory, size_t size) noexcept;

} // namespace vellum
