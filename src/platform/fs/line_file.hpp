// SPDX-License-Identifier: MIT
// A file that lines are appended to, by several writers perhaps, in a process that is somebody else's.
//
// No line ends the process or keeps it waiting: the file is a regular one, and its limit raises no signal.
// It stays open; a descriptor that the program has closed, and may have opened as another file, is left
// alone.
#pragma once

#include "platform/fs/file.hpp"

#include <atomic>
#include <string>

namespace vellum {

class TLineFile {
public:
    // Opens or makes (with mode 0600) the file; errno says why not. ENOTSUP: it is no regular file.
    bool Open(const char *path) noexcept;

    // Appends a text and a line's end, in one piece. What can't be written is lost; the line after one that
    // was cut begins anew. False when the file is not this one's any more.
    bool Append(std::string line);

private:
    bool IsOurs() const noexcept;

    int descriptor_ = -1; // never closed: only the process's end is sure to come last
    TFileIdentity identity_;
    std::atomic<bool> was_cut_{false};
};

} // namespace vellum
