// SPDX-License-Identifier: MIT
// Folders that are this user's alone, in places where others may write.
#pragma once

#include <string>

namespace vellum {

// Makes sure of a folder of mode 0700 that belongs to this user; what leads there by a symbolic link is
// none. 0, or the errno of the failure: EPERM for a folder that others made or may enter, ENOTDIR for
// anything else of that name.
int MakePrivateFolder(const std::string &path) noexcept;

// Where this user's programs keep what lasts for the session: the folder vellum in $XDG_RUNTIME_DIR, which
// is made if it is not there. Empty without one. May throw std::bad_alloc.
std::string UserTemporaryFolder();

} // namespace vellum
