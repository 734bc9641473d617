// SPDX-License-Identifier: MIT
// Folders that are this user's alone, in places where others may write.
#pragma once

#include <string>

namespace vellum {

// Makes sure of a folder of mode 0700 that belongs to this user; what leads there by a symbolic link is
// none. 0, or the errno of the failure: EPERM for a folder that others made or may enter, ENOTDIR for
// anything else of that name.
int MakePrivateFolder(const std::string &path) noexcept;

// 0 when such a folder is there already; what the above gives when it is not, or ENOENT.
int CheckPrivateFolder(const std::string &path) noexcept;

// Where this user's programs keep what lasts for the session: the folder vellum in $XDG_RUNTIME_DIR, if
// that is this user's and nobody else may write there. `test` is one of the two functions above: the folder
// is made if it is not there, or not. Empty without one, and then *error, unless that is null, is what the
// test said, or ENOTDIR for no such $XDG_RUNTIME_DIR. May throw std::bad_alloc.
using PrivateFolderTest = int (*)(const std::string &path) noexcept;
std::string UserTemporaryFolder(PrivateFolderTest test = MakePrivateFolder, int *error = nullptr);

} // namespace vellum
