// SPDX-License-Identifier: MIT
// The notification centre of all processes of a user: what one posts, everybody hears who observes.
//
// A hub passes on what is posted. Where there is none, posts come back to this process alone.
#pragma once

#include "platform/fs/file.hpp"
#include "platform/notify/notification_center.hpp"

#include <vellum/values.hpp>

#include <atomic>

namespace vellum {

class DistributedCenter {
public:
    // Made by its first use and never torn down.
    static DistributedCenter &Shared();

    // Has `callback` called with each notification of that name, on the one thread that receives them, or,
    // where there is no hub, on the one that posts. What is posted in any process after this call is heard.
    // When notifications may have been missed, because the hub was away, it is called without a user info.
    // Throws std::bad_alloc.
    void AddObserver(void *observer, NotificationCallback callback, const ValString *name);
    void RemoveObserver(void *observer) noexcept { observers_.RemoveObserver(observer); }

    // Tells everybody; where the list of fonts is too long, that anything may have changed. Throws
    // std::bad_alloc before anybody is told.
    void Post(const ValString *name, const ValDictionary *user_info);

    // Has a process that was forked receive for itself: the thread that did is its parent's.
    void ListenAfterFork() noexcept;

private:
    DistributedCenter() noexcept = default;

    void Listen() noexcept;
    void ReceiveForEver(TDescriptor socket) noexcept;
    bool ReceiveOne(class PacketReceiver &receiver, int socket) noexcept;
    void TellOfGap() noexcept;

    NotificationCenter observers_;
    std::atomic<uint32_t> listens_in_{0}; // the forks, and one, until the life that has a receiving thread
    std::atomic<bool> is_observed_{false};
};

} // namespace vellum
