// SPDX-License-Identifier: MIT
// A companion whose user always wants the last of the fonts alone, this time.
#include <vellum/glyphary_ui.h>
#include <vellum/values.hpp>

extern "C" CopyConfirmedFontsForAutoActivationRequestFunction CopyConfirmedFontsForAutoActivationRequest;

const ValArray *CopyConfirmedFontsForAutoActivationRequest(const ValDictionary *, const ValArray *fonts,
                                                           bool *remembers) {
    *remembers = false;
    const void *last = ValArrayGetValue(fonts, ValArrayGetCount(fonts) - 1);
    return ValArrayCreate(&last, 1);
}
