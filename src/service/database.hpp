// SPDX-License-Identifier: MIT
// SQLite as the services use it.
#pragma once

#include <sqlite3.h>

#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vellum {

// What SQLite has against what was last asked of a database; null: memory is exhausted.
struct DatabaseError : std::runtime_error {
    explicit DatabaseError(sqlite3 *database)
        : std::runtime_error(database ? sqlite3_errmsg(database) : "memory is exhausted"),
          code(database ? sqlite3_errcode(database) : SQLITE_NOMEM) {}
    DatabaseError(const char *what, int its_code) : std::runtime_error(what), code(its_code) {}

    // What is in the file is no database; other troubles may pass.
    bool IsOfTheFile() const noexcept { return code == SQLITE_CORRUPT || code == SQLITE_NOTADB; }

    int code;
};

[[noreturn]] inline void ThrowDatabaseError(sqlite3 *database) {
    throw DatabaseError(database);
}

// Gives a database that nobody has open a name that nothing has yet, its own and ".broken", with the log of
// its changes; the name comes back.
std::string SetDatabaseAside(const std::string &path);

// A statement that may be run over and over. All operations throw DatabaseError.
class Statement {
public:
    Statement(sqlite3 *database, const char *text) : database_(database) {
        if (sqlite3_prepare_v2(database, text, -1, &statement_, nullptr) != SQLITE_OK)
            ThrowDatabaseError(database);
    }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    ~Statement() { sqlite3_finalize(statement_); }

    // Both count from the left: parameters from 1, columns from 0. Bytes are borrowed until the next step.
    Statement &Bind(int place, std::string_view bytes) {
        return Check(sqlite3_bind_blob64(statement_, place, bytes.empty() ? "" : bytes.data(), bytes.size(),
                                         SQLITE_STATIC));
    }
    template <std::integral T>
    Statement &Bind(int place, T number) {
        return Check(sqlite3_bind_int64(statement_, place, static_cast<int64_t>(number)));
    }

    // True while there is a row.
    bool Step() {
        const int result = sqlite3_step(statement_);
        if (result != SQLITE_ROW && result != SQLITE_DONE) ThrowDatabaseError(database_);
        return result == SQLITE_ROW;
    }
    void Run() {
        Step();
        Reset();
    }
    void Reset() { Check(sqlite3_reset(statement_)); }

    std::string Bytes(int column) {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement_, column));
        const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, column));
        return bytes ? std::string(bytes, size) : std::string();
    }
    int64_t Integer(int column) { return sqlite3_column_int64(statement_, column); }
    uint32_t Number(int column) { return static_cast<uint32_t>(Integer(column)); }

private:
    Statement &Check(int result) {
        if (result != SQLITE_OK) ThrowDatabaseError(database_);
        return *this;
    }

    sqlite3 *const database_;
    sqlite3_stmt *statement_ = nullptr;
};

} // namespace vellum
