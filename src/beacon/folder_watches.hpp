// SPDX-License-Identifier: MIT
// The folders that are watched for changes: those that hold fonts, as many as the system has room for.
#pragma once

#include "platform/fs/file.hpp"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vellum {

class FolderWatches {
public:
    struct Callbacks {
        std::function<void(const std::string &folder)> changed; // something in the folder itself
        std::function<void(const std::string &folder)> came;    // a folder, with all that is in it
        std::function<void(const std::string &folder)> went;    // likewise
        std::function<void()> lost;                             // changes were missed
    };

    // Throws std::system_error.
    explicit FolderWatches(Callbacks callbacks);

    // Watches a folder. True when it was not watched until now: what changed in it since it was read may
    // have been missed. Without room nothing is watched, which the log says once.
    bool Add(const std::string &folder);

    void Remove(const std::string &folder) noexcept;

    // Readable when there is something to handle.
    int Descriptor() const noexcept { return inotify_.Get(); }
    void Handle();

private:
    void HandleEvent(int number, uint32_t mask, std::string_view name);

    const Callbacks callbacks_;
    const TDescriptor inotify_;
    std::map<std::string, int> numbers_;
    std::map<int, std::string> folders_;
    bool is_full_ = false;
};

} // namespace vellum
