// SPDX-License-Identifier: MIT
// From the bytes of a name record to text.
#pragma once

#include "platform/font/big_endian.hpp"

#include <vellum/values.hpp>

namespace vellum {

// Null when platform and encoding are not understood, the bytes do not fit them, or the text is
// empty or longer than limits::kNameLength. The text holds no U+0000.
Ref<const ValString> DecodeName(uint16_t platform, uint16_t encoding, TBytes bytes);

} // namespace vellum
