// SPDX-License-Identifier: MIT
// The index of font files, as its clients ask it. Searching it is platform/beacon/metadata_query.hpp.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>

namespace vellum {

// How the index is, once all files are read and it has seen other changes than so many, or in so many
// milliseconds (3,000 at the most): see VLCopyFontIndexStatus. Null when nobody answers. Throws
// std::bad_alloc.
Ref<const ValDictionary> CopyFontIndexStatus(uint32_t patience, uint32_t changes);

// Has every file be read again. False when nobody answers. Throws std::bad_alloc.
bool RebuildFontIndex();

} // namespace vellum
