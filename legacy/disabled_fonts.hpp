// SPDX-License-Identifier: MIT
// Which fonts are disabled for the user, and the text that this is kept in.
//
// A line a font: "file://", the path with every unusual byte escaped, and for a single face
// "#postscript-name=NAME;index=NUMBER", of which one part may be missing. Without a face, the path may be a
// folder's: all below it is meant, whatever comes into it later. Lines of any other form are kept as they
// are and mean nothing: a later release or a person may have written them.
#pragma once

#include "font_faces.hpp"

#include <functional>
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

    using FilesByPath = std::map<std::string, File, std::less<>>;

    // A file of which every face is disabled is disabled as a whole.
    void Disable(const SelectedFont &font);

    // A file's URL enables all of its faces, a folder's all below it. A face of a file that is disabled as
    // a whole: the file's other faces stay disabled, one by one; if it could not be read, the file is
    // enabled. What lies in a folder that is disabled: all else in there stays so, one by one; again, as
    // far as the folder can be read.
    void Enable(const SelectedFont &font);

    // Whether all of it is, by itself or with a folder above it.
    bool IsFileDisabled(std::string_view path) const;

    // Files and folders.
    const FilesByPath &Files() const noexcept { return files_; }

private:
    bool ReadLine(std::string_view line);
    bool IsWhole(std::string_view path) const;
    void OpenFoldersAbove(const std::string &path);
    void DisableAllIn(const std::string &folder);

    FilesByPath files_;
    std::vector<std::string> other_lines_;
};

} // namespace vellum::legacy
