// SPDX-License-Identifier: MIT
// The table of live data fonts.
#include "platform/font/live_data_fonts.hpp"

#include "platform/font/font_object.hpp"
#include "platform/font/guarded.hpp"

#include <charconv>
#include <mutex>
#include <set>
#include <system_error>

namespace vellum {
namespace {

struct TLiveFonts {
    std::mutex mutex;
    std::set<uintptr_t> addresses; // guarded by mutex; an object leaves before its memory is freed
};

// Never destroyed: fonts may die after the library's static objects would have.
TLiveFonts &LiveFonts() {
    static TLiveFonts &sFonts = *new TLiveFonts;
    return sFonts;
}

bool ParseAddress(std::string_view text, uintptr_t &address) noexcept {
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, address, 16);
    return !text.empty() && error == std::errc() && rest == end;
}

} // namespace

void RememberLiveDataFont(const GxFont *font) {
    TLiveFonts &fonts = LiveFonts();
    const std::lock_guard lock(fonts.mutex);
    fonts.addresses.insert(reinterpret_cast<uintptr_t>(font));
}

void ForgetLiveDataFont(const GxFont *font) noexcept {
    TLiveFonts &fonts = LiveFonts();
    const std::lock_guard lock(fonts.mutex);
    fonts.addresses.erase(reinterpret_cast<uintptr_t>(font));
}

// The object is whole as long as it is in the table, but its last reference may be gone already.
Ref<const GxFont> CopyLiveDataFontAt(uintptr_t address) noexcept {
    TLiveFonts &fonts = LiveFonts();
    const std::lock_guard lock(fonts.mutex);
    if (fonts.addresses.count(address) == 0) return nullptr;
    const auto *font = reinterpret_cast<const GxFont *>(address);
    return TryRetain(font) ? Ref<const GxFont>::Adopt(font) : nullptr;
}

Ref<const GxFont> GxFontCopyLiveDataFont(std::string_view text, const ValString *postscript_name) noexcept {
    return Guarded([&]() -> Ref<const GxFont> {
        uintptr_t address = 0;
        if (!ParseAddress(text, address)) return nullptr;
        auto font = CopyLiveDataFontAt(address);
        if (!font || !postscript_name) return font;
        return ValEqual(GxFontCopyPostScriptName(font.Get()).Get(), postscript_name) ? font : nullptr;
    });
}

} // namespace vellum
