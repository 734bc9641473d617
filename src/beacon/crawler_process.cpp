// SPDX-License-Identifier: MIT
#include "beacon/crawler_process.hpp"

#include "beacon/crawler_program.hpp"
#include "platform/log/log.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace vellum {

namespace {

// One that dies at once is begun ever later.
constexpr std::chrono::milliseconds kShortestWait(50), kLongestWait(60'000);
constexpr std::chrono::seconds kLongLife(60);

// How long it may take to end by itself.
constexpr int kEndPatience = 1000; // milliseconds

// Between fork and exec: nothing that may take a lock.
[[noreturn]] void BecomeCrawler(int control, int memory, bool is_in_foreground) noexcept {
    // Neither may be overwritten before it has moved.
    const int safe_control = ::fcntl(control, F_DUPFD, 10), safe_memory = ::fcntl(memory, F_DUPFD, 10);
    ::dup2(safe_control, kCrawlerControl);
    ::dup2(safe_memory, kCrawlerMemory);
    ::syscall(SYS_close_range, kCrawlerMemory + 1, ~0U, 0U);
    ::execl("/proc/self/exe", "vellum-beacon", "--crawl", is_in_foreground ? "--foreground" : nullptr,
            nullptr);
    ::_exit(127);
}

} // namespace

CrawlerProcess::CrawlerProcess(EventLoop &loop, bool is_in_foreground,
                               std::function<void()> state_has_changed)
    : loop_(loop), is_in_foreground_(is_in_foreground), state_has_changed_(std::move(state_has_changed)) {
    Start();
}

CrawlerProcess::~CrawlerProcess() {
    if (process_ == 0) return;
    loop_.Forget(control_.Get());
    control_ = TDescriptor();
    const TDescriptor end(static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)));
    pollfd event = {end.Get(), POLLIN, 0};
    bool has_ended = ::poll(&event, 1, kEndPatience) > 0;
    if (!has_ended) {
        ::kill(process_, SIGKILL);
        has_ended = ::poll(&event, 1, kEndPatience) > 0;
    }
    // One that waits for a drive that does not answer cannot even be killed, and is left to the system.
    if (has_ended) ::waitpid(process_, nullptr, 0);
}

void CrawlerProcess::Start() {
    started_ = std::chrono::steady_clock::now();
    std::array<int, 2> ends;
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0)
        return Died();
    control_ = TDescriptor(ends[0]);
    const TDescriptor other(ends[1]);
    process_ = std::max<pid_t>(::fork(), -1);
    if (process_ == 0) BecomeCrawler(other.Get(), progress_.File(), is_in_foreground_);
    if (process_ < 0) return Died();
    loop_.Watch(control_.Get(), EPOLLIN, [this](uint32_t) { Listen(); });
    if (progress_->rebuilds < rebuilds_) Tell(kReadEverything);
}

void CrawlerProcess::Listen() {
    char word = 0;
    const ssize_t size = ::recv(control_.Get(), &word, 1, 0);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (size <= 0) {
        loop_.Forget(control_.Get());
        Died();
    }
    state_has_changed_();
}

void CrawlerProcess::Died() {
    control_ = TDescriptor();
    int status = 0;
    if (process_ > 0) {
        ::kill(process_, SIGKILL); // it cannot be talked to any more
        ::waitpid(process_, &status, 0);
    }
    process_ = 0;
    progress_->state = CrawlState::kStarting;
    const auto now = std::chrono::steady_clock::now();
    wait_ = now - started_ > kLongLife ? kShortestWait : std::clamp(2 * wait_, kShortestWait, kLongestWait);
    Log(LogLevel::kWarning, "The crawler for font files has ended (%d) and is begun again", status);
    loop_.CallLater(wait_, [this] { Start(); });
}

void CrawlerProcess::Tell(char word) noexcept {
    ::send(control_.Get(), &word, 1, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void CrawlerProcess::ReadEverything() noexcept {
    ++rebuilds_;
    if (process_ > 0) Tell(kReadEverything);
}

void CrawlerProcess::LookAgain() noexcept {
    if (process_ > 0) Tell(kLookAgain);
}

} // namespace vellum
