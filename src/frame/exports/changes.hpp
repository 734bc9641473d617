// SPDX-License-Identifier: MIT
// The two changes that are reached through the function table alone and exported under no name.
#pragma once

#include <vellum/vellum.h>

extern "C" {

void VLEnableFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept;
void VLDisableFont(const ValURL *url, VLFontFlags flags, VLScope scope) noexcept;
}
