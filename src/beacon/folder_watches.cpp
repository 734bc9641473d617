// SPDX-License-Identifier: MIT
#include "beacon/folder_watches.hpp"

#include "platform/log/log.hpp"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace vellum {

namespace {

// What the user's other programs may need of the system's watches is left to them.
constexpr size_t kMostWatches = 8192;

constexpr uint32_t kCame = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t kWent = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t kOver = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT;
constexpr uint32_t kEvents =
    IN_CLOSE_WRITE | IN_ATTRIB | kCame | kWent | kOver | IN_ONLYDIR | IN_DONT_FOLLOW;

const char *PathOf(const std::string &folder) noexcept {
    return folder.empty() ? "/" : folder.c_str();
}

} // namespace

FolderWatches::FolderWatches(Callbacks callbacks)
    : callbacks_(std::move(callbacks)), inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!inotify_.IsOpen()) throw std::system_error(errno, std::generic_category());
}

bool FolderWatches::Add(const std::string &folder) {
    if (numbers_.contains(folder)) return false;
    const int number = numbers_.size() < kMostWatches
                           ? ::inotify_add_watch(inotify_.Get(), PathOf(folder), kEvents)
                           : (errno = ENOSPC, -1);
    if (number < 0) {
        if (errno == ENOSPC && !std::exchange(is_full_, true))
            Log(LogLevel::kNotice,
                "There is no room to watch %s and further folders: what changes there is seen later",
                PathOf(folder));
        return false;
    }
    // One folder that was come to under two names is watched under the first.
    if (!folders_.emplace(number, folder).second) return false;
    numbers_.emplace(folder, number);
    return true;
}

void FolderWatches::Remove(const std::string &folder) noexcept {
    const auto known = numbers_.find(folder);
    if (known == numbers_.end()) return;
    ::inotify_rm_watch(inotify_.Get(), known->second);
    folders_.erase(known->second);
    numbers_.erase(known);
}

void FolderWatches::Handle() {
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    const ssize_t size = ::read(inotify_.Get(), buffer.data(), buffer.size()); // the rest is told again
    for (const char *at = buffer.data(); at < buffer.data() + size;) {
        inotify_event event;
        std::memcpy(&event, at, sizeof event);
        HandleEvent(event.wd, event.mask, event.len ? at + sizeof event : "");
        at += sizeof event + event.len;
    }
}

void FolderWatches::HandleEvent(int number, uint32_t mask, std::string_view name) {
    if (mask & IN_Q_OVERFLOW) return callbacks_.lost();
    const auto found = folders_.find(number);
    if (found == folders_.end()) return;
    const std::string folder = found->second;
    if (mask & (kOver | IN_IGNORED)) {
        Remove(folder);
        callbacks_.went(folder);
    } else if (!(mask & IN_ISDIR)) {
        callbacks_.changed(folder);
    } else {
        const std::string inner = folder + "/" + std::string(name);
        if (mask & kWent) callbacks_.went(inner);
        if (mask & kCame) callbacks_.came(inner);
    }
}

} // namespace vellum
