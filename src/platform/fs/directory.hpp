// SPDX-License-Identifier: MIT
// Listing a directory.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellum {

struct DirectoryEntry {
    std::string name;
    bool is_directory; // a directory itself; a symbolic link to one is none
};

// Reads a directory entry by entry, as they come, without "." and "..".
class DirectoryReader {
public:
    explicit DirectoryReader(const char *path) noexcept;

    bool IsOpen() const noexcept { return directory_ != nullptr; }

    // None when there are no more. May throw std::bad_alloc.
    std::optional<DirectoryEntry> Next();

private:
    struct Close {
        void operator()(void *directory) const noexcept;
    };
    std::unique_ptr<void, Close> directory_; // a DIR
};

// The entries but "." and "..", by the bytes of their names, so that every run sees the same
// order. Empty when the directory can't be read. May throw std::bad_alloc.
std::vector<DirectoryEntry> ListDirectory(const char *path);

// True when `path` is a directory that can be opened for reading.
bool CanOpenDirectory(const char *path) noexcept;

// True when a folder has an entry of a name, of whatever kind, a dangling link too. May throw
// std::bad_alloc.
bool HasEntry(const std::string &folder, const std::string &name);

} // namespace vellum
