// SPDX-License-Identifier: MIT
// Unpacking of compressed bitmap fonts, with a bound on what comes out.
#pragma once

#include "platform/font/font_kind.hpp"
#include "platform/font/font_source.hpp"

#include <optional>

namespace vellum {

class TFreeType;

// The first bytes that a compressed file unpacks to, at most `limit` of them. The proof that the
// caller may use FreeType, whose readers of compressed streams do the work, is passed along.
TBuffer InflateHead(const TFreeType &freetype, const TReading &reading, TFontKind kind, size_t limit);

// All that a compressed file unpacks to; nullopt when that is nothing, or more than
// limits::kInflatedBytes.
std::optional<TBuffer> Inflate(const TFreeType &freetype, const TReading &reading, TFontKind kind);

} // namespace vellum
