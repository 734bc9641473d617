// SPDX-License-Identifier: MIT
// The index of font files by name: a database that one process writes, the crawler, and another reads.
//
// What is in it can be found again: it lies with what is cached, and one that cannot be read is begun anew.
// A reader sees what was committed last, and never waits for the writer.
#pragma once

#include "beacon/query_language.hpp"
#include "platform/fs/file.hpp"
#include "service/database.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vellum {

// vellum/font-index.db in $XDG_CACHE_HOME, the folders on the way made. Throws std::runtime_error.
std::string NameIndexPath();

// One name that a file is found by.
struct IndexedName {
    NameAttribute attribute;
    std::string name;

    auto operator<=>(const IndexedName &) const = default;
};

// A file that looks like a font's, as it was read. One without faces is no font: it is remembered so that
// it is not read again, and never found.
struct IndexedFile {
    TFileIdentity identity;
    std::string content_type;
    uint32_t faces = 0;
    std::vector<IndexedName> names;
};

struct IndexCounts {
    uint64_t files = 0; // with faces
    uint64_t faces = 0;
};

// The writer's end. All operations throw DatabaseError, and std::bad_alloc; what was written since Begin is
// lost then. Folders are absolute paths.
class NameIndex {
public:
    // Opens or makes the database. A file that is none any more is set aside and begun anew; the log says
    // so.
    explicit NameIndex(std::string path);
    ~NameIndex();
    NameIndex(const NameIndex &) = delete;
    NameIndex &operator=(const NameIndex &) = delete;

    // False when the database was taken away, or another put in its place: people empty their caches.
    bool IsInPlace() const noexcept;

    // Looks through everything: false when something is broken, which the answers need not show.
    bool IsSound();

    // A change is written between these, or not at all. Rollback throws nothing.
    void Begin();
    void Commit();
    void Rollback() noexcept;
    bool IsChanging() const noexcept { return is_changing_; }

    // What is known of the files that lie in a folder itself, by name.
    std::map<std::string, TFileIdentity> FilesIn(std::string_view folder);

    // The folders in which files are known, in the order of their paths.
    std::vector<std::string> Folders();

    void Put(std::string_view folder, std::string_view name, const IndexedFile &file);
    void Remove(std::string_view folder, std::string_view name);
    void RemoveFolder(std::string_view folder);

    // Has every file be taken for changed; what is known of it stays until it was read again.
    void ForgetIdentities();

    IndexCounts Count();

private:
    struct Statements;

    void Open();
    void Close() noexcept;
    void Run(const char *statement);
    int64_t FolderNumber(std::string_view folder); // 0 when it is not known
    int64_t FileNumber(int64_t folder, std::string_view name);
    void RemoveFile(int64_t number);

    const std::string path_;
    sqlite3 *database_ = nullptr;
    std::unique_ptr<Statements> statements_;
    uint64_t device_ = 0, inode_ = 0; // of the file that is open
    bool is_changing_ = false;
};

} // namespace vellum
