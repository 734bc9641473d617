// SPDX-License-Identifier: MIT
#include "describe/gx_font_wrapper.hpp"

#include "platform/process/passing_failures.hpp"
#include "platform/val/url.hpp"
#include "values/val_array.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

#include <cinttypes>
#include <cstdio>
#include <string>

namespace vellum {

namespace {

constexpr std::string_view kInMemoryPrefix = "inMemory_";

Ref<const GxFont> FirstFont(const Ref<const ValArray> &fonts) {
    return Retain(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), 0)));
}

// What follows the prefix in an in-memory URL's host; empty for any other URL.
std::string InMemoryAddress(const ValURL *url) {
    const TValStr host(Adopt(ValURLCopyHost(url)));
    if (!host.View().starts_with(kInMemoryPrefix)) return {};
    return std::string(host.View().substr(kInMemoryPrefix.size()));
}

// The value of the fragment's "postscript-name" parameter; null without one.
Ref<const ValString> FragmentPostScriptName(const ValURL *url) {
    const TValStr fragment(Adopt(ValURLCopyFragment(url)));
    const std::string_view key = "postscript-name=";
    if (!fragment.View().starts_with(key)) return nullptr;
    const std::string_view value = fragment.View().substr(key.size());
    const TValStr escaped(value.substr(0, value.find(';')));
    return Adopt(ValStringCopyRemovingPercentEscapes(escaped.Get()));
}

// The live data font that the URL names. An address that is alive again under another name does
// not count: what the URL named is gone.
Ref<const GxFont> LiveDataFont(const ValURL *url) {
    const std::string address = InMemoryAddress(url);
    if (address.empty()) return nullptr;
    const auto name = FragmentPostScriptName(url);
    return GxFontCopyLiveDataFont(address, name.Get());
}

Ref<const ValURL> MakeInMemoryURL(const GxFont *font, const ValString *postscript_name) {
    char address[2 + 2 * sizeof(void *) + 1];
    std::snprintf(address, sizeof address, "0x%" PRIxPTR, reinterpret_cast<uintptr_t>(font));
    const TValStr reserved("#%;=");
    const TValStr name(Adopt(ValStringCopyAddingPercentEscapes(postscript_name, reserved.Get())));
    const TValStr text("file://" + std::string(kInMemoryPrefix) + address +
                       "#postscript-name=" + std::string(name.View()));
    return Adopt(ValURLCreateWithString(text.Get(), nullptr));
}

} // namespace

TGxFont::TGxFont(const ValData *data) : font_(GxFontCreateWithData(data)), in_memory_(true) {}

TGxFont::TGxFont(const ValURL *url, bool known_in_memory) {
    if (!known_in_memory) font_ = FirstFont(GxFontCreateFontsWithURL(url));
    if (font_) return;
    font_ = LiveDataFont(url);
    in_memory_ = static_cast<bool>(font_);
}

Ref<const ValURL> TGxFont::CopyURL() {
    if (!in_memory_) {
        const uint32_t failures = tPassingFailures;
        auto url = GxFontCopyURL(font_.Get());
        // A font of a file whose URL is not to be had for want of memory is none in memory.
        if (url || failures != tPassingFailures) return url;
    }
    const auto name = GxFontCopyPostScriptName(font_.Get());
    if (!name) return nullptr;
    auto url = MakeInMemoryURL(font_.Get(), name.Get());
    if (url) in_memory_ = true;
    return url;
}

bool TGxFont::IsInMemoryURL(const ValURL *url) {
    return url && HostOfAuthority(Parts(*url).authority.value_or("")).starts_with(kInMemoryPrefix);
}

Ref<const ValArray> CreateFontsFromURL(const ValURL *url) {
    if (auto fonts = GxFontCreateFontsWithURL(url); ValArrayGetCount(fonts.Get()) > 0) return fonts;
    const TGxFont in_memory(url, true);
    if (!in_memory.Font()) return nullptr;
    TValMutableArray fonts;
    fonts.Append(in_memory.Font().Get());
    return fonts.Publish();
}

Ref<const GxFont> CreateFontFromURL(const ValURL *url) {
    return FirstFont(CreateFontsFromURL(url));
}

} // namespace vellum
