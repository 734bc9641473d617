// SPDX-License-Identifier: MIT
#include "beacon/crawler_program.hpp"

#include "beacon/crawler.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"

#include <fcntl.h>
#include <linux/ioprio.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <utility>

namespace vellum {

namespace {

using Clock = std::chrono::steady_clock;

// How often everything is looked through for what no watch tells of; VELLUM_INDEX_INTERVAL has other
// seconds.
constexpr std::chrono::seconds kBetweenCrawls(3600);

// How long nothing is tried where the index cannot be written.
constexpr std::chrono::milliseconds kShortestWait(1000), kLongestWait(60'000);

// So often it is seen that the index is in its place.
constexpr std::chrono::milliseconds kLongestSleep(600'000);

// Drives come in several mounts, and not at once; where mounts come and go all the time, that is not
// followed.
constexpr std::chrono::seconds kAfterMount(2), kBetweenMounts(300);

std::chrono::seconds BetweenCrawls() noexcept {
    const char *seconds = GetEnvironment("VELLUM_INDEX_INTERVAL");
    const long number = seconds ? std::atol(seconds) : 0;
    return number > 0 ? std::chrono::seconds(std::min(number, 86'400L * 365)) : kBetweenCrawls;
}

void StandBack() noexcept {
    const sched_param none = {};
    ::sched_setscheduler(0, SCHED_IDLE, &none);
    ::setpriority(PRIO_PROCESS, 0, 19); // where the scheduler knows no idle class
    ::syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}

// The service has its signals blocked, and ignores that of a limit of files: the latter stays so here.
void SetSignals() noexcept {
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::signal(SIGINT, SIG_IGN); // the terminal tells the service, which ends this
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

struct Ended {};

class CrawlerLife {
public:
    CrawlerLife()
        : control_(kCrawlerControl), progress_(TDescriptor(kCrawlerMemory)),
          mounts_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {
        RiskyReading::LearnFromDeath(*progress_);
    }

    // Until the service ends.
    void Run() {
        for (;;) {
            try {
                CrawlOn();
            } catch (const std::runtime_error &problem) { // of the database, or of its folder
                if (!is_without_room_)
                    Log(LogLevel::kError,
                        "The index of font files cannot be kept, and is tried again until it can: %s",
                        problem.what());
                is_without_room_ = true;
                changes_without_room_ = progress_->changes;
                SetState(CrawlState::kNoRoom);
                Wait(-1, wait_);
                wait_ = std::min(2 * wait_, kLongestWait);
            }
        }
    }

private:
    // With one index, until it is to be opened anew.
    void CrawlOn() {
        NameIndex index(NameIndexPath());
        Crawler crawler(index, *progress_);
        must_look_ = true;
        for (;;) {
            if (!index.IsInPlace() || (std::exchange(must_check_, false) && !index.IsSound())) return;
            if (must_look_ || must_read_) {
                last_crawl_ = Clock::now();
                next_crawl_ = last_crawl_ + BetweenCrawls();
                must_look_ = false;
                crawler.Begin(FindCrawlRoots(), must_read_);
                must_read_ = false; // not before it could be written that all is to be read
                SetState(CrawlState::kCrawling);
            }
            Crawl(crawler);
            WaitForWork(crawler);
        }
    }

    void Crawl(Crawler &crawler) {
        while (crawler.HasWork() && !must_look_ && !must_read_) {
            SetState(CrawlState::kCrawling);
            crawler.Work();
            if (progress_->changes != changes_without_room_) FoundRoom();
            if (Wait(crawler.ChangesDescriptor(), {})) crawler.Follow();
        }
    }

    // Reading alone needs none: something was written, or nothing had to be.
    void FoundRoom() noexcept {
        wait_ = kShortestWait;
        if (std::exchange(is_without_room_, false))
            Log(LogLevel::kNotice, "The index of font files is kept again");
    }

    void WaitForWork(Crawler &crawler) {
        if (must_look_ || must_read_ || crawler.HasWork()) return;
        FoundRoom();
        SetState(CrawlState::kIdle);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_crawl_ - Clock::now());
        if (Wait(crawler.ChangesDescriptor(),
                 std::clamp(left, std::chrono::milliseconds(0), kLongestSleep)))
            crawler.Follow();
        if (Clock::now() >= next_crawl_) must_look_ = true;
    }

    // True when there are changes in watched folders.
    bool Wait(int changes, std::chrono::milliseconds time) {
        pollfd events[] = {{control_.Get(), POLLIN, 0}, {changes, POLLIN, 0}, {mounts_.Get(), POLLPRI, 0}};
        ::poll(events, 3, static_cast<int>(time.count()));
        if (events[0].revents) Listen();
        if (events[2].revents & POLLPRI)
            next_crawl_ =
                std::min(next_crawl_, std::max(Clock::now() + kAfterMount, last_crawl_ + kBetweenMounts));
        return events[1].revents & POLLIN;
    }

    void Listen() {
        char word = 0;
        const ssize_t size = ::recv(control_.Get(), &word, 1, MSG_DONTWAIT);
        if (size == 0 || (size < 0 && errno != EAGAIN && errno != EINTR)) throw Ended();
        if (size < 0) return;
        if (word == kReadEverything) {
            must_read_ = must_check_ = true;
            SetState(CrawlState::kCrawling); // who waits for it sees no rest before it
            progress_->rebuilds.fetch_add(1);
        }
        if (word == kLookAgain) must_look_ = must_check_ = true;
    }

    void SetState(CrawlState state) noexcept {
        if (progress_->state.exchange(state) == state) return;
        ::send(control_.Get(), &kStateHasChanged, 1, MSG_DONTWAIT | MSG_NOSIGNAL);
    }

    const TDescriptor control_;
    const SharedProgress progress_;
    const TDescriptor mounts_;
    Clock::time_point last_crawl_, next_crawl_;
    std::chrono::milliseconds wait_ = kShortestWait;
    bool must_look_ = false, must_read_ = false, must_check_ = false;
    bool is_without_room_ = false;
    uint64_t changes_without_room_ = 0; // those that there were when the index could not be written
};

} // namespace

int RunCrawler() noexcept {
    try {
        SetSignals();
        StandBack();
        CrawlerLife().Run();
    } catch (const Ended &) {
        return 0;
    } catch (const std::exception &problem) {
        Log(LogLevel::kError, "The crawler for font files ends: %s", problem.what());
    }
    return 1;
}

} // namespace vellum
