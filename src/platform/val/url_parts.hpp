// SPDX-License-Identifier: MIT
// The parts of a URL's text, and the resolution of relative ones, after RFC 3986.
//
// GLib's parser is not used here: it changes what it reads (white space, hosts), and it aborts when
// memory is exhausted, while splitting a text needs none.
#pragma once

#include "platform/val/text_buffer.hpp"

#include <optional>
#include <string_view>

namespace vellum {

// Views into the text, escapes and letter case as they stand there.
struct URLParts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

// True when a text begins with a scheme: it is no relative reference.
bool HasScheme(std::string_view text) noexcept;

// Every text has parts.
URLParts SplitURL(std::string_view text) noexcept;

// The authority without user and port, an address in brackets with them; may be empty.
std::string_view HostOfAuthority(std::string_view authority) noexcept;

// True when a text can stand as a URL or a relative reference. Characters that should be escaped
// are let pass, but for control characters; a port must be a number.
bool IsURLText(std::string_view text) noexcept;

// The absolute form of a relative reference.
Ref<const ValString> ResolveURL(std::string_view base, std::string_view relative) noexcept;

} // namespace vellum
