// SPDX-License-Identifier: MIT
// Which faces files hold, and why some cannot be read: known before any of them is changed.
#pragma once

#include "tools/file_faces.hpp"
#include "tools/font_set.hpp"

#include <map>
#include <string>
#include <vector>

namespace vellum::tool {

class FileContents {
public:
    // Reads all of the files; their faces are not registered afterwards.
    explicit FileContents(const std::vector<std::string> &paths);

    // A file's faces of a PostScript name, or all when it is empty.
    std::vector<FoundFont> FacesOf(const std::string &path, const std::string &postscript_name) const;

    // Null for a file that has faces.
    const Refusal *WhyUnreadable(const std::string &path) const;

private:
    std::map<std::string, std::vector<FoundFont>> faces_; // by path
    std::map<std::string, Refusal> refusals_;             // by path
};

// A URL from its text.
Ref<const ValURL> ParseURL(const std::string &text);

// The URL of one face of a file, without a look into it.
Ref<const ValURL> FaceURL(const std::string &path, const std::string &postscript_name);

} // namespace vellum::tool
