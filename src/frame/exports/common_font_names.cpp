// SPDX-License-Identifier: MIT
// Exported: the fonts that everybody asks for on a Linux desktop, by PostScript name. The shared
// register answers for them all at once when a process first meets it.
#include "platform/val/static_string.hpp"

#include <vellum/vellum.h>

#include <iterator>

namespace {

using vellum::StaticString;

// What desktops set their menus and windows in.
constinit const StaticString kCantarell("Cantarell-Regular");
constinit const StaticString kCantarellBold("Cantarell-Bold");
constinit const StaticString kAdwaitaSans("AdwaitaSans-Regular");
constinit const StaticString kUbuntu("Ubuntu-Regular");
constinit const StaticString kUbuntuMono("UbuntuMono-Regular");
constinit const StaticString kInter("Inter-Regular");
constinit const StaticString kRoboto("Roboto-Regular");
constinit const StaticString kOpenSans("OpenSans-Regular");
constinit const StaticString kHack("Hack-Regular");

// What documents and pages fall back to.
constinit const StaticString kDejaVuSans("DejaVuSans");
constinit const StaticString kDejaVuSansBold("DejaVuSans-Bold");
constinit const StaticString kDejaVuSansMono("DejaVuSansMono");
constinit const StaticString kDejaVuSerif("DejaVuSerif");
constinit const StaticString kLiberationSans("LiberationSans");
constinit const StaticString kLiberationSansBold("LiberationSans-Bold");
constinit const StaticString kLiberationSerif("LiberationSerif");
constinit const StaticString kLiberationMono("LiberationMono");
constinit const StaticString kNotoSans("NotoSans-Regular");
constinit const StaticString kNotoSansBold("NotoSans-Bold");
constinit const StaticString kNotoSansMono("NotoSansMono-Regular");
constinit const StaticString kNotoSerif("NotoSerif-Regular");

// What draws the rest of the world's writing.
constinit const StaticString kArabic("NotoSansArabic-Regular");
constinit const StaticString kDevanagari("NotoSansDevanagari-Regular");
constinit const StaticString kHebrew("NotoSansHebrew-Regular");
constinit const StaticString kThai("NotoSansThai-Regular");
constinit const StaticString kJapanese("NotoSansCJKjp-Regular");
constinit const StaticString kKorean("NotoSansCJKkr-Regular");
constinit const StaticString kSimplifiedChinese("NotoSansCJKsc-Regular");
constinit const StaticString kTraditionalChinese("NotoSansCJKtc-Regular");
constinit const StaticString kMath("NotoSansMath-Regular");
constinit const StaticString kSymbols("NotoSansSymbols-Regular");
constinit const StaticString kMoreSymbols("NotoSansSymbols2-Regular");
constinit const StaticString kEmoji("NotoColorEmoji");

constinit const ValString *const kCommonFontNames[] = {
    &kCantarell,
    &kCantarellBold,
    &kAdwaitaSans,
    &kUbuntu,
    &kUbuntuMono,
    &kInter,
    &kRoboto,
    &kOpenSans,
    &kHack,
    &kDejaVuSans,
    &kDejaVuSansBold,
    &kDejaVuSansMono,
    &kDejaVuSerif,
    &kLiberationSans,
    &kLiberationSansBold,
    &kLiberationSerif,
    &kLiberationMono,
    &kNotoSans,
    &kNotoSansBold,
    &kNotoSansMono,
    &kNotoSerif,
    &kArabic,
    &kDevanagari,
    &kHebrew,
    &kThai,
    &kJapanese,
    &kKorean,
    &kSimplifiedChinese,
    &kTraditionalChinese,
    &kMath,
    &kSymbols,
    &kMoreSymbols,
    &kEmoji,
};
static_assert(std::size(kCommonFontNames) == 33);

} // namespace

const ValString *const *VLGetCommonFontNames(size_t *count) noexcept {
    if (count) *count = std::size(kCommonFontNames);
    return kCommonFontNames;
}
