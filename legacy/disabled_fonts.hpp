// SPDX-License-Identifier: MIT
// Which fonts are disabled for the user, and the text that this is kept in.
//
// A line a font: "file://", the path with every unusual byte escaped, and for a single face
// "#postscript-name=NAME;index=NUMBER", of which one part may be missing. Lines of any other form are kept
// as they are and mean nothing: a later release or a person may have written them.
#pragma once

#include "font_faces.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::legacy {

class TDisabledFonts {
public:
    struct File {
        bool is_whole = false;       // with all its faces, those too that it may get later
        std::vector<FontFace> faces; // else these
    };

    TDisabledFonts() = default;
    explicit TDisabledFonts(std::string_view text);

    std::string Text() const;

    // A file of which every face is disabled is disabled as a whole.
    void Disable(const SelectedFont &font);

    // A file's URL enables all of its faces. A face of a file that is disabled as a whole: the file's other
    // faces stay disabled, one by one; if it could not be read, the file is enabled.
    void Enable(const SelectedFont &font);

    bool IsFileDisabled(const std::string &path) const;

    // By path.
    const std::map<std::string, File> &Files() const noexcept { return files_; }

private:
    bool ReadLine(std::string_view line);

    std::map<std::string, File> files_;
    std::vector<std::string> other_lines_;
};

} // namespace vellum::legacy
