// SPDX-License-Identifier: MIT
// What is in the second fork of files that come from systems that have one; platform/fs/file_fork.hpp
// says where it lies.
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
