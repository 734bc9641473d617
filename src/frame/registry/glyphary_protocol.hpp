// SPDX-License-Identifier: MIT
// The interface that every register implements: 28 operations in a fixed order.
//
// Arguments are borrowed, results are owned; null means none. URLs may carry a face-selecting
// fragment where an operation speaks of one font. The order of the operations is the order of the
// virtual table and is kept: new ones are added in derived classes.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.h>

namespace vellum {

// An array of URLs that failed, handed to the caller of a batch change; null: not asked for.
using ErrorArray = Ref<const ValArray> *;

class TGlypharyProtocol {
public:
    virtual ~TGlypharyProtocol() = default;

    // Properties. The request variants answer in the order of the best match first.
    virtual Ref<const ValArray> CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                                      const ValSet *keys,
                                                                      VLScope scope) const = 0;
    virtual Ref<const ValDictionary> CopyPropertiesForFontMatchingRequest(const ValDictionary *request,
                                                                          const ValSet *keys,
                                                                          VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const = 0;
    virtual Ref<const ValDictionary> CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                            VLScope scope) const = 0;
    virtual Ref<const ValDictionary> CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                          VLScope scope) const = 0;
    virtual Ref<const ValDictionary> CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                           VLScope scope) const = 0;
    virtual Ref<const ValDictionary> ExperimentalDataFunnel(const ValDictionary *query,
                                                            VLScope scope) const = 0;

    // Listings.
    virtual Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                           uint32_t reserved) const = 0;

    // Lookups.
    virtual Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const = 0;
    virtual Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const = 0;
    virtual Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const = 0;
    virtual Ref<const ValURL> CopyFontForCharacter(uint32_t character, uint32_t options,
                                                   uint32_t reserved) const = 0;

    // Changes.
    virtual bool RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                              VLScope scope) const = 0;
    virtual bool RegisterFonts(const ValArray *urls, const ValDictionary *properties, VLFontFlags flags,
                               VLScope scope, ErrorArray errors) const = 0;
    virtual bool UnregisterFont(const ValURL *url, VLScope scope) const = 0;
    virtual bool UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const = 0;
    virtual bool EnableFont(const ValURL *url, VLScope scope) const = 0;
    virtual bool DisableFont(const ValURL *url, VLScope scope) const = 0;

    // What is known of one font.
    virtual bool IsFontRegistered(const ValURL *url) const = 0;
    virtual bool IsFontEnabled(const ValURL *url) const = 0;
    virtual VLScope GetFontScope(const ValURL *url) const = 0;
    virtual uint32_t GetFontPriority(const ValURL *url) const = 0;
    virtual uint32_t GetFontReference(const ValURL *url) const = 0;
    virtual Ref<const ValURL> CopyFontDirectoryURL(const ValURL *url) const = 0;
};

} // namespace vellum
