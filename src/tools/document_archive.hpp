// SPDX-License-Identifier: MIT
// Documents that are archives: what of them may name fonts.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vellum::tool {

// Whether a file's first bytes are those of such an archive.
bool IsArchive(std::string_view first_bytes);

// Calls `read(name, content)` with each part of OpenDocument and Office Open XML that may name fonts.
// False when the archive is damaged, or its parts are larger than a document's ever are.
bool ReadParts(const std::string &path,
               const std::function<void(std::string_view, std::string_view)> &read);

} // namespace vellum::tool
