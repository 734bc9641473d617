// SPDX-License-Identifier: MIT
// VLMessagePort: a message port as a value, which any container can hold.
#pragma once

#include "platform/port/message_port.hpp"

#include <vellum/vellum.hpp>

namespace vellum {

// A port of that name which ends with its last reference; `ended` is called then, with no lock held.
Ref<VLMessagePort> MakePortValue(std::unique_ptr<LocalMessagePort> port, std::string name,
                                 std::function<void()> ended);

Ref<VLMessagePort> MakePortValue(RemoteMessagePort port);

// Who answers at a port, and the port's name there.
pid_t ProcessOf(const VLMessagePort *port) noexcept;
const std::string &NameOf(const VLMessagePort *port) noexcept;

// The remote port (borrowed); null for a local one.
const RemoteMessagePort *RemotePort(const VLMessagePort *port) noexcept;

} // namespace vellum
