// SPDX-License-Identifier: MIT
#include "platform/port/message_port.hpp"

#include "platform/loop/main_loop.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/port_address.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/own_thread.hpp"
#include "platform/process/process.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace vellum {

namespace {

// A message of data, or of none; nothing that can be sent when memory is exhausted.
OutgoingMessage Wrap(int32_t id, const ValData *data) {
    OutgoingMessage message;
    MachHeader header = {kMachSimpleBits, 0, kPortNull, kPortNull, 0, id};
    const size_t length = ValDataGetLength(data);
    if (data) header.bits |= kMachComplexBit;
    message.Append(header);
    if (data) {
        auto block =
            std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(ValDataGetBytes(data), length));
        if (length && !block->Bytes()) message.Spoil();
        MachDescriptor descriptor;
        descriptor.size = static_cast<uint32_t>(length);
        message.Append(uint32_t{1});
        message.Append(descriptor);
        message.AppendMemory({std::move(block), length});
    }
    message.SetHeader(header);
    return message;
}

Ref<const ValData> Unwrap(const IncomingMessage &message) {
    if (message.memory_count == 0) return nullptr;
    return Adopt(ValDataCreate(message.memory[0].data(), message.memory[0].size()));
}

// What a question may bring, and its answer: both are read where the program does other things, too.
constexpr uint32_t kMostAsked = uint32_t{1} << 20, kMostAnswered = uint32_t{32} << 20;

// More than that many at once are no seekers of fonts. Whoever came first goes.
constexpr size_t kMostPeers = 16;

// How long nobody is taken in where there is no room.
constexpr int kPause = 100; // milliseconds

// Nobody waits longer than a day; 0 for what is no number, too.
double Bounded(double seconds) noexcept {
    constexpr double kLongest = 86'400;
    return seconds > 0 ? std::min(seconds, kLongest) : 0;
}

void LimitSending(int socket, double seconds) noexcept {
    seconds = Bounded(seconds);
    timeval limit = {static_cast<time_t>(seconds), 0};
    limit.tv_usec = static_cast<suseconds_t>((seconds - static_cast<double>(limit.tv_sec)) * 1e6);
    if (limit.tv_sec == 0 && limit.tv_usec == 0) limit.tv_usec = 1; // 0 would be for ever
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

// Waits until a process has sent something, or has ended: a child of it may keep the connection open, which
// never answers.
MessagePortResult WaitForReply(int socket, pid_t process, double seconds) noexcept {
    using Clock = std::chrono::steady_clock;
    const auto patience = std::chrono::duration<double>(Bounded(seconds));
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(patience);
    const TDescriptor life(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    if (!life.IsOpen() && errno == ESRCH) return MessagePortResult::kGone;
    const OutsideLibrary waiting;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd events[] = {{socket, POLLIN, 0}, {life.Get(), POLLIN, 0}};
        const int ready = ::poll(events, 2, static_cast<int>(std::max<int64_t>(left, 0)));
        if (ready < 0 && errno != EINTR) return MessagePortResult::kNoMemory;
        if (ready == 0) return MessagePortResult::kReceiveTimedOut;
        if (ready < 0) continue;
        return events[0].revents ? MessagePortResult::kDone : MessagePortResult::kGone;
    }
}

// A question that waits for the main loop.
struct Question {
    int32_t id;
    Ref<const ValData> data;
    Ref<const ValData> answer;
    bool is_answered = false;
};

} // namespace

// Shared by the port, its thread, and questions on their way to the main loop.
struct LocalMessagePort::State : std::enable_shared_from_this<State> {
    const uint32_t process = GetProcessID();
    TDescriptor wake_up; // readable once the port is closed
    std::mutex mutex;    // guards what follows
    std::condition_variable changed;
    PortListener listener;
    std::shared_ptr<const Handler> handler; // null once the port is closed

    void Close() noexcept {
        std::shared_ptr<const Handler> last; // ends without the lock: what it holds may call back
        const std::lock_guard lock(mutex);
        last = std::move(handler);
        listener.Withdraw();
        changed.notify_all();
        ::eventfd_write(wake_up.Get(), 1);
    }

