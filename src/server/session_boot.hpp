// SPDX-License-Identifier: MIT
// The session's end where no folder of the session's goes with it: no session outlasts its machine's run.
#pragma once

#include <string>

namespace vellum {

// Removes the session's database if it was made before the machine has started anew, and writes into it
// under which start it is made otherwise. Before it is opened. A file that is no database is left alone.
void ForgetFormerBoot(const std::string &path) noexcept;

} // namespace vellum
