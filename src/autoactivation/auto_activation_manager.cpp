// SPDX-License-Identifier: MIT
#include "autoactivation/auto_activation_manager.hpp"

#include "autoactivation/auto_activation_verifier.hpp"
#include "autoactivation/found_fonts.hpp"
#include "autoactivation/vellum_ui.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "frame/handles/registers.hpp"
#include "values/lookup_trace.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

namespace vellum {

namespace {

Ref<const ValArray> CopyProviderPorts() {
    const auto ports = SharedRegister().CopyRemoteFontProviderPorts();
    return ValArrayGetCount(ports.Get()) > 0 ? ports : nullptr;
}

// How looking for the fonts went on, and ended, for whoever wants to know.
void TellOutcome(std::string_view outcome, const ValArray *fonts = nullptr) {
    LookupTrace::Tell("activated", [&](TValMutableDict &stage) {
        stage.Set(TraceText("outcome").Get(), TraceText(outcome).Get());
        stage.Set(TraceText("fonts").Get(), fonts);
    });
}

} // namespace

constinit ActivationPatience TAutoActivationManager::sPatience;

TAutoActivationManager::TAutoActivationManager(const ValDictionary *request, bool skips_providers,
                                               bool skips_search)
    : request_(Retain(request)), provider_ports_(skips_providers ? nullptr : CopyProviderPorts()),
      flattened_request_(provider_ports_ ? CreateFlattenedRequest(request) : nullptr),
      query_(skips_search ? std::string() : InitQueryStringForRequest(request)) {}

Ref<const ValArray> TAutoActivationManager::CopyFontsOfProcess() const {
    return ProcessRegister().CopyFontsForRequest(request_.Get(), kVLScopeProcess);
}

// The user is asked with the best font at hand, for a companion that shows it.
TAutoActivationManager::Consent TAutoActivationManager::AskUser(Ref<const ValArray> &fonts) const {
    const auto best = CreateFontFromURL(static_cast<const ValURL *>(ValArrayGetValue(fonts.Get(), 0)));
    bool remembers = false;
    fonts = TVellumUI().CopyConfirmedFontsForAutoActivationRequest(request_.Get(), fonts.Get(), remembers);
    if (remembers)
        SetAutoActivationSetting(nullptr, fonts ? kVLAutoActivationEnable : kVLAutoActivationDisable);
    if (!fonts) DisallowRequestInTheFuture(request_.Get());
    return fonts ? Consent::kGiven : Consent::kRefused;
}

// Several faces of a file fail but for the first, which brings them all: what could not be registered is
// not asked about. The caller tells of the fonts.
Ref<const ValArray> TAutoActivationManager::Activate(const ValArray *fonts) const {
    VLRegisterFonts(fonts, kVLFontFlagCopyToStable, kVLScopeProcess | kVLScopeSilent, nullptr);
    return CopyFontsOfProcess();
}

// The first folder that has a font decides.
Ref<const ValArray> TAutoActivationManager::CopyFontsOfSearch(bool asks) const {
    const auto files = CopyFontsFromAutoActivation();
    for (const auto &group : GroupByFolder(files.Get())) {
        auto fonts = CopyFittingFaces(group.Get(), request_.Get());
        if (!fonts) continue;
        if ((asks || HasQuarantinedFace(fonts.Get())) && AskUser(fonts) == Consent::kRefused) {
            TellOutcome("not confirmed");
            return nullptr;
        }
        auto activated = Activate(fonts.Get());
        TellOutcome(activated ? "activated" : "not registered", activated.Get());
        return activated;
    }
    TellOutcome(files ? "no file fits" : "no file found");
    return nullptr;
}

Ref<const ValArray> TAutoActivationManager::CopyAutoActivatedFonts(VLScope) const {
    LookupTrace::Tell("activation", [&](TValMutableDict &stage) {
        stage.Set(TraceText("requested").Get(), request_.Get());
        stage.Set(TraceText("providers").Get(),
                  MakeNumber(static_cast<int64_t>(ValArrayGetCount(provider_ports_.Get()))).Get());
        stage.Set(TraceText("search").Get(), TValStr(query_).Get());
    });
    if (auto fonts = CopyFontsOfProviders()) {
        TellOutcome("provided", fonts.Get());
        return fonts;
    }
    bool asks = false;
    if (IsRequestDisallowed(request_.Get()))
        TellOutcome("refused before");
    else if (!TAutoActivationVerifier::CanAutoActivateFonts(asks))
        TellOutcome("not allowed");
    else if (query_.empty())
        TellOutcome("no name to search by");
    else
        return CopyFontsOfSearch(asks);
    return nullptr;
}

Ref<const ValURL> TAutoActivationManager::CopyAutoActivatedFont(VLScope scope) const {
    const auto fonts = CopyAutoActivatedFonts(scope);
    return Retain(static_cast<const ValURL *>(ValArrayGetValue(fonts.Get(), 0)));
}

Ref<const ValArray> TAutoActivationManager::CopyActivatableFonts() const {
    if (auto fonts = CopyActivatableFontsOfProviders()) return fonts;
    const auto files = CopyFontsFromAutoActivation();
    for (const auto &group : GroupByFolder(files.Get()))
        if (auto fonts = CopyFittingFaces(group.Get(), request_.Get())) return fonts;
    return nullptr;
}

} // namespace vellum
