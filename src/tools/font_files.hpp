// SPDX-License-Identifier: MIT
// Which files the paths on a command line stand for, and why one of them is no font.
#pragma once

#include <string>
#include <vector>

namespace vellum::tool {

struct Refusal {
    std::string path;
    std::string reason;
    bool is_file = false;    // there is something under that path, but it is no font
    bool permission = false; // it may be a font, but it may not be read
};

struct FontFiles {
    std::vector<std::string> paths; // absolute, each once, in the order of the command line
    std::vector<Refusal> refusals;  // what was named and leads to no file
};

// What becomes of a path that leads to nothing. A register may still have a file that is gone.
enum class Gone { kRefused, kKept };

// Files stand for themselves, whatever they are; folders for every file beneath them that looks
// like a font, by content or by name, in the order of their names.
FontFiles FindFontFiles(const std::vector<std::string> &paths, Gone gone = Gone::kRefused);

// Why a file that the register refused is refused.
Refusal ExplainRefusal(const std::string &path);

} // namespace vellum::tool
