// SPDX-License-Identifier: MIT
// Message ports: a process opens one under a name of its own and answers what others send there.
//
// Ports lie among the services, called by the process's id and the port's name. Requests are answered on
// the main loop, one after the other; a thread of the port's waits for them, so that no loop must watch
// anything.
#pragma once

#include <vellum/values.hpp>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

namespace vellum {

// The answering end.
class LocalMessagePort {
public:
    // Called on the main loop with a message's id and its data, which may be null; gives the data of the
    // reply, or null for none.
    using Handler = std::function<Ref<const ValData>(int32_t id, const ValData *data)>;

    // Null when the port could not be opened. Throws std::bad_alloc.
    static std::unique_ptr<LocalMessagePort> Create(const std::string &name, Handler handler);

    // Who waits for a reply, or sends from now on, finds that the port is gone. The handler is not called
    // any more, and ends: here, or with the call that is running just now. In a child that was forked this
    // does nothing: the port is the parent's, and goes on.
    ~LocalMessagePort();
    LocalMessagePort(const LocalMessagePort &) = delete;
    LocalMessagePort &operator=(const LocalMessagePort &) = delete;

private:
    struct State;
    explicit LocalMessagePort(std::shared_ptr<State> state) noexcept : state_(std::move(state)) {}

    const std::shared_ptr<State> state_; // with the port's thread
};

// The asking end.
// kGone: nobody answers there, or who did has ended.
enum class MessagePortResult { kDone, kSendTimedOut, kReceiveTimedOut, kGone, kNoMemory };

class RemoteMessagePort {
public:
    RemoteMessagePort(pid_t process, std::string name) : process_(process), name_(std::move(name)) {}

    pid_t Process() const noexcept { return process_; }
    const std::string &Name() const noexcept { return name_; }

    // Whether somebody answers there.
    bool IsValid() const noexcept;

    // Sends a message and waits for its reply, no longer than so many seconds each. `reply` is set for
    // kDone, to null for a reply without data.
    MessagePortResult Send(int32_t id, const ValData *data, double send_seconds, double receive_seconds,
                           Ref<const ValData> &reply) const;

private:
    const pid_t process_;
    const std::string name_;
};

} // namespace vellum
