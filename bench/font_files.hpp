// SPDX-License-Identifier: MIT
// The font files that benchmarks read.
#pragma once

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vellum::bench {

using TFiles = std::vector<std::string>;

inline bool IsSfnt(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4> magic = {};
    file.read(magic.data(), magic.size());
    const std::string text(magic.data(), magic.size());
    return text == std::string("\0\1\0\0", 4) || text == "OTTO" || text == "ttcf" || text == "true";
}

// The sfnt files below the folders, sorted; below those of the installed packages when none is named.
inline TFiles FindFontFiles(std::vector<std::string> folders) {
    if (folders.empty()) folders = {"/usr/share/fonts", "/usr/share/texmf/fonts"};
    TFiles files;
    for (const std::string &folder : folders) {
        std::error_code error;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder, error)) {
            if (entry.is_regular_file() && IsSfnt(entry.path())) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace vellum::bench
