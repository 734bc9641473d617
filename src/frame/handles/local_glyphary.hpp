// SPDX-License-Identifier: MIT
// TLocalGlyphary: the handle of the process's own register.
#pragma once

#include "frame/handles/glyphary.hpp"
#include "store/local_glyphary_imp.hpp"

namespace vellum {

class TLocalGlyphary final : public TGlypharyHandle<TLocalGlypharyImp> {
public:
    // Makes the register if it is not there yet, and locks it. Throws std::bad_alloc when it could
    // not be made.
    TLocalGlyphary();

    // Fonts in memory.
    bool RegisterDataFont(const ValData *data, uint32_t legacy_container, VLFontFlags flags,
                          VLScope scope) const {
        return Locked().RegisterDataFont(data, legacy_container, flags, scope);
    }
    bool UnregisterDataFont(const ValData *data, VLScope scope) const {
        return Locked().UnregisterDataFont(data, scope);
    }
    const GxFont *GetDataFont(const ValData *data, uint32_t *legacy_container) const {
        return Locked().GetDataFont(data, legacy_container);
    }
    uint32_t GetDataFontFountFont(const ValURL *url) const { return Locked().GetDataFontFountFont(url); }
    Ref<const ValURL> CopyURLForDataFont(const ValData *data, uint32_t legacy_font) const {
        return Locked().CopyURLForDataFont(data, legacy_font);
    }

    // True once the register exists.
    static bool IsCreated() noexcept;

private:
    const TLocalGlypharyImp &Current() const override;
};

} // namespace vellum
