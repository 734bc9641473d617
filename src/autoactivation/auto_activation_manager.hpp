// SPDX-License-Identifier: MIT
// TAutoActivationManager: looks for fonts that no register has, beyond the registers, and activates them.
//
// Exported lookups ask it last of all, with no register's lock held. It knows of no place to look in yet,
// so that it never finds any; docs/architecture.md says so.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.h>

#include <atomic>

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

    // ---- what the user set: auto_activation_settings.cpp ----
    // Settings are read anew each time. What cannot be kept is logged. These may throw std::bad_alloc.

    // The setting for all applications; Default when nothing sensible is set.
    static VLAutoActivationSetting GetAutoActivationSetting();
    static void SetAutoActivationSetting(VLAutoActivationSetting setting);

    // The setting of one application, by its identifier; null is the calling one. One that has no
    // identifier reads as Disable and keeps nothing. Whatever is none of Disable, Enable and Ask removes
    // what was set.
    static VLAutoActivationSetting GetAutoActivationSetting(const ValString *application);
    static void SetAutoActivationSetting(const ValString *application, VLAutoActivationSetting setting);

    // The setting that a stored text stands for; Default for any other, and for null.
    static VLAutoActivationSetting GetSettingForString(const ValString *text);

    // ---- what is not looked for, and not taken: search_policy.cpp, refused_requests.cpp ----

    // Whether the user refused the fonts of an equal request before, in this process.
    static bool IsRequestDisallowed(const ValDictionary *request) noexcept;

    // Remembers a request (retained) as refused, for as long as the process lives. Of two threads that do
    // so at once, one may not be heard. May throw std::bad_alloc.
    static void DisallowRequestInTheFuture(const ValDictionary *request);

    // Whether a font can be searched by a name of the kind that a property key says.
    static bool IsValidNameToQuery(const ValString *name, const ValString *key) noexcept;

    // Whether a font file may be activated: nobody put a mark beside it or at the root of its volume that
    // says otherwise, and it is no printer's font. May throw std::bad_alloc.
    static bool IsValidFileForAutoActivation(const ValURL *file);

    // Set where searching failed too often; what is read of the settings clears it once it has changed.
    static std::atomic<bool> sBeaconQueriesDisabled;

private:
    const Ref<const ValDictionary> request_;
    const bool skips_providers_;
    const bool skips_search_;
};

} // namespace vellum
