// SPDX-License-Identifier: MIT
// Questions about one folder.
#pragma once

#include <string>
#include <string_view>

namespace vellum {

// True when `path` itself is a folder: a symbolic link to one is none, with slashes behind its name or
// without. May throw std::bad_alloc.
bool IsFolder(std::string_view path);

// True when `path` leads to a folder, through symbolic links or not.
bool LeadsToFolder(const char *path) noexcept;

// The absolute path of a folder, with no symbolic link in it; empty when there is no such folder. May
// throw std::bad_alloc.
std::string RealFolderPath(const std::string &path);

} // namespace vellum
