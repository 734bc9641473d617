// SPDX-License-Identifier: MIT
#include "ipc/client/message_port_value.hpp"

#include "platform/process/process.hpp"
#include "platform/val/object.hpp"
#include "values/out_of_memory.hpp"

#include <new>
#include <optional>

namespace vellum {
extern const ValKind kMessagePortKind;
} // namespace vellum

struct VLMessagePort : vellum::ValObject {
    VLMessagePort() noexcept : ValObject(vellum::kMessagePortKind) {}

    const uint32_t process = vellum::GetProcessID(); // where it was made
    std::unique_ptr<vellum::LocalMessagePort> local;
    std::string name; // of the local one
    std::function<void()> ended;
    std::optional<vellum::RemoteMessagePort> remote;
};

namespace vellum {

namespace {

// In a child that was forked, a parent's port is nobody's to end, nor is what its end would call.
void End(ValObject *object) {
    auto *port = static_cast<VLMessagePort *>(object);
    port->local.reset();
    if (port->process != GetProcessID()) {
        static_cast<void>(new (std::nothrow) std::function<void()>(std::move(port->ended)));
    } else if (port->ended) {
        try {
            port->ended();
        } catch (...) { // memory is exhausted: nobody is told
        }
    }
    port->~VLMessagePort();
}

Ref<VLMessagePort> Make() {
    return OrBadAlloc(Adopt(AllocateObject<VLMessagePort>(0)));
}

} // namespace

constexpr ValKind kMessagePortKind = {kValTypeOther, "VLMessagePort", End, nullptr, nullptr, nullptr};

Ref<VLMessagePort> MakePortValue(std::unique_ptr<LocalMessagePort> port, std::string name,
                                 std::function<void()> ended) {
    auto value = Make();
    value.Get()->local = std::move(port);
    value.Get()->name = std::move(name);
    value.Get()->ended = std::move(ended);
    return value;
}

Ref<VLMessagePort> MakePortValue(RemoteMessagePort port) {
    auto value = Make();
    value.Get()->remote.emplace(std::move(port));
    return value;
}

pid_t ProcessOf(const VLMessagePort *port) noexcept {
    return port->remote ? port->remote->Process() : static_cast<pid_t>(port->process);
}

const std::string &NameOf(const VLMessagePort *port) noexcept {
    return port->remote ? port->remote->Name() : port->name;
}

const RemoteMessagePort *RemotePort(const VLMessagePort *port) noexcept {
    return port && port->remote ? &*port->remote : nullptr;
}

} // namespace vellum
