// SPDX-License-Identifier: MIT
#include "server/state_database.hpp"

#include "platform/log/log.hpp"
#include "service/database.hpp"

#include <sqlite3.h>

#include <exception>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace vellum {

namespace {

constexpr char kSchema[] =
    "BEGIN;"
    "CREATE TABLE IF NOT EXISTS files"
    " (number INTEGER PRIMARY KEY, path BLOB UNIQUE NOT NULL, flags INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS directories (number INTEGER PRIMARY KEY,"
    " path BLOB UNIQUE NOT NULL, flags INTEGER NOT NULL, options INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS disabled"
    " (number INTEGER PRIMARY KEY, url BLOB UNIQUE NOT NULL);"
    "CREATE TABLE IF NOT EXISTS noted_files (path BLOB PRIMARY KEY) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS noted_disabled (url BLOB PRIMARY KEY) WITHOUT ROWID;"
    "COMMIT";

// Runs a statement with the key of each row.
template <class Rows, class KeyOf>
void ForEach(sqlite3 *database, const char *text, const Rows &rows, KeyOf key_of) {
    if (rows.empty()) return;
    Statement statement(database, text);
    for (const auto &row : rows) statement.Bind(1, key_of(row)).Run();
}

constexpr auto kPath = [](const auto &row) { return std::string_view(row.path); };
constexpr auto kText = [](const std::string &text) { return std::string_view(text); };

} // namespace

StateDatabase::StateDatabase(const std::string &path) {
    try {
        Open(path);
    } catch (const DatabaseError &problem) {
        sqlite3_close_v2(std::exchange(database_, nullptr));
        if (!problem.IsOfTheFile()) throw std::runtime_error(path + ": " + problem.what());
        const std::string aside = SetDatabaseAside(path);
        Log(LogLevel::kError, "What was registered cannot be read from %s, which is kept as %s: %s",
            path.c_str(), aside.c_str(), problem.what());
        try {
            Open(path);
        } catch (const DatabaseError &still) {
            sqlite3_close_v2(std::exchange(database_, nullptr));
            throw std::runtime_error(path + ": " + still.what());
        }
    }
}

StateDatabase::~StateDatabase() {
    sqlite3_close_v2(database_);
}

void StateDatabase::Open(const std::string &path) {
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.c_str(), &database_, kFlags, nullptr) != SQLITE_OK)
        ThrowDatabaseError(database_);
    if (sqlite3_db_readonly(database_, "main") == 1)
        throw DatabaseError("it may be read alone", SQLITE_READONLY);
    // Only a database that is being made is written to here: what a failure of power leaves of it holds
    // nothing that anybody has saved. Afterwards each change says how sure it has to be.
    Run("PRAGMA synchronous = OFF");
    // The log of changes survives the process's end as it is; the server is its only reader.
    Run("PRAGMA locking_mode = EXCLUSIVE");
    Run("PRAGMA journal_mode = WAL");
    Run(kSchema);
    Run("PRAGMA synchronous = NORMAL");
    Load(); // what cannot be read is found out here
}

void StateDatabase::Run(const char *statement) const {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        ThrowDatabaseError(database_);
}

SavedState StateDatabase::Load() const {
    SavedState state;
    Statement files(database_, "SELECT path, flags FROM files ORDER BY number");
    while (files.Step()) state.files.push_back({files.Bytes(0), files.Number(1)});
    Statement directories(database_, "SELECT path, flags, options FROM directories ORDER BY number");
    while (directories.Step())
        state.directories.push_back({directories.Bytes(0), directories.Number(1), directories.Number(2)});
    Statement disabled(database_, "SELECT url FROM disabled ORDER BY number");
    while (disabled.Step()) state.disabled.push_back(disabled.Bytes(0));
    return state;
}

void StateDatabase::Write(const StateChange &change) const {
    ForEach(database_, "DELETE FROM files WHERE path = ?", change.removed.files, kPath);
    ForEach(database_, "DELETE FROM directories WHERE path = ?", change.removed.directories, kPath);
    ForEach(database_, "DELETE FROM disabled WHERE url = ?", change.removed.disabled, kText);
    Statement file(database_, "INSERT OR REPLACE INTO files (path, flags) VALUES (?, ?)");
    for (const SavedFile &row : change.added.files) file.Bind(1, row.path).Bind(2, row.flags).Run();
    Statement directory(database_,
                        "INSERT OR REPLACE INTO directories (path, flags, options) VALUES (?, ?, ?)");
    for (const SavedDirectory &row : change.added.directories)
        directory.Bind(1, row.path).Bind(2, row.flags).Bind(3, row.options).Run();
    Statement disabled(database_, "INSERT OR IGNORE INTO disabled (url) VALUES (?)");
    for (const std::string &text : change.added.disabled) disabled.Bind(1, text).Run();
}

// A change that fails leaves nothing behind.
template <class Work>
bool StateDatabase::InTransaction(bool on_disk, Work work) noexcept {
    try {
        Run(on_disk ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
        Run("BEGIN IMMEDIATE");
        work();
        Run("COMMIT");
        return true;
    } catch (const std::exception &problem) {
        Log(LogLevel::kError, "A change of the registered fonts could not be saved: %s", problem.what());
        if (!sqlite3_get_autocommit(database_))
            sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
        return false;
    }
}

bool StateDatabase::Apply(const StateChange &change, bool on_disk, const SavedState &elsewhere) noexcept {
    if (change.IsEmpty() && elsewhere.IsEmpty()) return true;
    return InTransaction(on_disk, [&] {
        Write(change);
        ForEach(database_, "INSERT OR IGNORE INTO noted_files VALUES (?)", elsewhere.files, kPath);
        ForEach(database_, "INSERT OR IGNORE INTO noted_disabled VALUES (?)", elsewhere.disabled, kText);
    });
}

SavedState StateDatabase::LoadNoted() const {
    SavedState noted;
    Statement files(database_, "SELECT path FROM noted_files");
    while (files.Step()) noted.files.push_back({files.Bytes(0), 0});
    Statement disabled(database_, "SELECT url FROM noted_disabled");
    while (disabled.Step()) noted.disabled.push_back(disabled.Bytes(0));
    return noted;
}

bool StateDatabase::ForgetNoted() noexcept {
    return InTransaction(false, [this] { Run("DELETE FROM noted_files; DELETE FROM noted_disabled"); });
}

} // namespace vellum
