// SPDX-License-Identifier: MIT
// The font server as a program: its options, its one instance, its life.
#pragma once

namespace vellum {

// The exit code: 0 after a clean end, or in the process that has started one in the background, or where
// one runs already; 1 when it could not run, 2 for arguments that it does not know.
int RunFontServer(int count, char **arguments);

} // namespace vellum
