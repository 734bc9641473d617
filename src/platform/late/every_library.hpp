// SPDX-License-Identifier: MIT
// All libraries that are opened late, at once: for a process that begins to read fonts itself, and holds
// locks while it does.
#pragma once

namespace vellum {

// To be called with no lock held: it may wait for the loader. A fork waits for it, as a child that is made
// while a thread has the loader's lock never gets it. What cannot be opened now is tried again when it is
// needed.
void OpenEveryLibrary() noexcept;

} // namespace vellum
