// SPDX-License-Identifier: MIT
#include "beacon/name_index.hpp"

#include "platform/log/log.hpp"
#include "service/user_folder.hpp"

#include <sys/stat.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace vellum {

namespace {

// A database of another version is begun anew: nothing in it is worth the reading.
constexpr char kVersion[] = "1";

constexpr char kSchema[] =
    "CREATE TABLE IF NOT EXISTS folders (number INTEGER PRIMARY KEY, path BLOB UNIQUE NOT NULL);"
    "CREATE TABLE IF NOT EXISTS files (number INTEGER PRIMARY KEY, folder INTEGER NOT NULL,"
    " name BLOB NOT NULL, device INTEGER NOT NULL, inode INTEGER NOT NULL, size INTEGER NOT NULL,"
    " seconds INTEGER NOT NULL, nanoseconds INTEGER NOT NULL, type BLOB NOT NULL, faces INTEGER NOT NULL,"
    " UNIQUE (folder, name));"
    "CREATE TABLE IF NOT EXISTS names (attribute INTEGER NOT NULL, name BLOB NOT NULL,"
    " file INTEGER NOT NULL, PRIMARY KEY (attribute, name, file)) WITHOUT ROWID;"
    "CREATE INDEX IF NOT EXISTS names_of_files ON names (file);"
    "PRAGMA user_version = 1;";

bool IdentityOf(const std::string &path, uint64_t &device, uint64_t &inode) noexcept {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return false;
    device = status.st_dev;
    inode = status.st_ino;
    return true;
}

} // namespace

// Those that are run for every file or folder.
struct NameIndex::Statements {
    explicit Statements(sqlite3 *database)
        : find_folder(database, "SELECT number FROM folders WHERE path = ?"),
          add_folder(database, "INSERT INTO folders (path) VALUES (?)"),
          files_in(database,
                   "SELECT name, device, inode, size, seconds, nanoseconds FROM files WHERE folder = ?"),
          find_file(database, "SELECT number FROM files WHERE folder = ? AND name = ?"),
          add_file(database,
                   "INSERT INTO files (folder, name, device, inode, size, seconds, nanoseconds, type,"
                   " faces) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
          add_name(database, "INSERT OR IGNORE INTO names (attribute, name, file) VALUES (?, ?, ?)"),
          remove_names(database, "DELETE FROM names WHERE file = ?"),
          remove_file(database, "DELETE FROM files WHERE number = ?") {}

    Statement find_folder, add_folder, files_in, find_file, add_file, add_name, remove_names, remove_file;
};

std::string NameIndexPath() {
    return MakeUserFolder("XDG_CACHE_HOME", ".cache", "the index") + "/font-index.db";
}

NameIndex::NameIndex(std::string path) : path_(std::move(path)) {
    try {
        Open();
    } catch (const DatabaseError &problem) {
        Close();
        if (!problem.IsOfTheFile()) throw;
        const std::string aside = SetDatabaseAside(path_);
        Log(LogLevel::kError,
            "The index of font files cannot be read from %s and is made anew; it is kept as %s: %s",
            path_.c_str(), aside.c_str(), problem.what());
        Open();
    }
}

NameIndex::~NameIndex() {
    Close();
}

void NameIndex::Close() noexcept {
    statements_.reset();
    sqlite3_close_v2(std::exchange(database_, nullptr));
}

void NameIndex::Open() {
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path_.c_str(), &database_, kFlags, nullptr) != SQLITE_OK)
        ThrowDatabaseError(database_);
    // A reader's lock lasts for one answer, and is in the way of making the log of changes short alone.
    sqlite3_busy_timeout(database_, 2000);
    Run("PRAGMA journal_mode = WAL");
    Run("PRAGMA synchronous = NORMAL");
    Run("PRAGMA journal_size_limit = 4194304");
    std::string version;
    {
        Statement read(database_, "SELECT CAST(user_version AS BLOB) FROM pragma_user_version");
        if (read.Step()) version = read.Bytes(0);
    }
    if (version != kVersion) {
        Run("BEGIN IMMEDIATE; DROP TABLE IF EXISTS names; DROP TABLE IF EXISTS files; DROP TABLE IF EXISTS "
            "folders;");
        Run(kSchema);
        Run("COMMIT");
    }
    if (!IsSound()) throw DatabaseError("the database is damaged", SQLITE_CORRUPT);
    statements_ = std::make_unique<Statements>(database_);
    IdentityOf(path_, device_, inode_);
}

void NameIndex::Run(const char *statement) {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        ThrowDatabaseError(database_);
}

