// SPDX-License-Identifier: MIT
// The bridge to the legacy font service, which hears of every change once: what is exported by the bundle
// that vellum/fount.h describes, where there is one.
//
// Each function takes the caller's scope word and does nothing when that says kVLScopeLegacyTold; else it
// tells the service, if it is there, and sets the bit. The word goes on to the registers, so that whoever
// makes the change first tells of it, and nobody else.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

void DoRegisterURLsWithFount(const ValArray *files, bool registers, VLFontFlags flags,
                             VLScope &scope) noexcept;
void DoRegisterURLWithFount(const ValURL *file, bool registers, VLFontFlags flags, VLScope &scope) noexcept;

void DoEnableURLsWithFount(const ValArray *fonts, bool enables, VLFontFlags flags, VLScope &scope) noexcept;
void DoEnableURLWithFount(const ValURL *font, bool enables, VLFontFlags flags, VLScope &scope) noexcept;

// The container of a font in memory that was registered (`container` is 0) or withdrawn from it; 0 without
// the service. Clears kVLScopeSilent, too.
uint32_t DoRegisterDataWithFount(const ValData *data, uint32_t container, VLFontFlags flags,
                                 VLScope &scope) noexcept;

// A change is complete and was announced.
void DoNotifyFount() noexcept;

// The first of the legacy ids of a container's fonts, and the container of a legacy id; 0 for none.
uint32_t FindFountFont(uint32_t container) noexcept;
uint32_t FindFountContainer(uint32_t font) noexcept;

// The function of that name in the service's bundle, or null.
void *LoadFountFunction(const char *name) noexcept;

} // namespace vellum
