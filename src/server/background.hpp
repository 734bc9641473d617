// SPDX-License-Identifier: MIT
// Going to the background: a program that stays is started by one that returns once it is known how that
// went.
#pragma once

#include <functional>
#include <string_view>

namespace vellum {

// Says how the start went, once: the code that the starter ends with, and what it says first, a line or
// nothing. On standard error for a code that is not 0.
using StartReport = std::function<void(int exit_code, std::string_view line)>;

// The report of a program that stays where it was started.
void ReportHere(int exit_code, std::string_view line);

// Does the work in a process in the background: in a session of its own, without terminal, standard streams
// or anything else that was open here. Returns there what the work returns, and here, once the work has
// reported or has ended without, the code for the starter. To be called while there is one thread. Throws
// std::system_error here when there is no room for a process.
int WorkInBackground(const std::function<int(const StartReport &report)> &work);

} // namespace vellum
