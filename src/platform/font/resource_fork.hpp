// SPDX-License-Identifier: MIT
// The second fork of files that come from systems that have one: on Linux the extended attribute
// user.ResourceFork, else the file .rsrc/NAME beside it.
#pragma once

#include "platform/font/font_source.hpp"

#include <cstdint>
#include <string>

namespace vellum {

enum class TForkContent : uint8_t {
    kNothing, // no fork, or none with fonts
    kSuitcase,
    kPostScriptOutlines,
};

// What the second fork of a file holds. `reading` is a round of the file itself.
TForkContent ReadForkContent(const TReading &reading, const std::string &path);

} // namespace vellum
