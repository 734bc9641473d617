// SPDX-License-Identifier: MIT
#include "server/service_names.hpp"

#include "service/service_process.hpp"

namespace vellum {

TakenName::TakenName(const ServerName &name)
    : name_(name), listener_(ListenOrThrow(name.Get())), file_(FindServiceFile(name.Get())) {}

} // namespace vellum
