// SPDX-License-Identifier: MIT
#include "beacon/name_lookup.hpp"

#include "service/database.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace vellum {

namespace {

using Clock = std::chrono::steady_clock;

// SQLite asks whether to go on after so many of its steps.
constexpr int kStepsBetweenLooks = 10'000;

int IsOver(void *end) noexcept {
    return Clock::now() > *static_cast<const Clock::time_point *>(end);
}

// Styles tell least: what else is asked for comes first.
std::vector<NameClause> InOrderOfUse(std::vector<NameClause> clauses) {
    std::stable_partition(clauses.begin(), clauses.end(), [](const NameClause &clause) {
        return clause.attribute != NameAttribute::kStyle;
    });
    return clauses;
}

// The first clause leads to the files; the others are looked up for each.
std::string TextFor(size_t clauses) {
    std::string text =
        "SELECT folders.path, files.name, files.type, files.seconds, files.nanoseconds FROM names"
        " JOIN files ON files.number = names.file JOIN folders ON folders.number = files.folder"
        " WHERE names.attribute = ?1 AND names.name = ?2";
    for (size_t i = 1; i < clauses; ++i)
        text += " AND EXISTS (SELECT 1 FROM names AS other WHERE other.attribute = ?" +
                std::to_string(2 * i + 1) + " AND other.name = ?" + std::to_string(2 * i + 2) +
                " AND other.file = names.file)";
    return text + " ORDER BY files.seconds, files.nanoseconds, folders.path, files.name";
}

} // namespace

NameLookup::~NameLookup() {
    Close();
}

void NameLookup::Close() noexcept {
    sqlite3_close_v2(std::exchange(database_, nullptr));
}

bool NameLookup::IsThere() const noexcept {
    struct stat status;
    return ::stat(path_.c_str(), &status) == 0;
}

// The crawler may have begun a new index, or the cache may have been emptied.
bool NameLookup::OpenWhatIsThere() {
    struct stat status;
    if (::stat(path_.c_str(), &status) != 0) {
        Close();
        return false;
    }
    if (database_ && status.st_dev == device_ && status.st_ino == inode_) return true;
    Close();
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX; // readers mark what they read
    if (sqlite3_open_v2(path_.c_str(), &database_, kFlags, nullptr) != SQLITE_OK)
        ThrowDatabaseError(database_);
    sqlite3_busy_timeout(database_, 100);
    sqlite3_exec(database_, "PRAGMA query_only = 1", nullptr, nullptr, nullptr);
    sqlite3_progress_handler(database_, kStepsBetweenLooks, IsOver, &end_);
    device_ = status.st_dev;
    inode_ = status.st_ino;
    return true;
}

std::vector<MetadataItem> NameLookup::Run(const std::vector<NameClause> &clauses) {
    Statement rows(database_, TextFor(clauses.size()).c_str());
    for (int place = 1; const NameClause &clause : clauses) {
        rows.Bind(place, static_cast<int>(clause.attribute)).Bind(place + 1, clause.value);
        place += 2;
    }
    std::vector<MetadataItem> files;
    while (files.size() < kMostMetadataItems && rows.Step())
        files.push_back(
            {rows.Bytes(0) + "/" + rows.Bytes(1), rows.Bytes(2), {rows.Integer(3), rows.Number(4)}});
    return files;
}

std::vector<MetadataItem> NameLookup::Find(const std::vector<NameClause> &clauses) {
    if (clauses.empty() || !OpenWhatIsThere()) return {};
    end_ = Clock::now() + kQueryPatience;
    try {
        return Run(InOrderOfUse(clauses));
    } catch (const DatabaseError &problem) {
        Close();
        // It took too long; or the index is just being made, and has no tables yet.
        for (const int passing : {SQLITE_INTERRUPT, SQLITE_BUSY, SQLITE_ERROR})
            if (problem.code == passing) return {};
        throw;
    }
}

} // namespace vellum
