// SPDX-License-Identifier: MIT
// The main run loop of the process: GLib's default context, which the main thread of every toolkit that
// is built on GLib runs anyway. A program with a loop of its own polls one descriptor and calls one
// function instead.
#pragma once

namespace vellum {

using TimerAction = void (*)(void *info) noexcept;

// Has the main loop call action(info) once, at its next pass: never inside this call, and after the
// timers that were added before. May be called on any thread. A process that is forked has none of its
// parent's timers. Throws std::bad_alloc.
void AddMainLoopTimer(TimerAction action, void *info);

// For a program with a loop of its own: a descriptor that is readable while a timer waits to be fired, for
// the life of the process, and -1 when there is none to be had; and what fires the timers that wait, as
// the main loop would. What they add waits for the next call. A process that is forked has a descriptor of
// its own under its parent's number, from its first call on.
int MainLoopDescriptor() noexcept;
void FireMainLoopTimers() noexcept;

} // namespace vellum
