// SPDX-License-Identifier: MIT
// Telling programs which fonts came and went.
//
// Whoever changed a register posts. A change of the process's own register is told inside the process, one
// of the shared register to every process of the user, which then tell it inside. In each, the main loop
// delivers it: first to the callback of a framework, then to the observers of the local centre.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

// Posts that fonts, an array of ValURL, became available (kAvailableFontURLsAddedKey) or went away
// (kAvailableFontURLsRemovedKey). Call it with no lock held. Throws std::bad_alloc.
void PostNotification(VLScope scope, const ValString *key, const ValArray *fonts);

// The same for a user info that is made already: one of the keys, with the texts of the fonts' URLs.
void PostNotification(VLScope scope, const ValDictionary *user_info);

// From now on, changes of the shared register are told in this process alone: it is one of its own.
void KeepSharedChangesInProcess() noexcept;

// Has this process hear of every process's changes of the shared register: for its client. Throws
// std::bad_alloc.
void ObserveSharedChanges();

// The same for a process that was forked off one that did, when it first needs it.
void ObserveAfterFork() noexcept;

// What hears of a change in any process: caches are stale from now on, and the main loop is told. Without a
// user info, something may have been missed.
void FontsChangedCallback(void *center, void *observer, const ValString *name, const void *object,
                          const ValDictionary *user_info) noexcept;

// Delivers a change, on the main loop.
void DistributedFontChangedCallback(void *center, void *observer, const ValString *name, const void *object,
                                    const ValDictionary *user_info) noexcept;

} // namespace vellum
