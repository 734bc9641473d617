// SPDX-License-Identifier: MIT
// Base64, RFC 4648.
#pragma once

#include <vellum/values.hpp>

#include <string>
#include <string_view>

namespace vellum {

// The bytes that a text stands for; white space in it is passed over. Null when it is no Base64, or when
// memory is exhausted.
Ref<const ValData> DecodeBase64(std::string_view text) noexcept;

// The text that stands for bytes, on one line. Throws std::bad_alloc.
std::string EncodeBase64(std::string_view bytes);

} // namespace vellum
