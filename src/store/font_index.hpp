// SPDX-License-Identifier: MIT
// TFontIndex: from a key, a path or a name, to the references of the faces that carry it.
//
// A key with one face stands in the direct table, one with more in the set table, never in both:
// most names belong to one face and need no set. A key that came to have a set keeps it, even when
// one face is left.
#pragma once

#include "store/font_reference.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

#include <vellum/vellum.h>

#include <optional>
#include <vector>

namespace vellum {

class TFontIndex {
public:
    virtual ~TFontIndex() = default;

    // Enters or removes one face under one key; both do nothing where there is nothing to do.
    virtual void AddFontForKey(FontReference font, const void *key);
    virtual void RemoveFontForKey(FontReference font, const void *key);

    // The faces under a key, or null. A key's set is handed out itself: it shows later changes.
    virtual Ref<const ValSet> CopyFontsForKey(const void *key) const;

    // The same, copied: nobody needs a set for it.
    virtual std::vector<FontReference> FontsForKey(const void *key) const;

    // Every key, those with one face first.
    virtual Ref<const ValArray> CopyAllKeys() const;

    // The property whose values are this index's keys.
    virtual const ValString *GetIndexedProperty() const = 0;

    // Removes a face from under every key. This is slow, and needs no memory.
    virtual void RemoveFontForAllKeys(FontReference font) noexcept;

    virtual const ValCallbacks &GetFontSetCallBacks() const noexcept { return kValRawCallbacks; }
    virtual const ValCallbacks &GetIndexDictKeyCallBacks() const noexcept { return kValValueCallbacks; }
    virtual const ValCallbacks &GetIndexDictValueCallBacks() const noexcept { return kValValueCallbacks; }
    virtual const ValCallbacks &GetIndexKeySetCallBacks() const noexcept {
        return GetIndexDictKeyCallBacks();
    }
    virtual const ValCallbacks &GetIndexKeyArrayCallBacks() const noexcept { return kValValueCallbacks; }

    // What each table holds for a key: the face, or 0; the set (borrowed), or null.
    virtual FontReference GetFontForKeyInternal(const void *key) const noexcept;
    virtual ValSet *GetFontsSetForKeyInternal(const void *key) const noexcept;

protected:
    bool IsEmpty() const noexcept;

private:
    void Remove(FontReference font, const void *key) noexcept;

    // Made by the first insertion that needs them.
    TValMutableDict &Direct();
    TValMutableDict &Sets();

    std::optional<TValMutableDict> direct_; // key to FontReference, a plain integer
    std::optional<TValMutableDict> sets_;   // key to mutable ValSet of FontReference
};

// The references in a set, in its order; none in null.
std::vector<FontReference> ReferencesIn(const ValSet *fonts);

} // namespace vellum
