// SPDX-License-Identifier: MIT
// What is seen of a folder: the states of its files, and the reading of a folder in parts, so that a large
// one keeps nobody waiting.
#pragma once

#include "platform/fs/directory.hpp"
#include "platform/fs/file.hpp"

#include <cstdint>
#include <set>
#include <string>

namespace vellum {

// What a name in a folder leads to. Two that are equal are the same file with the same content, as far as
// anybody can tell without reading it.
struct FileState {
    bool is_link = false;
    bool is_file = false; // a regular one, through links or not; else what follows is empty
    bool is_readable = false;
    TFileIdentity identity;

    bool operator==(const FileState &) const = default;
};

FileState ReadFileState(const std::string &path) noexcept;

// True for a file that came whole, by a symbolic link or another name of it: nobody is writing it.
bool IsLinkOrHasSeveralNames(const std::string &path) noexcept;

// The names in a folder, read in parts, and then taken in the order of their bytes.
class FolderReading {
public:
    explicit FolderReading(const std::string &path) noexcept : reader_(path.c_str()) {}

    // Reads some names; true while there may be more of them.
    bool ReadOn(int most);

    // Once all are read: takes the first of the files, false when there are none left.
    bool TakeFile(std::string &name);

    // Folders themselves: links to folders are among the files.
    const std::set<std::string> &Folders() const noexcept { return folders_; }

private:
    DirectoryReader reader_;
    std::set<std::string> files_, folders_;
};

} // namespace vellum
