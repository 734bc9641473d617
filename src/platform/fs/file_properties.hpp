// SPDX-License-Identifier: MIT
// What the file system says about a file.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace vellum {

enum class TFileKind : uint8_t { kRegular, kFolder, kOther };

// Since 1970; a time before that has negative seconds and still counts its nanoseconds upward.
struct TFileTime {
    int64_t seconds = 0;
    uint32_t nanoseconds = 0;

    auto operator<=>(const TFileTime &) const = default;
};

// Of what a symbolic link leads to, but for name and parent, which are the path's.
struct TFileProperties {
    std::string name;
    std::string parent; // the path of the folder; ends with a slash for the root alone
    TFileKind kind = TFileKind::kOther;
    uint64_t device = 0;
    uint64_t inode = 0;
    uint64_t size = 0;                // 0 for what is no regular file
    uint64_t fork_size = 0;           // of the second fork
    std::optional<TFileTime> created; // not every file system knows
    TFileTime modified;

    // Whether both are of one file with one content, as far as anybody can tell without reading it.
    bool IsOfSameState(const TFileProperties &other) const noexcept {
        return device == other.device && inode == other.inode && size == other.size &&
               fork_size == other.fork_size && modified == other.modified;
    }
};

// The properties of what is at an absolute path; none when there is nothing, or it may not be asked for.
// Nothing is opened. May throw std::bad_alloc.
std::optional<TFileProperties> ReadFileProperties(const std::string &path);

} // namespace vellum
