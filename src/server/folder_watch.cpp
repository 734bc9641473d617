// SPDX-License-Identifier: MIT
#include "server/folder_watch.hpp"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace vellum {

namespace {

constexpr uint32_t kEvents = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                             IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

FolderWatch::FolderWatch(EventLoop &loop, Tell tell)
    : loop_(loop), tell_(std::move(tell)), inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (inotify_.IsOpen()) loop_.Watch(inotify_.Get(), EPOLLIN, [this](uint32_t) { ReadEvents(); });
}

FolderWatch::~FolderWatch() {
    if (inotify_.IsOpen()) loop_.Forget(inotify_.Get());
}

bool FolderWatch::Add(const std::string &path) {
    if (!inotify_.IsOpen()) {
        errno = ENOSPC;
        return false;
    }
    const int number = ::inotify_add_watch(inotify_.Get(), path.c_str(), kEvents);
    const int error = errno;
    const auto known = numbers_.find(path);
    if (known != numbers_.end() && known->second != number) Remove(path); // of what was there before
    if (number < 0) {
        errno = error;
        return false;
    }
    paths_[number].insert(path);
    numbers_[path] = number;
    return true;
}

void FolderWatch::Remove(const std::string &path) noexcept {
    const auto known = numbers_.find(path);
    if (known == numbers_.end()) return;
    const int number = known->second;
    numbers_.erase(known);
    const auto paths = paths_.find(number);
    paths->second.erase(path);
    if (!paths->second.empty()) return;
    paths_.erase(paths);
    ::inotify_rm_watch(inotify_.Get(), number);
}

void FolderWatch::ReadEvents() {
    std::vector<FolderEvent> events;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    const ssize_t size = ::read(inotify_.Get(), buffer.data(), buffer.size()); // the rest is told again
    for (const char *at = buffer.data(); at < buffer.data() + size;) {
        inotify_event event;
        std::memcpy(&event, at, sizeof event);
        Append(event.wd, event.mask, event.len ? at + sizeof event : "", events);
        at += sizeof event + event.len;
    }
    tell_(events);
}

void FolderWatch::Append(int number, uint32_t mask, const char *name, std::vector<FolderEvent> &events) {
    if (mask & IN_Q_OVERFLOW) events.push_back({{}, mask, {}});
    const auto paths = paths_.find(number);
    if (paths == paths_.end()) return;
    for (const std::string &path : paths->second) events.push_back({path, mask, name});
    if (!(mask & IN_IGNORED)) return; // else the system has ended the watch
    for (const std::string &path : paths->second) numbers_.erase(path);
    paths_.erase(paths);
}

} // namespace vellum
