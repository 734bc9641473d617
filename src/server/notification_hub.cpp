// SPDX-License-Identifier: MIT
#include "server/notification_hub.hpp"

#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "values/val_dictionary.hpp"

#include <utility>
#include <vector>

namespace vellum {

namespace {

void ReplyWith(MachCode code, const std::shared_ptr<Peer> &peer, const MachHeader &request) {
    OutgoingReply reply;
    reply.code = code;
    peer->Reply(nullptr, request, reply);
}

OutgoingMemory CopyOf(std::span<const uint8_t> bytes) {
    auto block = MemoryBlock::CreateCopy(bytes.data(), bytes.size());
    if (!block.Bytes()) return {};
    return {std::make_shared<const MemoryBlock>(std::move(block)), bytes.size()};
}

// What may be posted. Whoever lists more than may be told is answered, and observers ask again.
constexpr uint32_t kMostMemory = 2 * kLongestNotification;

// How long an observer may take nothing while it has no room.
constexpr std::chrono::milliseconds kPatience(1000);

// One without any name says that anything may have changed.
bool IsNotification(const ValDictionary *notification) {
    const TValDict entries(Retain(notification));
    bool is_well_formed = notification != nullptr;
    for (const auto &[name, user_info] : entries)
        is_well_formed &= Cast<ValString>(name) && Cast<ValDictionary>(user_info);
    return is_well_formed;
}

std::shared_ptr<const OutgoingMessage> MessageOf(const OutgoingMemory &notification) {
    return std::make_shared<const OutgoingMessage>(
        WriteRequest(kTellRow, kPortNull, kPortNull, {notification}));
}

OutgoingMemory AnythingMayHaveChanged() {
    return Flattened(TValMutableDict().Publish().Get()).value_or(OutgoingMemory());
}

} // namespace

NotificationHub::NotificationHub(EventLoop &loop, TDescriptor listener, uint64_t instance, Repeat repeat)
    : loop_(loop), repeat_(std::move(repeat)),
      service_(loop, std::move(listener), instance, kMostMemory,
               {[this](const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
                    Answer(peer, message);
                },
                [this](const std::shared_ptr<Peer> &peer) { observers_.erase(peer); },
                [this](const std::shared_ptr<Peer> &peer) { TellWhatItMissed(peer); }}) {}

void NotificationHub::Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
    const MachHeader header = message.Header();
    ReceivedArguments arguments;
    if (header.id == kObserveRow.id && ReadRequest(kObserveRow, message, arguments)) {
        observers_.emplace(peer, false);
        ReplyWith(kMachSuccess, peer, header);
    } else if (header.id == kPostRow.id && ReadRequest(kPostRow, message, arguments)) {
        Post(peer, header, arguments[0].memory);
    } else {
        ReplyWith(kMachBadID, peer, header);
    }
}

void NotificationHub::Post(const std::shared_ptr<Peer> &peer, const MachHeader &header,
                           std::span<const uint8_t> notification) {
    const auto read = Resurrected<ValDictionary>(notification);
    if (!IsNotification(read.Get())) {
        ReplyWith(kMachBadArguments, peer, header);
        return peer->CutOff();
    }
    TellAll(CopyOf(notification));
    ReplyWith(kMachSuccess, peer, header);
    if (repeat_) repeat_(read.Get());
}

void NotificationHub::Tell(const ValDictionary *notification) {
    if (const auto memory = Flattened(notification)) TellAll(*memory);
    if (repeat_) repeat_(notification);
}

void NotificationHub::TellAll(const OutgoingMemory &notification) {
    const bool is_too_long = notification.length > kLongestNotification;
    const auto message = MessageOf(is_too_long ? AnythingMayHaveChanged() : notification);
    std::vector<ObserverPeer> lost;
    for (auto &[observer, has_missed] : observers_) {
        if (has_missed) continue;
        has_missed = !observer->HasRoomFor(*message);
        if (has_missed)
            LookAfter(observer);
        else if (!observer->Tell(message))
            lost.push_back(observer);
    }
    for (const ObserverPeer &observer : lost) service_.Dismiss(observer);
}

// Looks in a while whether an observer that has missed something has taken anything since.
void NotificationHub::LookAfter(const ObserverPeer &observer) {
    loop_.CallLater(kPatience, [this, observer, before = observer->HowFar()] {
        const auto found = observers_.find(observer);
        if (found == observers_.end() || !found->second) return;
        const Peer::Taking now = observer->HowFar();
        if (!observer->HasWaiting() && now.unread == 0) return TellWhatItMissed(observer);
        if (now == before) return service_.Dismiss(observer);
        LookAfter(observer);
    });
}

void NotificationHub::TellWhatItMissed(const ObserverPeer &observer) {
    const auto found = observers_.find(observer);
    if (found == observers_.end() || !found->second) return;
    found->second = false;
    if (!observer->Tell(MessageOf(AnythingMayHaveChanged()))) service_.Dismiss(observer);
}

} // namespace vellum
