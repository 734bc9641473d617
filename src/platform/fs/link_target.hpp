// SPDX-License-Identifier: MIT
// Where symbolic links lead.
#pragma once

#include <string>
#include <vector>

namespace vellum {

// The other paths of what is at an absolute path that is a symbolic link: that which is written in the
// link, made absolute, and the one that has no link in it any more. Empty for what is no link, or leads
// nowhere. May throw std::bad_alloc.
std::vector<std::string> LinkTargets(const std::string &path);

} // namespace vellum
