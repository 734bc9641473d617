// SPDX-License-Identifier: MIT
#include "ipc/notify/distributed_center.hpp"

#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/message_codec.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "ipc/session/session_manager.hpp"
#include "platform/port/doorbell.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/own_thread.hpp"
#include "values/val_dictionary.hpp"

#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>

namespace vellum {

namespace {

// How long the receiving thread waits before it looks for a hub again that has gone: longer each time that
// none tells anything. Where a hub rings when it comes, nobody need look for it often.
constexpr std::chrono::milliseconds kShortestWait(100), kLongestWait(30'000), kLongestWaitForBell(600'000);

// What the receiving thread needs of a stack; it calls observers, who only leave word for the main loop.
constexpr size_t kStackSize = size_t{256} << 10;

// How long a hub may take to take an observer in, or what is posted; somebody waits for it.
constexpr long kHubPatience = 1; // seconds

// What a notification may bring.
constexpr uint32_t kMostReceived = uint32_t{4} << 20;

std::array<char, 64> HubName() noexcept {
    std::array<char, 64> name = {};
    try {
        TSessionManager().ResolveServiceName(name.data(), name.size(), kNotificationHubName);
    } catch (...) { // memory is exhausted: there is no such hub
    }
    return name;
}

// A connection on which the hub tells what is posted from now on; closed where there is no hub.
TDescriptor Observe() noexcept {
    TDescriptor socket = ConnectToService(HubName().data(), kHubPatience);
    if (!socket.IsOpen()) return socket;
    LimitReceiving(socket.Get(), kHubPatience);
    PacketReceiver receiver;
    IncomingMessage reply;
    ReceivedReply nothing;
    uint64_t instance = 0;
    const OutgoingMessage request = WriteRequest(kObserveRow, kPortNull, kPortNull, {});
    const bool is_heard = SendPacket(socket.Get(), 0, request, true) == PacketResult::kDone &&
                          receiver.Receive(socket.Get(), true, reply, instance) == PacketResult::kDone &&
                          !reply.bytes.empty() && ReadReply(kObserveRow, reply, nothing) == kMachSuccess;
    LimitReceiving(socket.Get(), 0); // from now on it tells what it has to tell
    return is_heard ? std::move(socket) : TDescriptor();
}

// Whether what was sent, with this code, has not come to the hub.
bool IsNotSent(MachCode code) noexcept {
    return code == kMachSendInvalidData || code == kMachSendInvalidDestination ||
           code == kMachSendTimedOut || code == kMachSendNoBuffer || code == kMachSendInvalidHeader;
}

// False when nobody is told: there is no hub, or it says so, or has died over it. A hub that is slow to
// answer tells all the same.
bool SendToHub(const OutgoingMemory &notification) {
    PortName hub = kPortNull;
    if (bootstrap_look_up(HubName().data(), hub) != kMachSuccess) return false;
    const OutgoingMessage request = WriteRequest(kPostRow, hub, mig_get_reply_port(), {notification});
    IncomingMessage message;
    ReceivedReply reply;
    const MachCode code = mach_msg(request, message, kHubPatience);
    const bool is_told =
        code == kMachSuccess ? ReadReply(kPostRow, message, reply) == kMachSuccess : !IsNotSent(code);
    mach_port_deallocate(hub);
    return is_told;
}

void Sleep(std::chrono::milliseconds time) noexcept {
    timespec left = {time.count() / 1000, time.count() % 1000 * 1'000'000};
    while (::nanosleep(&left, &left) != 0) {
    }
}

// Waits before a hub is looked for again, and says how long the next time. The pause is for one that rings
// and does not stay.
std::chrono::milliseconds WaitForHub(Doorbell &bell, std::chrono::milliseconds wait) noexcept {
    Sleep(kShortestWait);
    const bool has_come = bell.Wait(wait - kShortestWait);
    if (has_come) return kShortestWait;
    if (!bell.IsOpen()) Sleep(wait - kShortestWait);
    return std::min(4 * wait, bell.IsOpen() ? kLongestWaitForBell : kLongestWait);
}

} // namespace

DistributedCenter &DistributedCenter::Shared() {
    static DistributedCenter *const center = new DistributedCenter;
    return *center;
}

void DistributedCenter::AddObserver(void *observer, NotificationCallback callback, const ValString *name) {
    observers_.AddObserver(observer, callback, name);
    is_observed_.store(true, std::memory_order_release);
    Listen();
}

void DistributedCenter::ListenAfterFork() noexcept {
    if (is_observed_.load(std::memory_order_acquire)) Listen();
}

// The first who comes connects, so that nothing is missed from then on, and leaves the rest to the thread.
void DistributedCenter::Listen() noexcept {
    const uint32_t life = CountOfForks() + 1;
    if (listens_in_.load(std::memory_order_acquire) == life ||
        listens_in_.exchange(life, std::memory_order_acq_rel) == life)
        return;
    struct Start {
        DistributedCenter &center;
        TDescriptor socket;
    };
    std::unique_ptr<Start> start(new (std::nothrow) Start{*this, Observe()});
    const auto run = [](void *info) -> void * {
        const std::unique_ptr<Start> mine(static_cast<Start *>(info));
        mine->center.ReceiveForEver(std::move(mine->socket));
        return nullptr;
    };
    const SignalsBlocked blocked;
    pthread_attr_t attributes;
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    ::pthread_attr_setstacksize(&attributes, kStackSize);
    pthread_t thread;
    if (start && ::pthread_create(&thread, &attributes, run, start.get()) == 0)
        start.release();
    else
        listens_in_.store(0, std::memory_order_release); // the next who comes tries again
    ::pthread_attr_destroy(&attributes);
}

void DistributedCenter::ReceiveForEver(TDescriptor socket) noexcept {
    PacketReceiver receiver(kMostReceived);
    for (auto wait = kShortestWait;;) {
        while (socket.IsOpen() && ReceiveOne(receiver, socket.Get())) wait = kShortestWait;
        socket = TDescriptor();
        Doorbell bell(HubName().data()); // from now on no hub comes unheard
        do wait = WaitForHub(bell, wait);
        while (!(socket = Observe()).IsOpen());
        TellOfGap();
    }
}

// False when the connection has ended.
bool DistributedCenter::ReceiveOne(PacketReceiver &receiver, int socket) noexcept {
    IncomingMessage message;
    uint64_t instance = 0;
    if (receiver.Receive(socket, true, message, instance) != PacketResult::kDone) return false;
    const InLibrary inside;
    ReceivedArguments arguments;
    if (message.bytes.empty() || message.Header().id != kTellRow.id ||
        !ReadRequest(kTellRow, message, arguments))
        return false;
    try {
        const TValDict notification(Resurrected<ValDictionary>(arguments[0].memory));
        if (ValDictionaryGetCount(notification.Get()) == 0) TellOfGap();
        for (const auto &[name, user_info] : notification)
            if (Cast<ValString>(name))
                observers_.Post(Cast<ValString>(name), Cast<ValDictionary>(user_info));
    } catch (...) { // memory is exhausted: as if it had been missed
        TellOfGap();
    }
    return true;
}

void DistributedCenter::TellOfGap() noexcept {
    const InLibrary inside;
    observers_.PostToAll(nullptr);
}

void DistributedCenter::Post(const ValString *name, const ValDictionary *user_info) {
    TValMutableDict notification;
    notification.Set(name, user_info);
    auto memory = Flattened(notification.Get());
    if (memory && memory->length > kLongestNotification)
        memory = Flattened(TValMutableDict().Publish().Get());
    if (!memory || !SendToHub(*memory)) observers_.Post(name, user_info);
}

} // namespace vellum
