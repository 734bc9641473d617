// SPDX-License-Identifier: MIT
// TAutoActivationManager: looks for fonts that no register has, beyond the registers, and activates them.
//
// Exported lookups ask it last of all, with no register's lock held. It knows of no place to look in yet,
// so that it never finds any; docs/architecture.md says so.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.h>

namespace vellum {

class TAutoActivationManager {
public:
    // `request` (borrowed) is what the fonts must match; providers or the search may be left out.
    TAutoActivationManager(const ValDictionary *request, bool skips_providers, bool skips_search) noexcept
        : request_(Retain(request)), skips_providers_(skips_providers), skips_search_(skips_search) {}

    // The URLs of the fonts that were found and registered in a scope, best first; null for none.
    Ref<const ValArray> CopyAutoActivatedFonts(VLScope scope) const;

    // The best of them alone.
    Ref<const ValURL> CopyAutoActivatedFont(VLScope scope) const;

private:
    const Ref<const ValDictionary> request_;
    const bool skips_providers_;
    const bool skips_search_;
};

} // namespace vellum
