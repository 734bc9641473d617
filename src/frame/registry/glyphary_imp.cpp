// SPDX-License-Identifier: MIT
// The operations that every register shares.
#include "frame/registry/glyphary_imp.hpp"

#include "values/val_array.hpp"

namespace vellum {

namespace {

// The URLs of an array for which `change` succeeds; null for none. One for which memory does not suffice
// leaves the others alone, and there is room for all from the beginning: what changed is always told.
template <class Change>
Ref<const ValArray> CollectChanged(const ValArray *urls, Change change) {
    TValMutableArray changed(kValValueCallbacks, ValArrayGetCount(urls));
    for (const void *item : Elements(urls)) {
        const auto *url = Cast<ValURL>(item);
        try {
            if (url && change(url)) changed.Append(url);
        } catch (...) { // nothing changed
        }
    }
    return changed.IsEmpty() ? nullptr : changed.Publish();
}

} // namespace

bool TGlypharyImp::RegisterFontDirectory(const ValURL *, const ValData *, uint32_t, uint32_t, VLScope,
                                         bool) const {
    return false;
}

bool TGlypharyImp::UnregisterFontDirectory(const ValURL *, VLScope) const {
    return false;
}

Ref<const ValArray> TGlypharyImp::EnableFonts(const ValArray *urls, VLScope scope) const {
    return CollectChanged(urls, [&](const ValURL *url) { return EnableFont(url, scope); });
}

Ref<const ValArray> TGlypharyImp::DisableFonts(const ValArray *urls, VLScope scope) const {
    return CollectChanged(urls, [&](const ValURL *url) { return DisableFont(url, scope); });
}

Ref<VLMessagePort> TGlypharyImp::CreateFontProviderPort(const FontProviderBlock &) const {
    return nullptr;
}

Ref<const ValArray> TGlypharyImp::CopyRemoteFontProviders() const {
    return nullptr;
}

} // namespace vellum
