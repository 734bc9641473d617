/* SPDX-License-Identifier: MIT */
/*
 * vellum/glyphary_ui.h - the companion: what a library exports that asks the user on the register's behalf.
 *
 * The library finds the companion at run time: it is the file libGlypharyUI.so in the folder of the
 * framework's resources, loaded when the user is first to be asked. Its functions have the names of the
 * types here, without "Function"; without the companion, or without a function, the answer is no.
 *
 * Rules for the functions of a companion:
 *  1. Any thread may call any of them at any time, with no register locked; they may call the library.
 *  2. They return: with the answer no when the user gives none, when there is no display, or on failure.
 *  3. Nothing is thrown, nothing is printed. The code that runs when the companion is loaded must not call
 * the library.
 *  4. Arguments are borrowed. A name in a font or a request is a stranger's text.
 */
#ifndef VELLUM_GLYPHARY_UI_H
#define VELLUM_GLYPHARY_UI_H

#include <vellum/values.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Asks whether fonts that were found for a request may be activated. `fonts` is an array of ValURL, best
 * first, of fonts that may well be nobody's on this machine. Returns those that the user wants, an array
 * that the caller releases; null for none. Sets *remember (never null): whether the answer is to hold for
 * this application from now on.
 */
typedef const ValArray *CopyConfirmedFontsForAutoActivationRequestFunction(const ValDictionary *request,
                                                                           const ValArray *fonts,
                                                                           bool *remember);

/* Tells the user that fonts (an array of ValURL) are guarded: much depends on them, and they stay. */
typedef void VLUIWarnUserNotToModifyGuardedFontsFunction(const ValArray *fonts);

/* Asks whether a font may take the place of a protected one of the same name. */
typedef bool VLUIConfirmAllowOverrideOfProtectedFontFunction(const ValURL *font);

#ifdef __cplusplus
}
#endif

#endif /* VELLUM_GLYPHARY_UI_H */
