// SPDX-License-Identifier: MIT
// What the crawler shows of itself, in memory that it shares with the service: a service never asks a
// crawler, it looks.
#pragma once

#include "platform/fs/file.hpp"

#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <string_view>

namespace vellum {

enum class CrawlState : uint32_t {
    kStarting,
    kCrawling,
    kIdle,   // all is read that was there
    kNoRoom, // the index cannot be written; it is tried again
};

// One life of the memory may see several of the crawler. Zeros are a beginning.
struct CrawlProgress {
    std::atomic<CrawlState> state;
    std::atomic<uint64_t> files, faces;                  // in the index
    std::atomic<uint64_t> folders_read, folders_waiting; // in this crawl, and found until now
    std::atomic<uint64_t> files_read;                    // since the service began
    std::atomic<uint64_t> changes;                       // of the index, since the service began
    std::atomic<uint64_t> rebuilds;                      // that were begun

    // The crawler's own, told from one life to the next: which file it reads, and which one it died of
    // last.
    std::array<char, PATH_MAX> reading, suspect;
    uint32_t deaths; // of the suspect
};
static_assert(std::atomic<uint64_t>::is_always_lock_free && std::atomic<CrawlState>::is_always_lock_free);

// The memory, as a file that processes can share, and as seen by this one.
class SharedProgress {
public:
    // New memory. Throws std::runtime_error.
    SharedProgress();

    // That of another process, whose file is `file`. Throws std::runtime_error.
    explicit SharedProgress(TDescriptor file);

    ~SharedProgress();
    SharedProgress(const SharedProgress &) = delete;
    SharedProgress &operator=(const SharedProgress &) = delete;

    int File() const noexcept { return file_.Get(); }
    CrawlProgress &operator*() const noexcept { return *progress_; }
    CrawlProgress *operator->() const noexcept { return progress_; }

private:
    void Map();

    TDescriptor file_;
    CrawlProgress *progress_ = nullptr;
};

// Marks what the crawler reads. A reading that takes too much of the processor's time ends the process, as
// one that fails badly does: who comes after it sees of which file it died, and the second time lets that
// file be.
class RiskyReading {
public:
    // No honest font takes a hundredth of the time that there is.
    static constexpr int kProcessorSeconds = 10;

    RiskyReading(CrawlProgress &progress, std::string_view path,
                 int processor_seconds = kProcessorSeconds) noexcept;
    ~RiskyReading();
    RiskyReading(const RiskyReading &) = delete;
    RiskyReading &operator=(const RiskyReading &) = delete;

    // To be called once by each new crawler, before it reads: finds out what the last one died of.
    static void LearnFromDeath(CrawlProgress &progress) noexcept;

    static bool IsDeadly(const CrawlProgress &progress, std::string_view path) noexcept;

private:
    CrawlProgress &progress_;
};

} // namespace vellum
