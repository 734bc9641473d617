// SPDX-License-Identifier: MIT
// Any bytes as a text without spaces, line ends and separators, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum::legacy {

// Letters, digits and the marks "-._~/" stand for themselves, every other byte is an escape.
std::string PercentEscape(std::string_view bytes);

// Nothing when an escape is broken or stands for zero.
std::optional<std::string> PercentUnescape(std::string_view text);

// The parameters of a fragment, "key=value;key=value", unescaped. Those without exactly one "=", or with a
// broken escape, are left out.
std::vector<std::pair<std::string, std::string>> ReadParameters(std::string_view fragment);

} // namespace vellum::legacy
