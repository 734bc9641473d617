// SPDX-License-Identifier: MIT
// TGlobalGlypharyImp: everything that asks the server.
#include "ipc/client/conversation.hpp"
#include "ipc/client/font_provider.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"

namespace vellum {

namespace {

Ref<const ValDictionary> RequestForURL(const ValURL *url) {
    TValMutableDict request;
    request.Set(kVLFontPropertyURL, url);
    return request.Publish();
}

// Without what are no properties of a font. An honest server's answer is kept as it is.
Ref<const ValDictionary> PropertiesByFont(Ref<const ValDictionary> answer) {
    const TValDict entries(std::move(answer));
    const auto is_one = [](const void *font, const void *properties) {
        return Cast<ValURL>(font) && Cast<ValDictionary>(properties);
    };
    size_t count = 0;
    for (const auto &[font, properties] : entries) count += is_one(font, properties);
    if (count == entries.Count()) return entries.Ref();
    TValMutableDict kept;
    for (const auto &[font, properties] : entries)
        if (is_one(font, properties)) kept.Set(font, properties);
    return kept.Publish();
}

} // namespace

Ref<const ValArray> TGlobalGlypharyImp::CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                                              const ValSet *keys,
                                                                              VLScope scope) const {
    const auto asked = Flattened(request), wanted = Flattened(keys);
    if (!asked || !wanted) return nullptr;
    return AskForList<ValDictionary>("CopyPropertiesForFontsMatchingRequest",
                                     [&](PortName port, ReplyMemory &reply) {
                                         return VLSendCopyPropertiesForFontsMatchingRequest(
                                             port, *asked, *wanted, scope & kScopeOnTheWire, reply);
                                     });
}

Ref<const ValDictionary>
TGlobalGlypharyImp::CopyPropertiesForFontMatchingRequest(const ValDictionary *request, const ValSet *keys,
                                                         VLScope scope) const {
    const auto asked = Flattened(request), wanted = Flattened(keys);
    if (!asked || !wanted) return nullptr;
    return Ask<ValDictionary>("CopyPropertiesForFontMatchingRequest",
                              [&](PortName port, ReplyMemory &reply) {
                                  return VLSendCopyPropertiesForFontMatchingRequest(
                                      port, *asked, *wanted, scope & kScopeOnTheWire, reply);
                              });
}

Ref<const ValArray> TGlobalGlypharyImp::CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const {
    const auto wanted = Flattened(keys);
    if (!wanted) return nullptr;
    return AskForList<ValDictionary>("CopyPropertiesForAllFonts", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyPropertiesForAllFonts(port, *wanted, scope & kScopeOnTheWire, reply);
    });
}

Ref<const ValDictionary> TGlobalGlypharyImp::CopyPropertiesForFonts(const ValArray *urls,
                                                                    const ValSet *keys, VLScope) const {
    const auto fonts = Flattened(urls), wanted = Flattened(keys);
    if (!fonts || !wanted) return nullptr;
    return PropertiesByFont(
        Ask<ValDictionary>("CopyPropertiesForFonts", [&](PortName port, ReplyMemory &reply) {
            return VLSendCopyPropertiesForFonts(port, *fonts, *wanted, reply);
        }));
}

Ref<const ValDictionary> TGlobalGlypharyImp::CopyPropertyForFonts(const ValArray *urls,
                                                                  const ValString *key, VLScope) const {
    const auto fonts = Flattened(urls);
    const std::string_view name = Text(key);
    if (!fonts || name.size() >= kLongestName) return nullptr;
    return Ask<ValDictionary>("CopyPropertyForFonts", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyPropertyForFonts(port, *fonts, name, reply);
    });
}

Ref<const ValDictionary> TGlobalGlypharyImp::CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                                   VLScope) const {
    const auto text = TextOnTheWire(url);
    const auto wanted = Flattened(keys);
    if (!text || !wanted) return nullptr;
    return Ask<ValDictionary>("CopyPropertiesForFont", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyPropertiesForFont(port, *text, *wanted, reply);
    });
}

Ref<const ValDictionary> TGlobalGlypharyImp::ExperimentalDataFunnel(const ValDictionary *query,
                                                                    VLScope scope) const {
    const auto asked = Flattened(query);
    if (!asked) return nullptr;
    return Ask<ValDictionary>("ExperimentalDataFunnel", [&](PortName port, ReplyMemory &reply) {
        return VLSendExperimentalDataFunnel(port, *asked, scope & kScopeOnTheWire, reply);
    });
}

Ref<const ValArray> TGlobalGlypharyImp::CopyAvailableFontNames(VLScope scope) const {
    return AskForList<ValString>("CopyAvailableFontNames", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyAvailableFontNames(port, scope & kScopeOnTheWire, reply);
    });
}

Ref<const ValArray> TGlobalGlypharyImp::CopyAvailableFontFamilyNames(VLScope scope) const {
    return AskForList<ValString>("CopyAvailableFontFamilyNames", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyAvailableFontFamilyNames(port, scope & kScopeOnTheWire, reply);
    });
}

Ref<const ValArray> TGlobalGlypharyImp::CopyAvailableFontURLs(VLScope scope) const {
    return AskForList<ValURL>("CopyAvailableFontURLs", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyAvailableFonts(port, scope & kScopeOnTheWire, reply);
    });
}

