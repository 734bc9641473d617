// SPDX-License-Identifier: MIT
#include "server/session_boot.hpp"

#include "service/database.hpp"

#include <unistd.h>

#include <fstream>
#include <memory>

namespace vellum {

namespace {

struct Close {
    void operator()(sqlite3 *database) const noexcept { sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, Close>;

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

// Empty where none was written.
std::string WrittenBoot(sqlite3 *database) {
    Statement statement(database, "SELECT id FROM boot");
    return statement.Step() ? statement.Bytes(0) : std::string();
}

void Write(sqlite3 *database, const std::string &boot) {
    Statement(database, "INSERT INTO boot (id) VALUES (?)").Bind(1, boot).Run();
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
    } catch (...) { // whoever opens the database says what is wrong with it
    }
}

} // namespace vellum
