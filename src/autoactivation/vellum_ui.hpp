// SPDX-License-Identifier: MIT
// TVellumUI: the companion that asks the user, where one is installed.
#pragma once

#include <vellum/glyphary_ui.h>
#include <vellum/values.hpp>

namespace vellum {

// What the companion has. Made once in a process, and never torn down.
class TVellumUIImp {
public:
    // Loads the companion from the framework's resources; without it, or without one of its functions, that
    // function is null.
    TVellumUIImp() noexcept;

    CopyConfirmedFontsForAutoActivationRequestFunction *copy_confirmed_fonts = nullptr;
    VLUIWarnUserNotToModifyGuardedFontsFunction *warn_of_guarded_fonts = nullptr;
    VLUIConfirmAllowOverrideOfProtectedFontFunction *confirm_override = nullptr;
};

// A handle on it. Nobody may hold a register's lock: it takes as long as the user does.
class TVellumUI {
public:
    TVellumUI() noexcept;

    bool ApplicationIsReadyForAutoActivation() const noexcept { return true; }

    // The fonts that the user wants of those found for a request; null for none, and without a companion.
    // `remembers` becomes whether the answer is to hold for this application from now on.
    Ref<const ValArray> CopyConfirmedFontsForAutoActivationRequest(const ValDictionary *request,
                                                                   const ValArray *fonts,
                                                                   bool &remembers) const noexcept;

private:
    const TVellumUIImp *const imp_;
};

} // namespace vellum
