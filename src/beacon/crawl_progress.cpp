// SPDX-License-Identifier: MIT
#include "beacon/crawl_progress.hpp"

#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vellum {

namespace {

// A file that was read when a crawler died may have nothing to do with it: people end processes.
constexpr uint32_t kDeathsOfOneFile = 2;

std::string_view PathIn(const std::array<char, PATH_MAX> &path) noexcept {
    return {path.data(), static_cast<size_t>(std::ranges::find(path, '\0') - path.begin())};
}

void LimitProcessorTime(time_t seconds) noexcept {
    const itimerval limit = {{0, 0}, {seconds, 0}};
    ::setitimer(ITIMER_PROF, &limit, nullptr); // SIGPROF ends the process
}

} // namespace

SharedProgress::SharedProgress() : file_(::memfd_create("vellum-crawl", MFD_CLOEXEC)) {
    if (!file_.IsOpen() || ::ftruncate(file_.Get(), sizeof(CrawlProgress)) != 0)
        throw std::runtime_error("there is no memory to share with the crawler");
    Map();
}

SharedProgress::SharedProgress(TDescriptor file) : file_(std::move(file)) {
    struct stat status;
    if (::fstat(file_.Get(), &status) != 0 || status.st_size != sizeof(CrawlProgress))
        throw std::runtime_error("the crawler is started by the service alone");
    Map();
}

void SharedProgress::Map() {
    void *memory =
        ::mmap(nullptr, sizeof(CrawlProgress), PROT_READ | PROT_WRITE, MAP_SHARED, file_.Get(), 0);
    if (memory == MAP_FAILED) throw std::runtime_error("the memory shared with the crawler cannot be seen");
    progress_ = static_cast<CrawlProgress *>(memory);
}

SharedProgress::~SharedProgress() {
    ::munmap(progress_, sizeof(CrawlProgress));
}

RiskyReading::RiskyReading(CrawlProgress &progress, std::string_view path, int processor_seconds) noexcept
    : progress_(progress) {
    const size_t length = path.copy(progress.reading.data(), progress.reading.size() - 1);
    progress.reading[length] = '\0';
    LimitProcessorTime(processor_seconds);
}

RiskyReading::~RiskyReading() {
    LimitProcessorTime(0);
    progress_.reading[0] = '\0';
}

void RiskyReading::LearnFromDeath(CrawlProgress &progress) noexcept {
    const std::string_view path = PathIn(progress.reading);
    if (path.empty()) return;
    progress.deaths = path == PathIn(progress.suspect) ? progress.deaths + 1 : 1;
    progress.suspect = progress.reading;
    progress.reading[0] = '\0';
}

bool RiskyReading::IsDeadly(const CrawlProgress &progress, std::string_view path) noexcept {
    return progress.deaths >= kDeathsOfOneFile && path == PathIn(progress.suspect);
}

} // namespace vellum
