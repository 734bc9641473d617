// SPDX-License-Identifier: MIT
#include "platform/port/message_port.hpp"

#include "platform/loop/main_loop.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/process.hpp"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace vellum {

namespace {

std::string AddressOf(pid_t process, const std::string &name) {
    return std::to_string(process) + "." + name;
}

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

void LimitWaiting(int socket, int option, double seconds) noexcept {
    constexpr double kLongest = 86'400;
    seconds = seconds > 0 ? std::min(seconds, kLongest) : 0; // 0 for what is no number, too
    timeval limit = {static_cast<time_t>(seconds), 0};
    limit.tv_usec = static_cast<suseconds_t>((seconds - static_cast<double>(limit.tv_sec)) * 1e6);
    if (limit.tv_sec == 0 && limit.tv_usec == 0) limit.tv_usec = 1; // 0 would be for ever
    ::setsockopt(socket, SOL_SOCKET, option, &limit, sizeof limit);
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
    std::string address;
    Handler handler;
    TDescriptor listener, wake_up; // the latter is readable once the port is closed
    std::mutex mutex;              // guards what follows
    std::condition_variable changed;
    bool is_closed = false;

    void Close() noexcept {
        {
            const std::lock_guard lock(mutex);
            is_closed = true;
        }
        changed.notify_all();
        ::eventfd_write(wake_up.Get(), 1);
    }

    // Has the main loop answer; false when the port was closed meanwhile.
    bool Ask(const std::shared_ptr<Question> &question) {
        struct Call {
            std::shared_ptr<State> state;
            std::shared_ptr<Question> question;
        };
        auto call = std::make_unique<Call>(Call{shared_from_this(), question});
        AddMainLoopTimer(
            [](void *info) noexcept {
                const std::unique_ptr<Call> mine(static_cast<Call *>(info));
                mine->state->Answer(*mine->question);
            },
            call.get());
        call.release();
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return is_closed || question->is_answered; });
        return !is_closed;
    }

    void Answer(Question &question) noexcept {
        {
            const std::lock_guard lock(mutex);
            if (is_closed) return;
        }
        Ref<const ValData> answer;
        try {
            answer = handler(question.id, question.data.Get());
        } catch (...) { // memory is exhausted: no data
        }
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
        question->data = Unwrap(message);
        if (!Ask(question)) return false;
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
    state->address = AddressOf(static_cast<pid_t>(GetProcessID()), name);
    state->handler = std::move(handler);
    state->wake_up = TDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!state->wake_up.IsOpen()) return nullptr;
    state->listener = ListenAsService(state->address.c_str());
    if (!state->listener.IsOpen()) return nullptr;
    // Signals are the program's: none of them is handled on a thread that it does not know.
    sigset_t all, former;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former);
    bool is_running = true;
    try {
        std::thread([state] {
            try {
                state->Run();
            } catch (...) { // memory is exhausted: the port is gone
            }
            UnlinkService(state->address.c_str());
            state->listener = TDescriptor();
        }).detach();
    } catch (const std::system_error &) {
        is_running = false;
    }
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return is_running ? std::unique_ptr<LocalMessagePort>(new LocalMessagePort(std::move(state))) : nullptr;
}

LocalMessagePort::~LocalMessagePort() {
    state_->Close();
}

bool RemoteMessagePort::IsValid() const noexcept {
    try {
        return ConnectToService(AddressOf(process_, name_).c_str()).IsOpen();
    } catch (...) { // memory is exhausted
        return false;
    }
}

MessagePortResult RemoteMessagePort::Send(int32_t id, const ValData *data, double send_seconds,
                                          double receive_seconds, Ref<const ValData> &reply) const {
    const TDescriptor socket = ConnectToService(AddressOf(process_, name_).c_str());
    if (!socket.IsOpen()) return MessagePortResult::kGone;
    LimitWaiting(socket.Get(), SO_SNDTIMEO, send_seconds);
    LimitWaiting(socket.Get(), SO_RCVTIMEO, receive_seconds);
    const PacketResult sent = SendPacket(socket.Get(), 0, Wrap(id, data), true);
    if (sent == PacketResult::kWouldBlock) return MessagePortResult::kSendTimedOut;
    if (sent != PacketResult::kDone)
        return sent == PacketResult::kClosed ? MessagePortResult::kGone : MessagePortResult::kNoMemory;
    PacketReceiver receiver(kMostAnswered);
    IncomingMessage message;
    uint64_t instance = 0;
    const PacketResult received = receiver.Receive(socket.Get(), true, message, instance);
    if (received == PacketResult::kWouldBlock) return MessagePortResult::kReceiveTimedOut;
    if (received != PacketResult::kDone || message.bytes.empty()) return MessagePortResult::kGone;
    reply = Unwrap(message);
    return MessagePortResult::kDone;
}

} // namespace vellum
