/* SPDX-License-Identifier: MIT */
/*
 * The legacy font service: what a bundle exports that keeps an older font system in step with this one.
 *
 * The library finds the bundle at run time: it is the file Fount.so in the folder Fount.framework, which
 * VL_FRAMEWORK_RESOURCES_PATH or the installation names. Each function is looked up by its name, without
 * "Function", when there is first something to tell; without the bundle, or without a function, nothing
 * is told and nothing else changes.
 *
 * Rules for the functions of a bundle:
 *  1. They may be called by any thread, and while a register's lock is held: none may call a function of
 *     vellum.h, and none may wait for a thread that does. The functions of values.h are free to use.
 *  2. Arguments are borrowed.
 *  3. Failures are theirs to bear: nothing that they return stops a change.
 */
#ifndef VELLUM_FOUNT_H
#define VELLUM_FOUNT_H

#include <vellum/values.h>
#include <vellum/vellum.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Font files are being registered (`registers` is 1) or withdrawn (0). `fonts` is a ValURL, or a ValArray
 * of them when `is_array` is 1. `reserved` is 0. `flags` are the files' font flags, 0 when they are
 * withdrawn; with kVLFontFlagSystem the files are the system's own. `scope` is the caller's word.
 */
typedef void FountRegisterURLsFunction(const void *fonts, uint8_t is_array, uint8_t registers,
                                       uint32_t reserved, VLFontFlags flags, VLScope scope);

/* Fonts are being enabled (`enables` is 1) or disabled (0). A URL's fragment picks one face of a file. */
typedef void FountEnableURLsFunction(const void *fonts, uint8_t is_array, uint8_t enables,
                                     VLFontFlags flags, VLScope scope);

/*
 * A font in memory: with `container` 0 it is registered, and the id of its container is returned, or 0 when
 * it was not; with another one it is withdrawn from that container, and the id is returned.
 */
typedef uint32_t FountRegisterDataFunction(const ValData *data, uint32_t container, VLFontFlags flags,
                                           VLScope scope);

/* A change is complete, and was announced. The arguments are 1 and 0. */
typedef void FountFontNotifyFunction(uint32_t event, uint32_t reserved);

/*
 * The ids of the fonts in a container: as many as there is room for in `fonts`, and as a result how many
 * there are.
 */
typedef uint32_t FountFontFindFromContainerFunction(uint32_t container, uint32_t room, uint32_t *fonts);

/* The container of a font, or 0. */
typedef uint32_t FountFontGetContainerFunction(uint32_t font);

#ifdef __cplusplus
}
#endif

#endif
