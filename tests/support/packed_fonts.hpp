// SPDX-License-Identifier: MIT
// Packed files: WOFF around an sfnt font, and gzip around anything.
#pragma once

#include "support/bytes.hpp"

namespace vellum::test {

// The tables of `sfnt` as they are, which the format allows; sorted by tag.
Bytes BuildWoff(const Bytes &sfnt);

// gzip without compression.
Bytes Gzip(const Bytes &bytes);

// gzip, compressed, of `prefix` and then of about `zeros` zeros: a thousand times smaller.
Bytes GzipOfZeros(const Bytes &prefix, size_t zeros);

} // namespace vellum::test
