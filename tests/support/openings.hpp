// SPDX-License-Identifier: MIT
// Counts how often a file is opened, by this process or any other.
#pragma once

#include "platform/fs/file.hpp"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <string>

namespace vellum::test {

// How often a file was opened since this was made.
class Openings {
public:
    explicit Openings(const std::string &path) : descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(descriptor_.Get(), path.c_str(), IN_OPEN | IN_CLOSE), 0);
    }

    // Reads the events that are there. Without the closings, equal ones that follow each other were one.
    size_t Count() {
        alignas(inotify_event) char events[4096];
        const ssize_t length = ::read(descriptor_.Get(), events, sizeof events);
        for (ssize_t at = 0; at < length; at += static_cast<ssize_t>(sizeof(inotify_event)))
            if (reinterpret_cast<const inotify_event *>(events + at)->mask & IN_OPEN) ++count_;
        return count_;
    }

private:
    const TDescriptor descriptor_;
    size_t count_ = 0;
};

} // namespace vellum::test
