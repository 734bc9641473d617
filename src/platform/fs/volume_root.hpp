// SPDX-License-Identifier: MIT
// Where the volume of a file begins.
#pragma once

#include <string>

namespace vellum {

// The uppermost folder of the volume on which a file lies, by the file's absolute path; through symbolic
// links it is the volume of the file itself. Empty when there is no such file, or it may not be asked for.
// May throw std::bad_alloc.
std::string VolumeRoot(const std::string &path);

} // namespace vellum
