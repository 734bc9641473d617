// SPDX-License-Identifier: MIT
// The names of fonts in a document's XML: attributes and styles of SVG, OpenDocument and Office Open XML.
#pragma once

#include "tools/name_list.hpp"

#include <string_view>

namespace vellum::tool {

// Adds those of one XML document; false when it is not well formed. Those before the fault are added.
bool AddNamesInXML(std::string_view xml, NameList &names);

} // namespace vellum::tool
