// SPDX-License-Identifier: MIT
// What a service manager has for a service, and wants to hear from it.
#pragma once

#include "platform/fs/file.hpp"

namespace vellum {

// Whether a service manager has started this process and looks after it.
bool IsUnderServiceManager() noexcept;

// The listening socket that the service manager has made and handed down; closed when there is none.
TDescriptor InheritedListener() noexcept;

// Tells the service manager that this service answers from now on; nothing without one.
void SayThatItIsReady() noexcept;

} // namespace vellum
