// SPDX-License-Identifier: MIT
// Which fonts a document asks for, by their names.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vellum::tool {

// Why a document can't be read.
class UnreadableDocument : public std::runtime_error {
public:
    UnreadableDocument(const std::string &reason, bool permission = false)
        : std::runtime_error(reason), is_permission(permission) {}

    const bool is_permission; // it may not be read; otherwise it is none that is understood
};

// The names in a document, each once, in the order in which they first stand there: of families, mostly.
// What kind of document it is, its content says:
//
//   text and presentation documents and tables of OpenDocument and Office Open XML
//   SVG, HTML, style sheets, flat OpenDocument
//   plain text with a name a line; "#" begins a comment
//
// Throws UnreadableDocument.
std::vector<std::string> NamesInDocument(const std::string &path);

} // namespace vellum::tool
