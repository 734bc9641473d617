// SPDX-License-Identifier: MIT
// This process and its environment.
#pragma once

#include <cstdint>

namespace vellum {

uint32_t GetProcessID() noexcept;

// The value of an environment variable (borrowed), or null. Variables that lead to files or code
// are read this way alone: a program that runs with more rights than its caller sees none of them.
const char *GetEnvironment(const char *name) noexcept;

} // namespace vellum
