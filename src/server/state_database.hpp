// SPDX-License-Identifier: MIT
// What the server must not lose, in a database: one for the user, one that lasts for the session.
//
// A change is one transaction: after a crash it is there as a whole or not at all. It is in the system's
// hands when Apply returns, and on the disk when that was asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace vellum {

struct SavedFile {
    std::string path;
    uint32_t flags = 0;
};
struct SavedDirectory {
    std::string path;
    uint32_t flags = 0;
    uint32_t options = 0;
};

// What is saved, and what a change adds to it and takes away from it.
struct SavedState {
    std::vector<SavedFile> files;
    std::vector<SavedDirectory> directories;
    std::vector<std::string> disabled; // texts of faces' URLs

    bool IsEmpty() const noexcept { return files.empty() && directories.empty() && disabled.empty(); }
};
struct StateChange {
    SavedState added;
    SavedState removed; // of which paths and texts count

    bool IsEmpty() const noexcept { return added.IsEmpty() && removed.IsEmpty(); }
};

class StateDatabase {
public:
    // Opens or makes the database. A file that is none any more is set aside, under its name and ".broken",
    // and begun anew; the log says so. Throws std::runtime_error when the trouble is another, and when the
    // database can be read alone. A path of ":memory:" is no file, and lasts as long as the object.
    explicit StateDatabase(const std::string &path);
    ~StateDatabase();
    StateDatabase(const StateDatabase &) = delete;
    StateDatabase &operator=(const StateDatabase &) = delete;

    // In the order in which it was saved. Throws std::runtime_error.
    SavedState Load() const;

    // False when the disk is full or out of order; nothing of the change is saved then, and the log says
    // why. With the change is noted what another database still has to forget.
    bool Apply(const StateChange &change, bool on_disk, const SavedState &elsewhere = {}) noexcept;

    // What was noted, files and disabled faces alone, and that the other database has done so. The former
    // throws std::runtime_error, the latter is false when the disk is out of order.
    SavedState LoadNoted() const;
    bool ForgetNoted() noexcept;

private:
    template <class Work>
    bool InTransaction(bool on_disk, Work work) noexcept;
    void Open(const std::string &path);
    void Run(const char *statement) const;
    void Write(const StateChange &change) const;

    sqlite3 *database_ = nullptr;
};

} // namespace vellum
