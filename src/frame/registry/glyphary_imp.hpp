// SPDX-License-Identifier: MIT
// TGlypharyImp: what stands behind the handles, a register with its mutex.
//
// The handles lock the mutex for as long as they live; every operation below is called with it held,
// unless the register is not yet published. What the operations change is guarded by it.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

#include <memory>
#include <mutex>

namespace vellum {

class TFontIndex;

// Answers a font request in a provider; see VLCreateFontProviderLocalPort. The context is released with the
// last copy.
struct FontProviderBlock {
    VLFontProviderCallback callback;
    std::shared_ptr<void> context;
};

class TGlypharyImp : public TGlypharyProtocol {
public:
    // Directories are registered with the font server alone; a register that is not its client
    // answers false.
    virtual bool RegisterFontDirectory(const ValURL *directory, const ValData *bookmark, uint32_t flags,
                                       uint32_t options, VLScope scope, bool reserved) const;
    virtual bool UnregisterFontDirectory(const ValURL *directory, VLScope scope) const;

    // The URLs for which the single-font operation succeeded, or null when it did for none.
    virtual Ref<const ValArray> EnableFonts(const ValArray *urls, VLScope scope) const;
    virtual Ref<const ValArray> DisableFonts(const ValArray *urls, VLScope scope) const;

    virtual Ref<VLMessagePort> CreateFontProviderPort(const FontProviderBlock &block) const;

    // The providers as the font server lists them, a dictionary each; null where it is not asked.
    virtual Ref<const ValArray> CopyRemoteFontProviders() const;

    // The indexes, for registers that keep any. Index ids run from `first_id`, GetIndexCount of them.
    virtual Ref<const ValSet> SearchIndexedFontsForName(uint16_t id, const ValString *name) const = 0;
    virtual uint16_t GetIndexCount(uint16_t &first_id) const = 0;
    virtual TFontIndex *GetIndex(uint16_t id) const = 0;
    virtual TFontIndex *GetIndexForProperty(const ValString *key) const = 0;

    // The search through the indexes, defined in query/. `request` is a copy of what was asked: a key that
    // an index answers for is taken out of it, whether or not the index has the value. `indexed` is set
    // when there was such a key. Candidates are font references, as in FontTable.
    //
    // One key: true when its index has the value. Candidates that are not empty are narrowed to what the
    // index has; when they are empty, they become that. That candidates which an earlier key has left
    // empty are filled again is deliberate.
    bool SearchIndexForRequest(const ValString *key, TValMutableDict &request, TValMutableSet &candidates,
                               bool &indexed) const;

    // All keys: true when there are candidates in the end.
    bool SearchIndexedFontsForRequest(TValMutableDict &request, TValMutableSet &candidates,
                                      bool &indexed) const;

    // The answer of the first of the indexes `first` to `last` that has a name; null when none has.
    Ref<const ValSet> SearchNameIndicesForFonts(uint16_t first, uint16_t last, const ValString *name) const;

    // Locks the mutex, in whatever way does not keep the process from forking.
    virtual std::unique_lock<std::mutex> Lock() const { return std::unique_lock(mutex_); }
    std::mutex &Mutex() const noexcept { return mutex_; }

private:
    // The key of the PostScript name, and where no font has it so, in what other way fonts are called so.
    bool SearchPostScriptName(TValMutableDict &request, TValMutableSet &candidates, bool &indexed) const;

    mutable std::mutex mutex_;
};

} // namespace vellum
