// SPDX-License-Identifier: MIT
// Handles: how everybody reaches a register. A handle finds the register, making it if it is the
// first, and holds its mutex from its first question to its end, unless it unlocks it before: for one call,
// and never across a call into the other register.
#pragma once

#include "frame/registry/glyphary_imp.hpp"

#include <mutex>

namespace vellum {

class TGlyphary : public TGlypharyProtocol {};

// The forwarding half of both handle classes, over a register of type `Imp`.
template <class Imp>
class TGlypharyHandle : public TGlyphary {
public:
    TGlypharyHandle(const TGlypharyHandle &) = delete;
    TGlypharyHandle &operator=(const TGlypharyHandle &) = delete;

    Ref<const ValArray> CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                              const ValSet *keys,
                                                              VLScope scope) const override {
        return Locked().CopyPropertiesForFontsMatchingRequest(request, keys, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFontMatchingRequest(const ValDictionary *request,
                                                                  const ValSet *keys,
                                                                  VLScope scope) const override {
        return Locked().CopyPropertiesForFontMatchingRequest(request, keys, scope);
    }
    Ref<const ValArray> CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const override {
        return Locked().CopyPropertiesForAllFonts(keys, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                    VLScope scope) const override {
        return Locked().CopyPropertiesForFonts(urls, keys, scope);
    }
    Ref<const ValDictionary> CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                  VLScope scope) const override {
        return Locked().CopyPropertyForFonts(urls, key, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                   VLScope scope) const override {
        return Locked().CopyPropertiesForFont(url, keys, scope);
    }
    Ref<const ValDictionary> ExperimentalDataFunnel(const ValDictionary *query,
                                                    VLScope scope) const override {
        return Locked().ExperimentalDataFunnel(query, scope);
    }
    Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const override {
        return Locked().CopyAvailableFontNames(scope);
    }
    Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const override {
        return Locked().CopyAvailableFontFamilyNames(scope);
    }
    Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const override {
        return Locked().CopyAvailableFontURLs(scope);
    }
    Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                   uint32_t reserved) const override {
        return Locked().CopyFamilyNamesForLanguage(language, scope, reserved);
    }
    Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const override {
        return Locked().CopyFontForName(name, scope);
    }
    Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const override {
        return Locked().CopyFontsForURL(url, scope);
    }
    Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const override {
        return Locked().CopyFontForRequest(request, scope);
    }
    Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const override {
        return Locked().CopyFontsForRequest(request, scope);
    }
    Ref<const ValURL> CopyFontForCharacter(uint32_t character, uint32_t options,
                                           uint32_t reserved) const override {
        return Locked().CopyFontForCharacter(character, options, reserved);
    }
    bool RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                      VLScope scope) const override {
        return Locked().RegisterFont(url, properties, flags, scope);
    }
    bool RegisterFonts(const ValArray *urls, const ValDictionary *properties, VLFontFlags flags,
                       VLScope scope, ErrorArray errors) const override {
        return Locked().RegisterFonts(urls, properties, flags, scope, errors);
    }
    bool UnregisterFont(const ValURL *url, VLScope scope) const override {
        return Locked().UnregisterFont(url, scope);
    }
    bool UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const override {
        return Locked().UnregisterFonts(urls, scope, errors);
    }
    bool EnableFont(const ValURL *url, VLScope scope) const override {
        return Locked().EnableFont(url, scope);
    }
    bool DisableFont(const ValURL *url, VLScope scope) const override {
        return Locked().DisableFont(url, scope);
    }
    bool IsFontRegistered(const ValURL *url) const override { return Locked().IsFontRegistered(url); }
    bool IsFontEnabled(const ValURL *url) const override { return Locked().IsFontEnabled(url); }
    VLScope GetFontScope(const ValURL *url) const override { return Locked().GetFontScope(url); }
    uint32_t GetFontPriority(const ValURL *url) const override { return Locked().GetFontPriority(url); }
    uint32_t GetFontReference(const ValURL *url) const override { return Locked().GetFontReference(url); }
    Ref<const ValURL> CopyFontDirectoryURL(const ValURL *url) const override {
        return Locked().CopyFontDirectoryURL(url);
    }

    // What both handles offer beside the protocol.
    bool RegisterFontDirectory(const ValURL *directory, const ValData *bookmark, uint32_t flags,
                               uint32_t options, VLScope scope) const {
        return Locked().RegisterFontDirectory(directory, bookmark, flags, options, scope, false);
    }
    bool UnregisterFontDirectory(const ValURL *directory, VLScope scope) const {
        return Locked().UnregisterFontDirectory(directory, scope);
    }
    Ref<const ValArray> EnableFonts(const ValArray *urls, VLScope scope) const {
        return Locked().EnableFonts(urls, scope);
    }
    Ref<const ValArray> DisableFonts(const ValArray *urls, VLScope scope) const {
        return Locked().DisableFonts(urls, scope);
    }

protected:
    TGlypharyHandle() noexcept = default;

    // The register, locked. Registers live until the process ends.
    const Imp &Locked() const {
        if (!registry_) Lock();
        return *registry_;
    }

    // Unlocks what is locked and locks the register that is there now: an operation may have put another
    // in its place.
    void Lock() const {
        Unlock();
        for (;;) {
            const Imp &registry = Current();
            lock_ = registry.Lock();
            if (&registry == &Current()) {
                registry_ = &registry;
                return;
            }
            lock_ = {}; // meanwhile another has taken its place
        }
    }

    // The next question locks it again.
    void Unlock() const {
        registry_ = nullptr;
        lock_ = {};
    }

private:
    // The register that is there now, made if there is none.
    virtual const Imp &Current() const = 0;

    mutable const Imp *registry_ = nullptr; // locked by lock_
    mutable std::unique_lock<std::mutex> lock_;
};

} // namespace vellum