bool NameIndex::IsInPlace() const noexcept {
    uint64_t device = 0, inode = 0;
    return IdentityOf(path_, device, inode) && device == device_ && inode == inode_;
}

bool NameIndex::IsSound() {
    Statement check(database_, "PRAGMA quick_check(1)");
    return check.Step() && check.Bytes(0) == "ok";
}

void NameIndex::Begin() {
    Run("BEGIN IMMEDIATE");
    is_changing_ = true;
}

void NameIndex::Commit() {
    Run("COMMIT");
    is_changing_ = false;
}

void NameIndex::Rollback() noexcept {
    is_changing_ = false;
    if (sqlite3_get_autocommit(database_)) return; // some troubles have done so already
    sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
}

int64_t NameIndex::FolderNumber(std::string_view folder) {
    Statement &find = statements_->find_folder;
    const int64_t number = find.Bind(1, folder).Step() ? find.Integer(0) : 0;
    find.Reset();
    return number;
}

int64_t NameIndex::FileNumber(int64_t folder, std::string_view name) {
    Statement &find = statements_->find_file;
    const int64_t number = find.Bind(1, folder).Bind(2, name).Step() ? find.Integer(0) : 0;
    find.Reset();
    return number;
}

std::map<std::string, TFileIdentity> NameIndex::FilesIn(std::string_view folder) {
    std::map<std::string, TFileIdentity> files;
    const int64_t number = FolderNumber(folder);
    if (number == 0) return files;
    Statement &rows = statements_->files_in;
    rows.Bind(1, number);
    while (rows.Step())
        files[rows.Bytes(0)] = {static_cast<dev_t>(rows.Integer(1)), static_cast<ino_t>(rows.Integer(2)),
                                static_cast<uint64_t>(rows.Integer(3)), rows.Integer(4), rows.Integer(5)};
    rows.Reset();
    return files;
}

std::vector<std::string> NameIndex::Folders() {
    std::vector<std::string> folders;
    Statement rows(database_, "SELECT path FROM folders ORDER BY path");
    while (rows.Step()) folders.push_back(rows.Bytes(0));
    return folders;
}

void NameIndex::Put(std::string_view folder, std::string_view name, const IndexedFile &file) {
    int64_t place = FolderNumber(folder);
    if (place == 0) {
        statements_->add_folder.Bind(1, folder).Run();
        place = sqlite3_last_insert_rowid(database_);
    }
    if (const int64_t former = FileNumber(place, name)) RemoveFile(former);
    const TFileIdentity &identity = file.identity;
    statements_->add_file.Bind(1, place).Bind(2, name).Bind(3, identity.device).Bind(4, identity.inode);
    statements_->add_file.Bind(5, identity.size).Bind(6, identity.seconds).Bind(7, identity.nanoseconds);
    statements_->add_file.Bind(8, file.content_type).Bind(9, file.faces).Run();
    const int64_t number = sqlite3_last_insert_rowid(database_);
    for (const IndexedName &entry : file.names)
        statements_->add_name.Bind(1, static_cast<int>(entry.attribute))
            .Bind(2, entry.name)
            .Bind(3, number)
            .Run();
}

void NameIndex::RemoveFile(int64_t number) {
    statements_->remove_names.Bind(1, number).Run();
    statements_->remove_file.Bind(1, number).Run();
}

void NameIndex::Remove(std::string_view folder, std::string_view name) {
    const int64_t place = FolderNumber(folder);
    const int64_t number = place ? FileNumber(place, name) : 0;
    if (number == 0) return;
    RemoveFile(number);
    Statement(database_, "DELETE FROM folders WHERE number = ?1"
                         " AND NOT EXISTS (SELECT 1 FROM files WHERE folder = ?1)")
        .Bind(1, place)
        .Run();
}

void NameIndex::RemoveFolder(std::string_view folder) {
    const int64_t place = FolderNumber(folder);
    if (place == 0) return;
    for (const char *text : {"DELETE FROM names WHERE file IN (SELECT number FROM files WHERE folder = ?)",
                             "DELETE FROM files WHERE folder = ?", "DELETE FROM folders WHERE number = ?"})
        Statement(database_, text).Bind(1, place).Run();
}

void NameIndex::ForgetIdentities() {
    Run("UPDATE files SET inode = 0, size = 0, seconds = 0, nanoseconds = 0");
}

IndexCounts NameIndex::Count() {
    Statement count(database_, "SELECT COUNT(*), TOTAL(faces) FROM files WHERE faces > 0");
    if (!count.Step()) return {};
    return {static_cast<uint64_t>(count.Integer(0)), static_cast<uint64_t>(count.Integer(1))};
}

} // namespace vellum
