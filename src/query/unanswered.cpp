// SPDX-License-Identifier: MIT
// Questions that a register in a process does not answer yet: requests, lookups, languages. They
// are listed as such in docs/architecture.md and answer null, which means "none".
#include "store/local_glyphary_imp.hpp"

namespace vellum {

Ref<const ValArray> TLocalGlypharyImp::CopyPropertiesForFontsMatchingRequest(const ValDictionary *,
                                                                             const ValSet *,
                                                                             VLScope) const {
    return nullptr;
}

Ref<const ValDictionary> TLocalGlypharyImp::CopyPropertiesForFontMatchingRequest(const ValDictionary *,
                                                                                 const ValSet *,
                                                                                 VLScope) const {
    return nullptr;
}

Ref<const ValArray> TLocalGlypharyImp::CopyFamilyNamesForLanguage(const ValString *, VLScope,
                                                                  uint32_t) const {
    return nullptr;
}

Ref<const ValURL> TLocalGlypharyImp::CopyFontForName(const ValString *, VLScope) const {
    return nullptr;
}

Ref<const ValArray> TLocalGlypharyImp::CopyFontsForURL(const ValURL *, VLScope) const {
    return nullptr;
}

Ref<const ValURL> TLocalGlypharyImp::CopyFontForRequest(const ValDictionary *, VLScope) const {
    return nullptr;
}

Ref<const ValArray> TLocalGlypharyImp::CopyFontsForRequest(const ValDictionary *, VLScope) const {
    return nullptr;
}

Ref<const ValURL> TLocalGlypharyImp::CopyFontForCharacter(uint32_t, uint32_t, uint32_t) const {
    return nullptr;
}

Ref<const ValSet> TLocalGlypharyImp::SearchIndexedFontsForName(uint16_t, const void *) const {
    return nullptr;
}

// The process's register takes no part in the summary, by design: only the font server reads the
// query.
Ref<const ValDictionary> TLocalGlypharyImp::ExperimentalDataFunnel(const ValDictionary *, VLScope) const {
    return nullptr;
}

} // namespace vellum
