// SPDX-License-Identifier: MIT
#include "autoactivation/auto_activation_verifier.hpp"

#include "autoactivation/auto_activation_manager.hpp"
#include "autoactivation/vellum_ui.hpp"
#include "platform/app/application.hpp"
#include "platform/app/main_bundle.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/val/static_string.hpp"

#include <dlfcn.h>

#include <algorithm>

namespace vellum {

namespace {

constinit const StaticString kDisablesAutoActivation("FountDisableAutoActivation");
constinit const StaticString kIsUserInterfaceElement("SkUIElement");

constexpr std::string_view kCompatibilityFix = "4748664";

// What installs fonts, and what shows the questions about them.
constexpr std::string_view kNeverEligible[] = {"com.orrery.GlypharyUIAgent", "com.orrery.installer",
                                               "com.MindVision.VISEX"};

enum class Refusal : int { kUnknown, kNo, kYes };
constinit std::atomic<Refusal> sRefusal{Refusal::kUnknown};

bool BundleDeclares(const ValString *key) {
    const auto bundle = MainBundle::OfProcess();
    return bundle && DeclaresTrue(bundle->info.Get(), key);
}

// A bundle that can't be read for the moment may well refuse.
bool ApplicationRefuses() {
    const Refusal known = sRefusal.load(std::memory_order_relaxed);
    if (known != Refusal::kUnknown) return known == Refusal::kYes;
    const uint32_t failures = tPassingFailures;
    const bool refuses = BundleDeclares(&kDisablesAutoActivation);
    if (failures != tPassingFailures) return true;
    sRefusal.store(refuses ? Refusal::kYes : Refusal::kNo, std::memory_order_relaxed);
    return refuses;
}

// A function of the program's own goes first. Where this library was loaded for one module alone, its own
// function is not found by name.
bool IsDaemon() noexcept {
    using Function = decltype(GetApplicationIsDaemon);
    auto *function = reinterpret_cast<Function *>(::dlsym(RTLD_DEFAULT, "GetApplicationIsDaemon"));
    return function ? function() : GetApplicationIsDaemon();
}

bool IsEligible() {
    if (!HasCompatibilityFix(kCompatibilityFix)) return false;
    const auto identifier = CopyApplicationIdentifier();
    if (!identifier || std::ranges::count(kNeverEligible, Text(identifier)) != 0) return false;
    return !BundleDeclares(&kIsUserInterfaceElement) && !IsDaemon();
}

} // namespace

constinit std::atomic<uint32_t> TAutoActivationVerifier::sFlags{0};

// The application's own setting goes before the one for all.
bool TAutoActivationVerifier::SettingsAllow(bool &asks, bool &forbids) {
    const VLAutoActivationSetting for_all = TAutoActivationManager::GetAutoActivationSetting();
    bool is_allowed = for_all != kVLAutoActivationDisable;
    asks = for_all == kVLAutoActivationAsk;
    switch (TAutoActivationManager::GetAutoActivationSetting(nullptr)) {
    case kVLAutoActivationEnable:
        asks = false;
        is_allowed = true;
        break;
    case kVLAutoActivationAsk:
        asks = true;
        is_allowed = true;
        break;
    case kVLAutoActivationDisable:
        forbids = true;
        break;
    default:
        forbids = !is_allowed;
    }
    return is_allowed;
}

void TAutoActivationVerifier::Classify(bool is_allowed) {
    if (sFlags.load() & kClassified) return;
    const uint32_t failures = tPassingFailures;
    const bool is_eligible = IsEligible();
    if (failures != tPassingFailures && !is_eligible) return; // what could not be read is no answer
    sFlags.fetch_or(is_eligible && is_allowed ? kClassified | kMayActivate : kClassified);
}

bool TAutoActivationVerifier::CanAutoActivateFonts(bool &asks) {
    asks = false;
    if (ApplicationRefuses()) return false;
    bool forbids = false;
    const bool is_allowed = SettingsAllow(asks, forbids);
    if (forbids || TAutoActivationManager::sBeaconQueriesDisabled) return false;
    Classify(is_allowed);
    const uint32_t flags = sFlags.load();
    if (!(flags & kMayActivate)) return false;
    if (flags & kIsReady) return true;
    if (!TVellumUI().ApplicationIsReadyForAutoActivation()) return false;
    sFlags.fetch_or(kIsReady);
    return true;
}

} // namespace vellum
