// SPDX-License-Identifier: MIT
// The kinds of files that are fonts, by the bytes that they begin with.
#pragma once

#include "platform/font/big_endian.hpp"

namespace vellum {

enum class TFontKind : uint8_t {
    kUnknown,
    kTrueType,
    kOpenType,
    kCollection, // of either; its faces tell
    kType1Text,
    kType1Binary,
    kCid,
    kType42,
    kPostScript, // a program that may be a font: its name tells
    kPcf,
    kBdf,
    kWoff,
    kWoff2,
    kGzip, // compressed; what it holds tells
    kLzw,
    kBzip2,
};

// How many bytes the longest beginning has.
inline constexpr size_t kSniffedBytes = 32;

TFontKind SniffFontKind(TBytes head) noexcept;

constexpr bool IsCompressed(TFontKind kind) noexcept {
    return kind == TFontKind::kGzip || kind == TFontKind::kLzw || kind == TFontKind::kBzip2;
}

} // namespace vellum
