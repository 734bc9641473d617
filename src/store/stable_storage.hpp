// SPDX-License-Identifier: MIT
// Stable storage: where font files are copied that may soon be gone from where they are, such as fonts on
// a drive that can be taken out. The folder is the process's own, and stays when the process ends.
#pragma once

#include <vellum/values.hpp>

#include <string>

namespace vellum {

// The folder's path, made if it is not there; empty, and logged, when that fails. Throws std::bad_alloc.
std::string StableStorageFolder();

// Copies a file: data, mode, times, extended attributes and access control lists. 0, the errno of the
// failure, which is logged, or kCopyHasNoPath when a URL has no path.
constexpr int32_t kCopyHasNoPath = -667;
int32_t VLCopyURLToURL(const ValURL *source, const ValURL *destination) noexcept;

} // namespace vellum
