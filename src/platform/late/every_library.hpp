// SPDX-License-Identifier: MIT
// All libraries that are opened late, at once: for a process that begins to read fonts itself, and holds
// locks while it does.
#pragma once

namespace vellum {

// To be called with no lock held. What cannot be opened now is tried again when it is needed.
void OpenEveryLibrary() noexcept;

} // namespace vellum
