// SPDX-License-Identifier: MIT
// What a register knows of one URL.
#include "store/local_glyphary_imp.hpp"

namespace vellum {

bool TLocalGlypharyImp::IsFontRegistered(const ValURL *url) const {
    return !ReferencesForURL(kPathIndex, url).empty();
}

bool TLocalGlypharyImp::IsFontEnabled(const ValURL *url) const {
    const FontReference first = GetFontReference(url);
    return first != 0 && enabled_.Find(first);
}

VLScope TLocalGlypharyImp::GetFontScope(const ValURL *url) const {
    return IsFontRegistered(url) ? kVLScopeProcess : 0;
}

uint32_t TLocalGlypharyImp::GetFontPriority(const ValURL *url) const {
    return IsFontRegistered(url) ? kProcessPriority : 0;
}

uint32_t TLocalGlypharyImp::GetFontReference(const ValURL *url) const {
    const auto references = ReferencesForURL(kPathIndex, url);
    return references.empty() ? 0 : references.front();
}

// Only the font server knows from which directory a font came.
Ref<const ValURL> TLocalGlypharyImp::CopyFontDirectoryURL(const ValURL *) const {
    return nullptr;
}

} // namespace vellum
