// SPDX-License-Identifier: MIT
// The user's folders, and the reading and replacing of small files in them.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace vellum::legacy {

// $XDG_CONFIG_HOME and $XDG_DATA_HOME, or what stands for them below $HOME, spelt as fontconfig spells
// paths. Empty when there is neither, or it is no absolute path, and in a program that runs with rights
// that its caller does not have (set-uid, say).
std::string ConfigHome();
std::string DataHome();

// A folder with all above it, readable by the user alone where it has to be made. Whether it is there.
bool MakeFolders(const std::string &folder);

// The bytes of a file; empty when there is none. Nothing when it can't be read, is no file of bytes, or is
// longer than any that this service writes.
std::optional<std::string> ReadSmallFile(const std::string &path);

// Puts a file in the place of what is there, on the disk and all at once: whoever reads sees the old one or
// the new one. It keeps the mode of the old one; a file that is new is the user's alone. A symbolic link
// stays, and what it names is replaced; one that leads to nothing is replaced itself.
bool ReplaceFile(const std::string &path, std::string_view bytes);

// Takes away what processes that were killed while they replaced a file have left beside it. For who holds
// the lock that all take who replace the file: what one of them is writing would go as well.
void RemoveUnfinished(const std::string &path);

// A lock that processes take by a file's name; held until the object dies.
class TFileLock {
public:
    // Waits for whoever holds it, but not for ever: a process that was stopped would stop all others.
    TFileLock(const std::string &path, std::chrono::milliseconds patience);
    ~TFileLock();
    TFileLock(const TFileLock &) = delete;
    TFileLock &operator=(const TFileLock &) = delete;

    explicit operator bool() const noexcept { return is_held_; }

private:
    int file_ = -1;
    bool is_held_ = false;
};

} // namespace vellum::legacy
