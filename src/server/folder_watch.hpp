// SPDX-License-Identifier: MIT
// Has the system tell what happens in folders, by inotify.
#pragma once

#include "service/event_loop.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vellum {

struct FolderEvent {
    std::string folder; // as it was named to Add
    uint32_t mask;      // inotify's; IN_Q_OVERFLOW, of no folder: anything may have happened
    std::string name;   // of what is in the folder; empty for the folder itself
};

class FolderWatch {
public:
    using Tell = std::function<void(const std::vector<FolderEvent> &events)>;

    // Where the system gives no room for any watch, none can be added.
    FolderWatch(EventLoop &loop, Tell tell);
    ~FolderWatch();
    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;

    // Watches the folder to which the path leads now. A folder may have several names: an event is told of
    // each. False, with errno, when it can't be watched: ENOSPC for want of room.
    bool Add(const std::string &path);

    // Nothing for what is not watched.
    void Remove(const std::string &path) noexcept;

private:
    void ReadEvents();
    void Append(int number, uint32_t mask, const char *name, std::vector<FolderEvent> &events);

    EventLoop &loop_;
    const Tell tell_;
    TDescriptor inotify_;
    std::map<std::string, int> numbers_;         // by path
    std::map<int, std::set<std::string>> paths_; // by the system's number
};

} // namespace vellum
