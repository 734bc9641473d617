// SPDX-License-Identifier: MIT
// Bundles of code that are loaded at run time: the folder NAME.framework, and in it the code, NAME.so.
#pragma once

#include <string_view>

namespace vellum {

// Whether a bundle's code is there, and may be read. May throw std::bad_alloc.
bool HasBundleCode(std::string_view folder);

// The address that the code of a bundle exports under a name. Null when the folder, its code or the name is
// not there, or the code can't be loaded. Code stays loaded. The folder must be an absolute path: no other
// is searched. May throw std::bad_alloc.
void *LoadBundleSymbol(std::string_view folder, const char *name);

} // namespace vellum
