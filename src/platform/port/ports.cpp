// SPDX-License-Identifier: MIT
#include "platform/port/ports.hpp"

#include "platform/port/packet.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/per_thread.hpp"

#include <sys/socket.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace vellum {

namespace {

// One life of a service, as far as this process knows it.
struct Service {
    explicit Service(const char *service_name) : name(service_name) {}

    const std::string name;
    const uint32_t forks = CountOfForks(); // whose it is: a child of the process has none of its names
    std::atomic<uint64_t> instance{0};     // 0 until it has answered
    std::atomic<int64_t> silent_until{0};  // by the steady clock; 0 while it answers in time
    std::atomic<bool> is_dead{false};
};

constinit std::mutex sMutex; // guards the next two
constinit PortName sLastName = kPortNull;
std::map<PortName, std::shared_ptr<Service>> &Services() {
    static auto *const services = new std::map<PortName, std::shared_ptr<Service>>;
    return *services;
}

PortName NextName() noexcept {
    do ++sLastName;
    while (!IsPort(sLastName));
    return sLastName;
}

// A socket that the program has not closed behind our back: its number may be another file's by now.
class OwnSocket {
public:
    explicit OwnSocket(TDescriptor socket) noexcept : socket_(std::move(socket)) {
        if (socket_.IsOpen() && ::fstat(socket_.Get(), &status_) != 0) status_ = {};
    }
    OwnSocket(OwnSocket &&) noexcept = default;
    OwnSocket &operator=(OwnSocket &&) noexcept = default;
    ~OwnSocket() {
        if (socket_.IsOpen() && !IsOurs()) socket_.Release();
    }

    bool IsOurs() const noexcept {
        struct stat now;
        return socket_.IsOpen() && ::fstat(socket_.Get(), &now) == 0 && now.st_dev == status_.st_dev &&
               now.st_ino == status_.st_ino;
    }
    int Get() const noexcept { return socket_.Get(); }

private:
    TDescriptor socket_;
    struct stat status_ = {};
};

struct Connection {
    PortName port;
    std::shared_ptr<Service> service;
    OwnSocket socket;
    long patience = 0; // in seconds, as the socket has it; 0 for none
};

// What a thread has.
struct ThreadPorts {
    PortName reply_port = kPortNull;
    uint32_t forks = 0;
    std::vector<Connection> connections;
    PacketReceiver receiver;
    MachHeader notification = {};

