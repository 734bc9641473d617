// SPDX-License-Identifier: MIT
// vellum/vellum.hpp - Vellum for C++: vellum.h with owning references; header-only.
//
//     auto name = vellum::Adopt(ValStringCreateWithCString("DejaVuSans"));
//     auto font = vellum::Adopt(VLCopyFontWithName(name.Get(), kVLScopeAll, 0));
//     if (font) ...                       // released by itself
#ifndef VELLUM_VELLUM_HPP
#define VELLUM_VELLUM_HPP

#include <vellum/values.hpp>
#include <vellum/vellum.h>

#endif // VELLUM_VELLUM_HPP
