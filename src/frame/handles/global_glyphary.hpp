// SPDX-License-Identifier: MIT
// TGlobalGlyphary: the handle of the shared register.
#pragma once

#include "frame/handles/glyphary.hpp"

namespace vellum {

class TGlobalGlyphary final : public TGlypharyHandle<TGlypharyImp> {
public:
    // Makes the register if it is not there yet, and locks it. Throws std::bad_alloc when it could
    // not be made.
    TGlobalGlyphary();

    Ref<VLMessagePort> CreateFontProviderPort(const FontProviderBlock &block) const {
        return registry_->CreateFontProviderPort(block);
    }
    Ref<const ValArray> CopyRemoteFontProviderPorts() const {
        return registry_->CopyRemoteFontProviderPorts();
    }

    // True once the register exists.
    static bool IsCreated() noexcept;

    // True when VELLUM_IGNORE_SERVER, "1" or "YES" and nothing else, keeps this process away from
    // the font server.
    static bool IsServerIgnored() noexcept;

private:
    static const TGlypharyImp &Registry();
};

} // namespace vellum
