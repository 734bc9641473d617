// SPDX-License-Identifier: MIT
// Exported: finding fonts, in the registers and beyond.
#include "frame/exports/lookups.hpp"

#include "autoactivation/auto_activation_manager.hpp"
#include "describe/basic_font_entity.hpp"
#include "frame/exports/arguments.hpp"
#include "frame/exports/ask.hpp"
#include "frame/exports/guard_lookup.hpp"
#include "frame/exports/merge_answers.hpp"
#include "ipc/client/character_reject_cache.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "platform/process/passing_failures.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

using namespace vellum;

namespace {

constexpr VLActivationOptions kActivatesNothing =
    kVLActivationNotFromProviders | kVLActivationNotFromSearch;

// Fonts are activated for the process alone, and only where it asked for its own.
bool MayActivate(VLScope scope, VLActivationOptions activation) noexcept {
    return AsksProcess(scope) && !(activation & kActivatesNothing);
}

TAutoActivationManager ActivationFor(const ValDictionary *request, VLActivationOptions activation) {
    return {request, (activation & kVLActivationNotFromProviders) != 0,
            (activation & kVLActivationNotFromSearch) != 0};
}

// Fonts that were activated are told of here, once they can be had.
void TellOfActivated(const ValArray *urls) {
    PostNotification(kVLScopeProcess, kAvailableFontURLsAddedKey, urls);
}

Ref<const ValURL> ActivateFont(const ValDictionary *request, VLActivationOptions activation) {
    auto url = ActivationFor(request, activation).CopyAutoActivatedFont(kVLScopeProcess);
    if (url) TellOfActivated(OneElement(url.Get()).Get());
    return url;
}

// What is said of a font of which no more is known.
Ref<const ValDictionary> URLAlone(const ValURL *url) {
    TValMutableDict properties;
    properties.Set(kVLFontPropertyURL, url);
    return properties.Publish();
}

// What the process's register says of fonts that were activated, in their order. Where it knows none of
// them, because the font server has them, their URLs.
Ref<const ValArray> ActivateFonts(const ValDictionary *request, VLActivationOptions activation,
                                  const ValSet *keys) {
    const auto urls = ActivationFor(request, activation).CopyAutoActivatedFonts(kVLScopeProcess);
    if (ValArrayGetCount(urls.Get()) == 0) return nullptr;
    TellOfActivated(urls.Get());
    const auto properties = ProcessRegister().CopyPropertiesForFonts(urls.Get(), keys, kVLScopeProcess);
    TValMutableArray fonts;
    for (const void *element : Elements(urls.Get())) {
        const auto *url = Cast<ValURL>(element);
        const void *known = ValDictionaryGetValue(properties.Get(), url);
        if (known)
            fonts.Append(known);
        else if (!properties)
            fonts.Append(URLAlone(url).Get());
    }
    return fonts.IsEmpty() ? nullptr : fonts.Publish();
}

Ref<const ValDictionary> RequestForName(const ValString *name) {
    TValMutableDict request;
    request.Set(kVLFontPropertyName, name);
    return request.Publish();
}

} // namespace

Ref<const ValArray> vellum::FindFontsWithProperties(const ValDictionary *request, VLScope scope,
                                                    VLActivationOptions activation) {
    const ValSet *keys = TBasicFontEntity::GetBasicProperties();
    const auto ask = [&](const TGlypharyProtocol &registry) {
        return registry.CopyPropertiesForFontsMatchingRequest(request, keys, scope);
    };
    auto own = AsksProcess(scope) ? AskProcess(ask) : nullptr;
    const auto shared = AsksShared(scope) ? AskShared(ask) : nullptr;
    if (!own && !shared && MayActivate(scope, activation)) own = ActivateFonts(request, activation, keys);
    return CopyURLs(MergeAnswers(own.Get(), shared.Get(), request).Get());
}

const ValURL *VLCopyFontWithName(const ValString *name, VLScope scope,
                                 VLActivationOptions activation) noexcept {
    if (!IsArgument<ValString>(name)) return nullptr;
    return GuardLookup("fontWithName", name, scope, [&]() -> Ref<const ValURL> {
        if (AsksProcess(scope)) {
            auto own = AskProcess([&](const TGlypharyProtocol &registry) {
                return registry.CopyFontForName(name, kVLScopeProcess);
            });
            if (own) return own;
        }
        if (AsksShared(scope)) {
            auto shared = AskShared(
                [&](const TGlypharyProtocol &registry) { return registry.CopyFontForName(name, scope); });
            if (shared) return shared;
        }
        if (!MayActivate(scope, activation)) return nullptr;
        return ActivateFont(RequestForName(name).Get(), activation);
    });
}

const ValURL *VLCopyFontWithProperties(const ValDictionary *request, VLScope scope,
                                       VLActivationOptions activation) noexcept {
    if (!IsArgument<ValDictionary>(request)) return nullptr;
    return GuardLookup("fontWithProperties", request, scope, [&]() -> Ref<const ValURL> {
        auto found = AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontForRequest(request, scope);
        });
        if (found || !MayActivate(scope, activation)) return found;
        return ActivateFont(request, activation);
    });
}

const ValArray *VLCopyFontsWithProperties(const ValDictionary *request, VLScope scope,
                                          VLActivationOptions activation) noexcept {
    if (!IsArgument<ValDictionary>(request)) return nullptr;
    return GuardLookup("fontsWithProperties", request, scope,
                       [&] { return FindFontsWithProperties(request, scope, activation); });
}

// That a character is given up even where no register was asked is deliberate.
const ValURL *VLCopyFontForCharacter(uint32_t character, VLScope scope, uint32_t reserved) noexcept {
    const auto asked = IsLookupTraced() ? Adopt(ValNumberCreateSInt64(character)) : nullptr;
    return GuardLookup("fontForCharacter", asked.Get(), scope, [&]() -> Ref<const ValURL> {
        const TCharacterRejectCache rejects;
        if (rejects.Contains(character)) {
            LookupTrace::Tell("remembered", [](TValMutableDict &) {});
            return nullptr;
        }
        const uint32_t failures = tPassingFailures;
        auto found = AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontForCharacter(character, scope, reserved);
        });
        const bool is_whole = failures == tPassingFailures; // no font was unreadable for the moment
        if (!found && is_whole) rejects.Add(character);
        return found;
    });
}
