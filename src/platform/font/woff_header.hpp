// SPDX-License-Identifier: MIT
// What a WOFF file says that it will become, before anybody unpacks it.
#pragma once

#include "platform/font/font_source.hpp"

#include <optional>

namespace vellum {

// The bytes that the tables of a WOFF or WOFF2 file unpack to; nullopt when the file's header or
// directory is cut short, or promises more than limits.hpp allows.
std::optional<uint64_t> BelievableWoffSize(const TReading &reading);

} // namespace vellum
