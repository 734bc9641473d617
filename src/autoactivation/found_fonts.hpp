// SPDX-License-Identifier: MIT
// The fonts in files that a search found: those that fit, folder by folder, best first.
#pragma once

#include <vellum/values.hpp>

#include <vector>

namespace vellum {

// Files, an array of file URLs, by the folder in which they lie: folders in the order in which they first
// appear, files in theirs. Throws std::bad_alloc, as what follows does.
std::vector<Ref<const ValArray>> GroupByFolder(const ValArray *files);

// The faces of files that fit a request, best first, by their URLs. Faces that a register knows and holds
// disabled are left out: who disabled them does not want them. Null for none.
Ref<const ValArray> CopyFittingFaces(const ValArray *files, const ValDictionary *request);

// Whether one of the faces lies in a file that was downloaded.
bool HasQuarantinedFace(const ValArray *faces);

} // namespace vellum
