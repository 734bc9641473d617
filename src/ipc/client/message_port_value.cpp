// SPDX-License-Identifier: MIT
#include "ipc/client/message_port_value.hpp"

#include "platform/process/process.hpp"
#include "platform/val/object.hpp"
#include "values/out_of_memory.hpp"

#include <optional>

namespace vellum {
extern const ValKind kMessagePortKind;
} // namespace vellum

struct VLMessagePort : vellum::ValObject {
    VLMessagePort() noexcept : ValObject(vellum::kMessagePortKind) {}

    std::unique_ptr<vellum::LocalMessagePort> local;
    std::string name; // of the local one
    std::function<void()> ended;
    std::optional<vellum::RemoteMessagePort> remote;
};

namespace vellum {

namespace {

void End(ValObject *object) {
    auto *port = static_cast<VLMessagePort *>(object);
    const bool was_local = port->local != nullptr;
    port->local.reset();
    try {
        if (was_local && port->ended) port->ended();
    } catch (...) { // memory is exhausted: nobody is told
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
    return port->remote ? port->remote->Process() : static_cast<pid_t>(GetProcessID());
}

const std::string &NameOf(const VLMessagePort *port) noexcept {
    return port->remote ? port->remote->Name() : port->name;
}

const RemoteMessagePort *RemotePort(const VLMessagePort *port) noexcept {
    return port && port->remote ? &*port->remote : nullptr;
}

} // namespace vellum