    Connection *Find(PortName port) noexcept {
        for (Connection &connection : connections)
            if (connection.port == port) return &connection;
        return nullptr;
    }
    void Drop(PortName port) noexcept {
        std::erase_if(connections, [port](const Connection &one) {
            return one.port == port || one.service->is_dead.load(std::memory_order_relaxed);
        });
    }
};

// The calling thread's, without what a parent left it; null when memory is exhausted.
ThreadPorts *Mine() noexcept {
    ThreadPorts *mine = TPerThread<ThreadPorts>::Get();
    const uint32_t forks = CountOfForks();
    if (mine && mine->forks == forks) return mine;
    std::unique_ptr<ThreadPorts> made(new (std::nothrow) ThreadPorts);
    if (made) made->forks = forks;
    return made ? TPerThread<ThreadPorts>::Set(std::move(made)) : nullptr;
}

using Clock = std::chrono::steady_clock;

// Who has kept somebody waiting in vain is not waited for again at once.
constexpr std::chrono::seconds kSilence(5);

// Until when nobody waits for the services of these names, which have taken nobody in for a while.
std::map<std::string, Clock::time_point> &DeafNames() { // guarded by sMutex
    static auto *const names = new std::map<std::string, Clock::time_point>;
    return *names;
}

bool IsDeaf(const std::string &name) {
    const std::lock_guard lock(sMutex);
    const auto found = DeafNames().find(name);
    return found != DeafNames().end() && Clock::now() < found->second;
}

// errno says why there is no connection.
TDescriptor Connect(const std::string &name) {
    errno = EAGAIN;
    if (IsDeaf(name)) return TDescriptor();
    TDescriptor socket = ConnectToService(name.c_str());
    if (socket.IsOpen() || errno != EAGAIN) return socket;
    const std::lock_guard lock(sMutex);
    DeafNames()[name] = Clock::now() + kSilence;
    return socket;
}

std::shared_ptr<Service> FindService(PortName port) noexcept {
    const std::lock_guard lock(sMutex);
    const auto found = Services().find(port);
    const bool is_there = found != Services().end() && found->second->forks == CountOfForks();
    return is_there ? found->second : nullptr;
}

// The thread's connection to a port, made if it is not there yet; null when nobody answers.
Connection *ConnectionTo(ThreadPorts &mine, PortName port) {
    if (Connection *connection = mine.Find(port)) {
        if (connection->socket.IsOurs() && !connection->service->is_dead.load(std::memory_order_relaxed))
            return connection;
        mine.Drop(port);
    }
    auto service = FindService(port);
    if (!service || service->is_dead.load(std::memory_order_relaxed)) return nullptr;
    OwnSocket socket(Connect(service->name));
    if (!socket.IsOurs()) return nullptr;
    mine.connections.push_back({port, std::move(service), std::move(socket), 0});
    return &mine.connections.back();
}

// Nobody will answer under this name any more.
void Die(ThreadPorts &mine, const Connection &connection) noexcept {
    connection.service->is_dead.store(true, std::memory_order_relaxed);
    mine.Drop(connection.port);
}

MachCode CodeOfSending(PacketResult result) noexcept {
    switch (result) {
    case PacketResult::kDone:
        return kMachSuccess;
    case PacketResult::kMalformed:
        return kMachSendInvalidData;
    case PacketResult::kClosed:
        return kMachSendInvalidDestination;
    default:
        return kMachSendNoBuffer;
    }
}

void Notify(ThreadPorts &mine, IncomingMessage &reply) noexcept {
    mine.notification = {kMachReplyBits,           sizeof(MachHeader), kPortNull, mine.reply_port, 0,
                         kMachSendOnceNotification};
    reply = {};
    reply.bytes = {reinterpret_cast<const uint8_t *>(&mine.notification), sizeof mine.notification};
}

bool IsSilent(const Service &service) noexcept {
    const Clock::duration until(service.silent_until.load(std::memory_order_relaxed));
    return until.count() != 0 && Clock::now().time_since_epoch() < until;
}

void NoteSilence(Service &service) noexcept {
    const auto until = Clock::now() + kSilence;
    service.silent_until.store(until.time_since_epoch().count(), std::memory_order_relaxed);
}

MachCode Receive(ThreadPorts &mine, Connection &connection, IncomingMessage &reply) noexcept {
    uint64_t instance = 0;
    switch (mine.receiver.Receive(connection.socket.Get(), true, reply, instance)) {
    case PacketResult::kDone:
        break;
    case PacketResult::kClosed:
        Die(mine, connection);
        Notify(mine, reply);
        return kMachSuccess;
    case PacketResult::kWouldBlock:
        NoteSilence(*connection.service);
        mine.Drop(connection.port); // what is still to come would answer the wrong question
        return kMachReceiveTimedOut;
    default:
        mine.Drop(connection.port);
        return kMachReceiveBodyError;
    }
    uint64_t known = 0;
    const bool first = connection.service->instance.compare_exchange_strong(known, instance);
    if (!reply.bytes.empty() && (first || known == instance)) return kMachSuccess;
    Die(mine, connection); // another life answers there
    return kMachSendInvalidDestination;
}

MachCode SendAndReceive(ThreadPorts &mine, PortName port, const OutgoingMessage &request,
                        IncomingMessage &reply, long patience) {
    Connection *connection = ConnectionTo(mine, port);
    if (!connection) return kMachSendInvalidDestination;
    if (IsSilent(*connection->service)) return kMachReceiveTimedOut;
    const uint64_t instance = connection->service->instance.load(std::memory_order_relaxed);
    const MachCode sent = CodeOfSending(SendPacket(connection->socket.Get(), instance, request, true));
    if (sent == kMachSendInvalidDestination) Die(mine, *connection);
    if (sent) return sent;
    if (std::exchange(connection->patience, patience) != patience)
        LimitReceiving(connection->socket.Get(), patience);
    return Receive(mine, *connection, reply);
}

} // namespace

MachCode bootstrap_look_up(const char *service, PortName &port) noexcept {
    try {
        ThreadPorts *mine = Mine();
        OwnSocket socket(mine ? Connect(service) : TDescriptor());
        if (!socket.IsOurs()) return kBootstrapUnknownService;
        auto found = std::make_shared<Service>(service);
        const std::lock_guard lock(sMutex);
        std::erase_if(Services(), [](const auto &one) { return one.second->forks != CountOfForks(); });
        const PortName name = NextName();
        mine->connections.reserve(mine->connections.size() + 1);
        Services().emplace(name, found);
        mine->connections.push_back({name, std::move(found), std::move(socket), 0});
        port = name;
        return kMachSuccess;
    } catch (...) { // memory is exhausted
        return kMachSendNoBuffer;
    }
}

void mach_port_deallocate(PortName port) noexcept {
    if (ThreadPorts *mine = Mine()) mine->Drop(port);
    const std::lock_guard lock(sMutex);
    const auto found = Services().find(port);
    if (found == Services().end()) return;
    found->second->is_dead.store(true, std::memory_order_relaxed);
    Services().erase(found);
}

PortName mig_get_reply_port() noexcept {
    ThreadPorts *mine = Mine();
    if (!mine) return kPortNull;
    if (mine->reply_port == kPortNull) {
        const std::lock_guard lock(sMutex);
        mine->reply_port = NextName();
    }
    return mine->reply_port;
}

void mig_dealloc_reply_port(PortName reply_port) noexcept {
    ThreadPorts *mine = Mine();
    if (!mine || mine->reply_port != reply_port) return;
    mine->reply_port = kPortNull;
    mine->connections.clear();
}

MachCode mach_msg(const OutgoingMessage &request, IncomingMessage &reply, long patience) noexcept {
    if (!request.IsWhole()) return kMachSendInvalidHeader;
    ThreadPorts *mine = Mine();
    if (!mine) return kMachSendNoBuffer;
    try {
        return SendAndReceive(*mine, request.Header().remote_port, request, reply, patience);
    } catch (...) { // memory is exhausted
        return kMachSendNoBuffer;
    }
}

} // namespace vellum
