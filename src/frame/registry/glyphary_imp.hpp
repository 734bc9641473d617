// SPDX-License-Identifier: MIT
// TGlypharyImp: what stands behind the handles, a register with its mutex.
//
// The handles lock the mutex for as long as they live; every operation below is called with it held,
// unless the register is not yet published. What the operations change is guarded by it.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"

#include <mutex>

namespace vellum {

class TFontIndex;

// Answers a font request in a provider; see VLCreateFontProviderLocalPort.
struct FontProviderBlock {
    VLFontProviderCallback callback;
    void *context;
    void (*release)(void *context);
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
    virtual Ref<const ValArray> CopyRemoteFontProviderPorts() const;

    // The indexes, for registers that keep any. Index ids run from `first_id`, GetIndexCount of them.
    virtual Ref<const ValSet> SearchIndexedFontsForName(uint16_t id, const void *key) const = 0;
    virtual uint16_t GetIndexCount(uint16_t &first_id) const = 0;
    virtual TFontIndex *GetIndex(uint16_t id) const = 0;
    virtual TFontIndex *GetIndexForProperty(const ValString *key) const = 0;

    std::mutex &Mutex() const noexcept { return mutex_; }

private:
    mutable std::mutex mutex_;
};

} // namespace vellum
