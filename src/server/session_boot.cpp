// SPDX-License-Identifier: MIT
#include "server/session_boot.hpp"

#include <sqlite3.h>
#include <unistd.h>

#include <fstream>
#include <memory>

namespace vellum {

namespace {

struct Close {
    void operator()(sqlite3 *database) const noexcept { sqlite3_close_v2(database); }
    void operator()(sqlite3_stmt *statement) const noexcept { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

// What the system calls its run since it was started; empty where it says nothing.
std::string CurrentBoot() {
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string boot;
    std::getline(file, boot);
    return boot;
}

// Null for what is no database.
Database Open(const std::string &path) {
    sqlite3 *opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    Database database(opened);
    // Nothing here has to outlast the machine's run.
    constexpr char kTable[] =
        "PRAGMA synchronous = OFF; CREATE TABLE IF NOT EXISTS boot (id TEXT NOT NULL)";
    if (result != SQLITE_OK || sqlite3_exec(opened, kTable, nullptr, nullptr, nullptr) != SQLITE_OK)
        return nullptr;
    return database;
}

Statement Prepare(sqlite3 *database, const char *text) {
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, text, -1, &statement, nullptr);
    return Statement(statement);
}

// Empty where none was written.
std::string WrittenBoot(sqlite3 *database) {
    const Statement statement = Prepare(database, "SELECT id FROM boot");
    if (!statement || sqlite3_step(statement.get()) != SQLITE_ROW) return {};
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement.get(), 0));
    return text ? text : "";
}

void Write(sqlite3 *database, const std::string &boot) {
    const Statement statement = Prepare(database, "INSERT INTO boot (id) VALUES (?)");
    if (!statement) return;
    sqlite3_bind_text(statement.get(), 1, boot.c_str(), -1, SQLITE_STATIC);
    sqlite3_step(statement.get());
}

} // namespace

void ForgetFormerBoot(const std::string &path) noexcept {
    try {
        const std::string boot = CurrentBoot();
        Database database = boot.empty() ? nullptr : Open(path);
        if (!database) return;
        const std::string written = WrittenBoot(database.get());
        if (written == boot) return;
        if (!written.empty()) {
            database.reset();
            for (const char *part : {"", "-wal", "-shm"}) ::unlink((path + part).c_str());
            database = Open(path);
        }
        if (database) Write(database.get(), boot);
    } catch (...) { // memory is exhausted: whoever opens the database says so
    }
}

} // namespace vellum
