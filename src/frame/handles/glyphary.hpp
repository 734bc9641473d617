// SPDX-License-Identifier: MIT
// Handles: how everybody reaches a register. A handle finds the register, making it if it is the
// first, and holds its mutex for as long as it lives: for one call, and never across a call into
// the other register.
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
        return registry_->CopyPropertiesForFontsMatchingRequest(request, keys, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFontMatchingRequest(const ValDictionary *request,
                                                                  const ValSet *keys,
                                                                  VLScope scope) const override {
        return registry_->CopyPropertiesForFontMatchingRequest(request, keys, scope);
    }
    Ref<const ValArray> CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const override {
        return registry_->CopyPropertiesForAllFonts(keys, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                    VLScope scope) const override {
        return registry_->CopyPropertiesForFonts(urls, keys, scope);
    }
    Ref<const ValDictionary> CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                  VLScope scope) const override {
        return registry_->CopyPropertyForFonts(urls, key, scope);
    }
    Ref<const ValDictionary> CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                   VLScope scope) const override {
        return registry_->CopyPropertiesForFont(url, keys, scope);
    }
    Ref<const ValDictionary> ExperimentalDataFunnel(const ValDictionary *query,
                                                    VLScope scope) const override {
        return registry_->ExperimentalDataFunnel(query, scope);
    }
    Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const override {
        return registry_->CopyAvailableFontNames(scope);
    }
    Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const override {
        return registry_->CopyAvailableFontFamilyNames(scope);
    }
    Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const override {
        return registry_->CopyAvailableFontURLs(scope);
    }
    Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                   uint32_t reserved) const override {
        return registry_->CopyFamilyNamesForLanguage(language, scope, reserved);
    }
    Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const override {
        return registry_->CopyFontForName(name, scope);
    }
    Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const override {
        return registry_->CopyFontsForURL(url, scope);
    }
    Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const override {
        return registry_->CopyFontForRequest(request, scope);
    }
    Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const override {
        return registry_->CopyFontsForRequest(request, scope);
    }
    Ref<const ValURL> CopyFontForCharacter(uint32_t character, uint32_t options,
                                           uint32_t reserved) const override {
        return registry_->CopyFontForCharacter(character, options, reserved);
    }
    bool RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                      VLScope scope) const override {
        return registry_->RegisterFont(url, properties, flags, scope);
    }
    bool RegisterFonts(const ValArray *urls, const ValDictionary *properties, VLFontFlags flags,
                       VLScope scope, ErrorArray errors) const override {
        return registry_->RegisterFonts(urls, properties, flags, scope, errors);
    }
    bool UnregisterFont(const ValURL *url, VLScope scope) const override {
        return registry_->UnregisterFont(url, scope);
    }
    bool UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const override {
        return registry_->UnregisterFonts(urls, scope, errors);
    }
    bool EnableFont(const ValURL *url, VLScope scope) const override {
        return registry_->EnableFont(url, scope);
    }
    bool DisableFont(const ValURL *url, VLScope scope) const override {
        return registry_->DisableFont(url, scope);
    }
    bool IsFontRegistered(const ValURL *url) const override { return registry_->IsFontRegistered(url); }
    bool IsFontEnabled(const ValURL *url) const override { return registry_->IsFontEnabled(url); }
    VLScope GetFontScope(const ValURL *url) const override { return registry_->GetFontScope(url); }
    uint32_t GetFontPriority(const ValURL *url) const override { return registry_->GetFontPriority(url); }
    uint32_t GetFontReference(const ValURL *url) const override { return registry_->GetFontReference(url); }
    Ref<const ValURL> CopyFontDirectoryURL(const ValURL *url) const override {
        return registry_->CopyFontDirectoryURL(url);
    }

    // What both handles offer beside the protocol.
    bool RegisterFontDirectory(const ValURL *directory, const ValData *bookmark, uint32_t flags,
                               uint32_t options, VLScope scope) const {
        return registry_->RegisterFontDirectory(directory, bookmark, flags, options, scope, false);
    }
    bool UnregisterFontDirectory(const ValURL *directory, VLScope scope) const {
        return registry_->UnregisterFontDirectory(directory, scope);
    }
    Ref<const ValArray> EnableFonts(const ValArray *urls, VLScope scope) const {
        return registry_->EnableFonts(urls, scope);
    }
    Ref<const ValArray> DisableFonts(const ValArray *urls, VLScope scope) const {
        return registry_->DisableFonts(urls, scope);
    }

protected:
    // Both registers live until the process ends.
    explicit TGlypharyHandle(const Imp &registry) : registry_(&registry), lock_(registry.Mutex()) {}

    const Imp *const registry_;

private:
    const std::lock_guard<std::mutex> lock_;
};

} // namespace vellum
