// SPDX-License-Identifier: MIT
// Bookmarks: bytes that lead back to a file or folder, also after it was renamed where it lies.
//
// The form of version 1, all words big-endian, nothing before, between or behind them:
//
//     at  bytes
//      0      4  "VBkm"
//      4      4  version, 1
//      8      8  device
//     16      8  inode
//     24      8  size in bytes; 0 for what is no regular file
//     32      4  length of the path, 1 to 4095
//     36         the path, absolute, of any bytes but zero
//
// Bookmarks that are kept outlive restarts. Device numbers may not: then a path is all that is left.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vellum {

// The bookmark of what is at an absolute path; empty when nothing is, or the path is too long. May throw
// std::bad_alloc.
std::vector<uint8_t> CreateBookmark(std::string path);

struct TResolvedBookmark {
    std::string path;
    bool is_folder = false;
};

// What the bookmark leads to: whatever is at its path; else the first entry, by name, of the same folder
// that has its device, inode and size (an inode soon gets another file when its own is gone, but hardly
// one of the same size). None when there is neither. The bytes may come from anybody: what is no
// bookmark gives none, and nothing but names and properties is read of what they name. May throw
// std::bad_alloc.
std::optional<TResolvedBookmark> ResolveBookmark(std::span<const uint8_t> bookmark);

} // namespace vellum
