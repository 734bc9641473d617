// SPDX-License-Identifier: MIT
#include "server/notification_hub.hpp"

#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "values/val_dictionary.hpp"

#include <algorithm>
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

// A notification may list some ten thousand fonts.
constexpr uint32_t kMostMemory = uint32_t{4} << 20;

// How long an observer may take nothing while somebody waits for it.
constexpr std::chrono::milliseconds kPatience(1000);

bool IsNotification(const ValDictionary *notification) {
    const TValDict entries(Retain(notification));
    bool is_well_formed = ValDictionaryGetCount(notification) > 0;
    for (const auto &[name, user_info] : entries)
        is_well_formed &= Cast<ValString>(name) && Cast<ValDictionary>(user_info);
    return is_well_formed;
}

} // namespace

NotificationHub::NotificationHub(EventLoop &loop, TDescriptor listener, uint64_t instance, Repeat repeat)
    : loop_(loop), repeat_(std::move(repeat)),
      service_(loop, std::move(listener), instance, kMostMemory,
               {[this](const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
                    Answer(peer, message);
                },
                [this](const std::shared_ptr<Peer> &peer) {
                    if (observers_.erase(peer)) AnswerPosters();
                },
                [this](const std::shared_ptr<Peer> &peer) {
                    const auto observer = observers_.find(peer);
                    if (observer == observers_.end()) return;
                    observer->second = told_;
                    AnswerPosters();
                }}) {}

void NotificationHub::Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
    const MachHeader header = message.Header();
    ReceivedArguments arguments;
    if (header.id == kObserveRow.id && ReadRequest(kObserveRow, message, arguments)) {
        observers_[peer] = told_;
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
    if (repeat_) repeat_(read.Get());
    if (!IsAnybodyBehind()) return ReplyWith(kMachSuccess, peer, header);
    posters_.push_back({peer, header});
    loop_.CallLater(kPatience, [this, until = told_] { CutOffTheSlow(until); });
}

void NotificationHub::Tell(const ValDictionary *notification) {
    if (const auto memory = Flattened(notification)) TellAll(*memory);
    if (repeat_) repeat_(notification);
}

void NotificationHub::TellAll(const OutgoingMemory &notification) {
    const auto message = std::make_shared<const OutgoingMessage>(
        WriteRequest(kTellRow, kPortNull, kPortNull, {notification}));
    ++told_;
    std::vector<std::shared_ptr<Peer>> lost;
    for (auto &[peer, last_taken] : observers_) {
        if (!peer->Tell(message)) lost.push_back(peer);
        if (!peer->HasWaiting()) last_taken = told_;
    }
    for (const std::shared_ptr<Peer> &peer : lost) service_.Dismiss(peer);
}

bool NotificationHub::IsAnybodyBehind() const noexcept {
    return std::ranges::any_of(observers_, [](const auto &one) { return one.first->IsBehind(); });
}

void NotificationHub::AnswerPosters() {
    if (IsAnybodyBehind()) return;
    for (const Poster &poster : std::exchange(posters_, {}))
        ReplyWith(kMachSuccess, poster.peer, poster.header);
}

// Cuts off those who have not taken the notification of this number.
void NotificationHub::CutOffTheSlow(uint64_t until) {
    std::vector<std::shared_ptr<Peer>> slow;
    for (const auto &[peer, last_taken] : observers_)
        if (last_taken < until && peer->IsBehind()) slow.push_back(peer);
    for (const std::shared_ptr<Peer> &peer : slow) service_.Dismiss(peer);
}

} // namespace vellum
