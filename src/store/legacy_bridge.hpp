// SPDX-License-Identifier: MIT
// The bridge to the legacy font service, which hears of every change once: what is exported by the bundle
// that vellum/fount.h describes, where there is one.
//
// Each function takes the caller's scope word and does nothing when that says kVLScopeLegacyTold; else it
// tells the service, if it is there, and sets the bit. The word goes on to the registers, so that whoever
// makes the change first tells of it, and nobody else.
//
// The service's code is loaded when it is first looked for, and what modules do then may be to ask for
// fonts: with a lock of the library's held, nothing is loaded. Three functions below are for callers that
// hold one, and know what FindFountFunctions has found alone.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

// Looks for what those three call, as long as it has not been found. Call it with no lock held, before a
// register is made or files are registered with it.
void FindFountFunctions() noexcept;

void DoRegisterURLsWithFount(const ValArray *files, bool registers, VLFontFlags flags,
                             VLScope &scope) noexcept;

// For callers that hold a lock.
void DoRegisterURLWithFount(const ValURL *file, bool registers, VLFontFlags flags, VLScope &scope) noexcept;

void DoEnableURLsWithFount(const ValArray *fonts, bool enables, VLFontFlags flags, VLScope &scope) noexcept;
void DoEnableURLWithFount(const ValURL *font, bool enables, VLFontFlags flags, VLScope &scope) noexcept;

// The container of a font in memory that was registered (`container` is 0) or withdrawn from it; 0 without
// the service. Clears kVLScopeSilent, too.
uint32_t DoRegisterDataWithFount(const ValData *data, uint32_t container, VLFontFlags flags,
                                 VLScope &scope) noexcept;

// A change is complete and was announced.
void DoNotifyFount() noexcept;

// The first of the legacy ids of a container's fonts, and the container of a legacy id; 0 for none. For
// callers that hold a lock.
uint32_t FindFountFont(uint32_t container) noexcept;
uint32_t FindFountContainer(uint32_t font) noexcept;

// The function of that name in the service's bundle, or null.
void *LoadFountFunction(const char *name) noexcept;

} // namespace vellum
