// SPDX-License-Identifier: MIT
// How those who have lost a service hear at once that it is there again, without looking for it again and
// again: a pipe with a name beside the service's socket.
//
// The service rings by opening the pipe and closing it, which wakes whoever waits for that. Nothing is kept
// in the pipe, and nothing of it when nobody waits.
#pragma once

#include "platform/fs/file.hpp"

#include <chrono>
#include <string>

namespace vellum {

// Wakes whoever waits at the service's doorbell.
void RingDoorbell(const char *service) noexcept;

class Doorbell {
public:
    // A ring is heard from now on. Closed where there is no folder for services, or no room.
    explicit Doorbell(const char *service) noexcept;

    bool IsOpen() const noexcept { return pipe_.IsOpen(); }

    // True when it rang, before so much time had passed; then the next ring is listened for, and whoever
    // looks for the service after that misses nothing. One that is closed never rings.
    bool Wait(std::chrono::milliseconds time) noexcept;

private:
    void Open() noexcept;

    std::string path_;
    TDescriptor pipe_;
};

} // namespace vellum
