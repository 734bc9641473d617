// SPDX-License-Identifier: MIT
// TGlobalGlyphary: the handle of the shared register.
//
// It asks the calling thread's cache before the register, and only locks the register when the cache does
// not know: a cached answer never waits for the font server. Where the server has no fonts to list, a
// register in this process takes its place for good.
#pragma once

#include "frame/handles/glyphary.hpp"

namespace vellum {

class TGlobalGlyphary final : public TGlypharyHandle<TGlypharyImp> {
public:
    // Makes the register if it is not there yet. Throws std::bad_alloc when it could not be made.
    TGlobalGlyphary();

    // ---- cached, under one operation code: what is asked by a name, by a URL and by a request are values
    // of different kinds; the two that take a request share their answers, and pass over each other's ----
    Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const override;
    Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const override;

    // ---- where nothing is listed, the process's own fonts of the system are, from then on ----
    Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const override;
    Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                   uint32_t reserved) const override;

    Ref<VLMessagePort> CreateFontProviderPort(const FontProviderBlock &block) const {
        return Locked().CreateFontProviderPort(block);
    }

    // The register is unlocked while the ports are opened: a provider may be one that takes nobody in.
    Ref<const ValArray> CopyRemoteFontProviderPorts() const;

    // True once the register exists.
    static bool IsCreated() noexcept;

    // True when VELLUM_IGNORE_SERVER, "1" or "YES" and nothing else, keeps this process away from
    // the font server.
    static bool IsServerIgnored() noexcept;

private:
    const TGlypharyImp &Current() const override;

    template <class List>
    Ref<const ValArray> ListOrFallBack(List list) const;
};

} // namespace vellum
