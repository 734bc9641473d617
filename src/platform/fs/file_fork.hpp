// SPDX-License-Identifier: MIT
// Where the second fork of a file is, on a system whose files have one only: in the extended attribute
// user.ResourceFork, else in the file .rsrc/NAME beside it.
#pragma once

#include <cstdint>
#include <string>

namespace vellum {

inline constexpr char kForkAttribute[] = "user.ResourceFork";

// The path at which the fork of a file would be a file of its own. May throw std::bad_alloc.
std::string ForkFileOf(const std::string &path);

// The size of the fork in bytes, 0 without one. May throw std::bad_alloc.
uint64_t ForkSize(const std::string &path);

} // namespace vellum