Ref<const ValArray> TGlobalGlypharyImp::CopyFamilyNamesForLanguage(const ValString *language,
                                                                   VLScope options,
                                                                   uint32_t reserved) const {
    const std::string_view name = Text(language);
    if (name.size() >= kLongestName) return nullptr;
    return AskForList<ValString>("CopyFamilyNamesForLanguage", [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyFamilyNamesForLanguage(port, name, options & kScopeOnTheWire, reserved, reply);
    });
}

Ref<const ValURL> TGlobalGlypharyImp::CopyFontForName(const ValString *name, VLScope) const {
    size_t length = 0;
    const char *text = ValStringGetUTF8(name, &length); // null for what is no valid Unicode
    if (!text || length >= kLongestName) return nullptr;
    return AskForURL("CopyFontForName", [&](PortName port, std::string &url) {
        return VLSendCopyFontWithName(port, {text, length}, kScopeOfSharedLookups, url);
    });
}

Ref<const ValURL> TGlobalGlypharyImp::CopyFontForCharacter(uint32_t character, uint32_t options,
                                                           uint32_t reserved) const {
    return AskForURL("CopyFontForCharacter", [&](PortName port, std::string &url) {
        return VLSendCopyFontForCharacter(port, character, options & kScopeOnTheWire, reserved, url);
    });
}

// Null for no fonts.
Ref<const ValArray> TGlobalGlypharyImp::AskForFonts(const char *operation,
                                                    const ValDictionary *request) const {
    const auto asked = Flattened(request);
    if (!asked) return nullptr;
    auto fonts = AskForList<ValURL>(operation, [&](PortName port, ReplyMemory &reply) {
        return VLSendCopyFontsMatchingRequest(port, kScopeOfSharedLookups, *asked, reply);
    });
    return ValArrayGetCount(fonts.Get()) > 0 ? fonts : nullptr;
}

Ref<const ValArray> TGlobalGlypharyImp::CopyFontsForURL(const ValURL *url, VLScope) const {
    return AskForFonts("CopyFontsForURL", RequestForURL(url).Get());
}

Ref<const ValURL> TGlobalGlypharyImp::CopyFontForRequest(const ValDictionary *request, VLScope) const {
    const auto fonts = AskForFonts("CopyFontForRequest", request);
    return Retain(Cast<ValURL>(ValArrayGetValue(fonts.Get(), 0)));
}

// The log has each failure of this one twice; deliberate, as who counts them expects it.
Ref<const ValArray> TGlobalGlypharyImp::CopyFontsForRequest(const ValDictionary *request, VLScope) const {
    const auto asked = Flattened(request);
    if (!asked) return nullptr;
    constexpr char kOperation[] = "CopyFontsForRequest";
    auto fonts = AskForList<ValURL>(kOperation, [&](PortName port, ReplyMemory &reply) {
        const MachCode code = VLSendCopyFontsMatchingRequest(port, kScopeOfSharedLookups, *asked, reply);
        if (code) LogFailure(kOperation, code);
        return code;
    });
    return ValArrayGetCount(fonts.Get()) > 0 ? fonts : nullptr;
}

// ---- providers ----

Ref<VLMessagePort> TGlobalGlypharyImp::CreateFontProviderPort(const FontProviderBlock &block) const {
    return TLocalFontProvider(block).CreatePort();
}

Ref<const ValArray> TGlobalGlypharyImp::CopyRemoteFontProviders() const {
    auto providers =
        AskForList<ValDictionary>("CopyRemoteFontProviderPorts", [&](PortName port, ReplyMemory &reply) {
            return VLSendGetFontProviders(port, reply);
        });
    return providers ? providers : TValMutableArray().Publish();
}

// ---- questions about one font, answered from copies of its properties ----

Ref<const void> TGlobalGlypharyImp::AskForProperty(const ValURL *url, const ValString *key) const {
    const auto values = CopyPropertyForFonts(OneElement(url).Get(), key, kVLScopeAll);
    const TValURL absolute = TValURL(Retain(url)).Absolute();
    return Ref<const void>::Retain(ValDictionaryGetValue(values.Get(), absolute.Get()));
}

bool TGlobalGlypharyImp::IsFontRegistered(const ValURL *url) const {
    return static_cast<bool>(AskForProperty(url, kVLFontPropertyURL));
}

bool TGlobalGlypharyImp::IsFontEnabled(const ValURL *url) const {
    return ReadSInt32(AskForProperty(url, kVLFontPropertyEnabled).Get()) != 0;
}

uint32_t TGlobalGlypharyImp::GetFontPriority(const ValURL *url) const {
    return static_cast<uint32_t>(ReadSInt32(AskForProperty(url, kVLFontPropertyPriority).Get()));
}

uint32_t TGlobalGlypharyImp::GetFontReference(const ValURL *url) const {
    return static_cast<uint32_t>(ReadSInt32(AskForProperty(url, kVLFontPropertyFontRef).Get()));
}

Ref<const ValURL> TGlobalGlypharyImp::CopyFontDirectoryURL(const ValURL *url) const {
    return Retain(Cast<ValURL>(AskForProperty(url, kVLFontPropertyFontRef).Get()));
}

VLScope TGlobalGlypharyImp::GetFontScope(const ValURL *url) const {
    const auto text = TextOnTheWire(url);
    uint32_t scope = 0;
    if (text)
        Converse("GetFontScope", [&](PortName port) { return VLSendGetFontScope(port, *text, scope); });
    return scope;
}

} // namespace vellum
