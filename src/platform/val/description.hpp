// SPDX-License-Identifier: MIT
// Texts about values, for logs and debuggers.
#pragma once

#include "platform/val/text_buffer.hpp"

namespace vellum {

// Appends a description of a value, bounded in length and depth; null is "null".
void AppendDescription(TextBuffer &out, const void *value) noexcept;

} // namespace vellum
