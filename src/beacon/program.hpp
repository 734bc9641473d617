// SPDX-License-Identifier: MIT
// The index of font files as a program: its options, its one instance, its life.
#pragma once

namespace vellum {

// The exit code: 0 after a clean end, 1 when it could not run, 2 for arguments that it does not know.
int RunBeacon(int count, char **arguments);

} // namespace vellum
