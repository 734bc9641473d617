// SPDX-License-Identifier: MIT
// Which files need a link to be seen by every program, and which links a withdrawal takes away.
//
// The user's files are changed: not to be called under a lock that a query may want.
#pragma once

#include "font_url.hpp"
#include "fontconfig.hpp"

#include <string>
#include <vector>

namespace vellum::legacy {

// Lays a link to each file that fontconfig finds a font in and that the system, by this configuration, does
// not have by itself, and has the links looked into.
void LinkForUser(FcConfig *config, const std::vector<FontURL> &urls);

// Takes away the links to files, and to all that lie below folders. The paths of those that there were.
std::vector<std::string> UnlinkForUser(const std::vector<FontURL> &urls);

} // namespace vellum::legacy
