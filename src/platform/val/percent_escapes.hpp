// SPDX-License-Identifier: MIT
// Percent escapes of URLs, on bytes.
#pragma once

#include "platform/val/text_buffer.hpp"

#include <string_view>

namespace vellum {

// Appends `text` with every byte escaped that may not stand in a URL's path or fragment, and those
// of `also`.
void AppendEscaped(TextBuffer &out, std::string_view text, std::string_view also = {}) noexcept;

// Appends `text` with its escapes decoded; a "%" that begins no escape stays. False when a zero or a
// byte of `refused` stood escaped.
bool AppendUnescaped(TextBuffer &out, std::string_view text, std::string_view refused = {}) noexcept;

// The decoded text, or null.
Ref<const ValString> Unescape(std::string_view text, std::string_view refused = {}) noexcept;

} // namespace vellum