    // Has the main loop answer; false when the port was closed meanwhile.
    bool Ask(const std::shared_ptr<Question> &question, const IncomingMessage &message) {
        PutBeforeMainLoop(question, message);
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return !handler || question->is_answered; });
        return handler != nullptr;
    }

    void PutBeforeMainLoop(const std::shared_ptr<Question> &question, const IncomingMessage &message) {
        struct Call {
            std::shared_ptr<State> state;
            std::shared_ptr<Question> question;
        };
        const InLibrary inside;
        question->data = Unwrap(message);
        auto call = std::make_unique<Call>(Call{shared_from_this(), question});
        AddMainLoopTimer(
            [](void *info) noexcept {
                const std::unique_ptr<Call> mine(static_cast<Call *>(info));
                mine->state->Answer(*mine->question);
            },
            call.get());
        call.release();
    }

    void Answer(Question &question) noexcept {
        std::shared_ptr<const Handler> mine;
        {
            const std::lock_guard lock(mutex);
            mine = handler;
        }
        if (!mine) return;
        Ref<const ValData> answer;
        try {
            answer = (*mine)(question.id, question.data.Get());
        } catch (...) { // memory is exhausted: no data
        }
        mine.reset(); // perhaps the last to hold it
        const std::lock_guard lock(mutex);
        question.answer = std::move(answer);
        question.is_answered = true;
        changed.notify_all();
    }

    // True when the peer may send another message.
    bool Serve(int socket, PacketReceiver &receiver) {
        IncomingMessage message;
        uint64_t instance = 0;
        if (receiver.Receive(socket, false, message, instance) != PacketResult::kDone ||
            message.bytes.empty())
            return false;
        const auto question = std::make_shared<Question>();
        question->id = message.Header().id;
        if (!Ask(question, message)) return false;
        return SendPacket(socket, 0, Wrap(question->id, question->answer.Get()), false) ==
               PacketResult::kDone;
    }

    // False when there is no room.
    bool TakeIn(std::vector<TDescriptor> &peers) {
        TDescriptor peer = AcceptFromOwnUser(listener.Get());
        if (!peer.IsOpen())
            return errno != EMFILE && errno != ENFILE && errno != ENOBUFS && errno != ENOMEM;
        if (peers.size() == kMostPeers) peers.erase(peers.begin());
        peers.push_back(std::move(peer));
        return true;
    }

    void Run() {
        PacketReceiver receiver(kMostAsked);
        std::vector<TDescriptor> peers;
        std::vector<pollfd> events;
        for (bool has_room = true;;) {
            const short wanted = has_room ? POLLIN : 0;
            events = {{wake_up.Get(), POLLIN, 0}, {listener.Get(), wanted, 0}};
            for (const TDescriptor &peer : peers) events.push_back({peer.Get(), POLLIN, 0});
            if (::poll(events.data(), events.size(), has_room ? -1 : kPause) < 0) {
                if (errno == EINTR) continue;
                return; // memory is exhausted: the port is gone
            }
            if (events[0].revents) return;
            has_room = true;
            std::vector<TDescriptor> stay;
            for (size_t i = 0; i < peers.size(); ++i)
                if (!events[i + 2].revents || Serve(peers[i].Get(), receiver))
                    stay.push_back(std::move(peers[i]));
            peers = std::move(stay);
            if (events[1].revents) has_room = TakeIn(peers);
        }
    }
};

std::unique_ptr<LocalMessagePort> LocalMessagePort::Create(const std::string &name, Handler handler) {
    auto state = std::make_shared<State>();
    state->handler = std::make_shared<const Handler>(std::move(handler));
    state->wake_up = TDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!state->wake_up.IsOpen()) return nullptr;
    state->listener = PortListener::Open(name);
    if (!state->listener.IsOpen()) return nullptr;
    std::unique_ptr<LocalMessagePort> port(new LocalMessagePort(state));
    try {
        const SignalsBlocked blocked;
        std::thread([state] {
            try {
                state->Run();
            } catch (...) { // memory is exhausted: the port is gone
            }
            state->Close();
            const std::lock_guard lock(state->mutex);
            state->listener = PortListener();
        }).detach();
    } catch (const std::system_error &) {
        port = nullptr;
    }
    return port;
}

LocalMessagePort::~LocalMessagePort() {
    if (state_->process == GetProcessID())
        state_->Close();
    else // its lock may be held for ever, and its handler is the parent's affair: it stays as it is
        static_cast<void>(new (std::nothrow) std::shared_ptr<State>(state_));
}

bool RemoteMessagePort::IsValid() const noexcept {
    try {
        return ConnectToPort(process_, name_).IsOpen();
    } catch (...) { // memory is exhausted
        return false;
    }
}

MessagePortResult RemoteMessagePort::Send(int32_t id, const ValData *data, double send_seconds,
                                          double receive_seconds, Ref<const ValData> &reply) const {
    const TDescriptor socket = ConnectToPort(process_, name_);
    if (!socket.IsOpen()) return MessagePortResult::kGone;
    LimitSending(socket.Get(), send_seconds);
    const PacketResult sent = SendPacket(socket.Get(), 0, Wrap(id, data), true);
    if (sent == PacketResult::kWouldBlock) return MessagePortResult::kSendTimedOut;
    if (sent != PacketResult::kDone)
        return sent == PacketResult::kClosed ? MessagePortResult::kGone : MessagePortResult::kNoMemory;
    const MessagePortResult waited = WaitForReply(socket.Get(), process_, receive_seconds);
    if (waited != MessagePortResult::kDone) return waited;
    PacketReceiver receiver(kMostAnswered);
    IncomingMessage message;
    uint64_t instance = 0;
    const PacketResult received = receiver.Receive(socket.Get(), false, message, instance);
    if (received != PacketResult::kDone || message.bytes.empty()) return MessagePortResult::kGone;
    reply = Unwrap(message);
    return MessagePortResult::kDone;
}

} // namespace vellum
