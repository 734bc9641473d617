// SPDX-License-Identifier: MIT
// Passes notifications on to every process that observes.
#pragma once

#include "server/message_service.hpp"

#include <vellum/values.h>

#include <functional>
#include <map>
#include <span>
#include <vector>

namespace vellum {

// Whoever posts waits while somebody is far behind. Somebody who takes nothing for a while is cut off then:
// who comes again knows that something was missed.
class NotificationHub {
public:
    // `listener` is a socket that listens under kNotificationHubName. `repeat` is called with each
    // notification that is told.
    using Repeat = std::function<void(const ValDictionary *notification)>;
    NotificationHub(EventLoop &loop, TDescriptor listener, uint64_t instance, Repeat repeat);

    // Tells everybody who observes. `notification` is a dictionary from names to user infos.
    void Tell(const ValDictionary *notification);

private:
    struct Poster {
        std::shared_ptr<Peer> peer;
        MachHeader header;
    };

    void Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message);
    void Post(const std::shared_ptr<Peer> &peer, const MachHeader &header,
              std::span<const uint8_t> notification);
    void TellAll(const OutgoingMemory &notification);
    bool IsAnybodyBehind() const noexcept;
    void AnswerPosters();
    void CutOffTheSlow(uint64_t until);

    EventLoop &loop_;
    const Repeat repeat_;
    std::map<std::shared_ptr<Peer>, uint64_t> observers_; // with the number of the last that each has taken
    std::vector<Poster> posters_;                         // who wait
    uint64_t told_ = 0;                                   // how many notifications there were
    MessageService service_;                              // the last: it calls into what stands above
};

} // namespace vellum
