// SPDX-License-Identifier: MIT
// The stages of a lookup that registers tell of; docs/trace.md says what each holds.
#pragma once

#include "query/comparison_key.hpp"

#include <cstddef>

namespace vellum {

// An index was asked for a value of its property, and had so many fonts.
void TellIndex(const ValString *property, const void *value, size_t fonts) noexcept;

// All fonts are looked through, as the request names nothing that an index knows.
void TellScan(size_t fonts) noexcept;

// A font was a candidate until it failed one key of the request.
void TellDropped(const TFontEntity &font, const ValString *property, const void *requested) noexcept;

// Of two fonts that are neighbours in the answer, what put the first before the second.
void TellOrder(const TFontEntity &first, const TFontEntity &second, const Comparison &comparison) noexcept;

} // namespace vellum
