// SPDX-License-Identifier: MIT
// TAutoActivationManager: looks for fonts that no register has, beyond the registers, and activates them.
//
// Exported lookups ask it last of all, with no register's lock held. It asks the programs that offer fonts,
// provider_fonts.cpp, and then, where the user allows it, the index of font files, metadata_search.cpp.
// What the index finds is looked through folder by folder, found_fonts.hpp.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.hpp>

#include <atomic>
#include <chrono>
#include <string>

namespace vellum {

// How long others are waited for. Tests wait less long.
struct ActivationPatience {
    std::chrono::milliseconds query = std::chrono::seconds(5); // for the index of font files
    double provider_takes_request = 60;                        // seconds
    double provider_replies = 300;                             // seconds
};

class TAutoActivationManager {
public:
    // `request` (borrowed; null finds nothing) is what the fonts must match; providers or the search may be
    // left out. Asks the font server for the providers. May throw std::bad_alloc.
    TAutoActivationManager(const ValDictionary *request, bool skips_providers, bool skips_search);

    // The URLs of the fonts that were found, best first: of the process's register, in which they then are,
    // or of the font server's, if that has what a provider offers. Null for none. That no other scope than
    // the process's is meant, whatever `scope` says, is deliberate.
    Ref<const ValArray> CopyAutoActivatedFonts(VLScope scope) const;

    // The best of them alone.
    Ref<const ValURL> CopyAutoActivatedFont(VLScope scope) const;

    // The fonts that would be activated if the user allowed everything, by the URLs that they have now,
    // best first: those of the first provider that has some, else of the first folder. Null for none. May
    // throw std::bad_alloc.
    Ref<const ValArray> CopyActivatableFonts() const;

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

    // How many searches in a row failed, or were not answered in time. Not reset with the flag above,
    // deliberately: where a changed setting has searches go on, one more failure ends them again.
    static std::atomic<uint32_t> sNumUnknownBeaconErrors;

    static ActivationPatience sPatience;

private:
    // What was learned of a group of fonts that the user was asked about, or need not be.
    enum class Consent { kGiven, kRefused };

    // ---- providers: provider_fonts.cpp ----
    static Ref<const ValData> CreateFlattenedRequest(const ValDictionary *request);
    Ref<const ValArray> CopyFontsFromFontProvider(const VLMessagePort *port) const;
    Ref<const ValArray> CopyFontsOfProviders() const;
    Ref<const ValArray> CopyActivatableFontsOfProviders() const;

    // ---- the search: metadata_search.cpp ----
    static std::string InitQueryStringForRequest(const ValDictionary *request);
    Ref<const ValArray> CopyFontsFromAutoActivation() const;

    // ---- activation ----
    Ref<const ValArray> CopyFontsOfSearch(bool asks) const;
    Consent AskUser(Ref<const ValArray> &fonts) const;
    Ref<const ValArray> Activate(const ValArray *fonts) const;
    Ref<const ValArray> CopyFontsOfProcess() const;

    const Ref<const ValDictionary> request_;
    const Ref<const ValArray> provider_ports_;   // of VLMessagePort; null without providers
    const Ref<const ValData> flattened_request_; // as providers get it; null without providers
    const std::string query_;                    // empty: nothing to search by
};

} // namespace vellum
