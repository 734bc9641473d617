// SPDX-License-Identifier: MIT
// The reader's end of the index of font files.
#pragma once

#include "beacon/query_language.hpp"
#include "platform/beacon/metadata_items.hpp"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

struct sqlite3;

namespace vellum {

// How long one query may take.
constexpr std::chrono::milliseconds kQueryPatience(250);

class NameLookup {
public:
    explicit NameLookup(std::string path) : path_(std::move(path)) {}
    ~NameLookup();
    NameLookup(const NameLookup &) = delete;
    NameLookup &operator=(const NameLookup &) = delete;

    // False when there is no index: it was not made yet, or was taken away.
    bool IsThere() const noexcept;

    // The files that have all these names, each some face of it, by the time of their last change, those of
    // one time by their paths. Empty where there is no index yet, for no clauses, and when it takes too
    // long. Throws DatabaseError for an index that cannot be read, and std::bad_alloc.
    std::vector<MetadataItem> Find(const std::vector<NameClause> &clauses);

private:
    bool OpenWhatIsThere();
    void Close() noexcept;
    std::vector<MetadataItem> Run(const std::vector<NameClause> &clauses);

    const std::string path_;
    sqlite3 *database_ = nullptr;
    uint64_t device_ = 0, inode_ = 0;           // of the file that is open
    std::chrono::steady_clock::time_point end_; // of the query that runs
};

} // namespace vellum
