// SPDX-License-Identifier: MIT
// The table of beginnings. The first row that fits counts, so longer ones stand before shorter ones.
#include "platform/font/font_kind.hpp"

#include <cstring>
#include <string_view>

namespace vellum {
namespace {

using namespace std::string_view_literals;

struct TBeginning {
    std::string_view bytes;
    TFontKind kind;
};

constexpr TBeginning kBeginnings[] = {
    {"\0\1\0\0"sv, TFontKind::kTrueType},
    {"\0\2\0\0"sv, TFontKind::kTrueType},
    {"true"sv, TFontKind::kTrueType},
    {"typ1"sv, TFontKind::kTrueType},
    {"OTTO"sv, TFontKind::kOpenType},
    {"ttcf"sv, TFontKind::kCollection},
    {"wOFF"sv, TFontKind::kWoff},
    {"wOF2"sv, TFontKind::kWoff2},
    {"\x80\1"sv, TFontKind::kType1Binary},
    {"%!PS-AdobeFont"sv, TFontKind::kType1Text},
    {"%!FontType"sv, TFontKind::kType1Text},
    {"%!PS-Adobe-3.0 Resource-CIDFont"sv, TFontKind::kCid},
    {"%!PS-TrueTypeFont"sv, TFontKind::kType42},
    {"%!"sv, TFontKind::kPostScript},
    {"\1fcp"sv, TFontKind::kPcf},
    {"STARTFONT"sv, TFontKind::kBdf},
    {"COMMENT "sv, TFontKind::kBdf},
    {"\x1f\x8b"sv, TFontKind::kGzip},
    {"\x1f\x9d"sv, TFontKind::kLzw},
    {"BZh"sv, TFontKind::kBzip2},
};

constexpr bool EveryBeginningFits() {
    for (const TBeginning &row : kBeginnings) {
        if (row.bytes.size() > kSniffedBytes) return false;
    }
    return true;
}
static_assert(EveryBeginningFits());

} // namespace

TFontKind SniffFontKind(TBytes head) noexcept {
    for (const TBeginning &row : kBeginnings) {
        if (head.size() < row.bytes.size()) continue;
        if (std::memcmp(head.data(), row.bytes.data(), row.bytes.size()) == 0) return row.kind;
    }
    return TFontKind::kUnknown;
}

} // namespace vellum
