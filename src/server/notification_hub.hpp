// SPDX-License-Identifier: MIT
// Passes notifications on to every process that observes.
#pragma once

#include "service/message_service.hpp"

#include <vellum/values.h>

#include <functional>
#include <map>
#include <span>
#include <vector>

namespace vellum {

// Whoever posts is answered at once, whatever observers do. An observer that has no room misses what is
// told meanwhile: it is told so when it has taken what waits, or is cut off when it takes nothing for a
// while; who comes again knows that something was missed.
class NotificationHub {
public:
    // `listener` is a socket that listens under kNotificationHubName. `repeat` is called with each
    // notification that is told.
    using Repeat = std::function<void(const ValDictionary *notification)>;
    NotificationHub(EventLoop &loop, TDescriptor listener, uint64_t instance, Repeat repeat);

    // Tells everybody who observes. `notification` is a dictionary from names to user infos; where that is
    // too long, they are told that anything may have changed.
    void Tell(const ValDictionary *notification);

private:
    using ObserverPeer = std::shared_ptr<Peer>;

    void Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message);
    void Post(const std::shared_ptr<Peer> &peer, const MachHeader &header,
              std::span<const uint8_t> notification);
    void TellAll(const OutgoingMemory &notification);
    void LookAfter(const ObserverPeer &observer);
    void TellWhatItMissed(const ObserverPeer &observer);

    EventLoop &loop_;
    const Repeat repeat_;
    std::map<ObserverPeer, bool> observers_; // with whether each has missed something
    MessageService service_;                 // the last: it calls into what stands above
};

} // namespace vellum
