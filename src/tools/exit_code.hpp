// SPDX-License-Identifier: MIT
// What the tool's exit codes mean; every verb uses the same.
#pragma once

namespace vellum::tool {

enum ExitCode : int {
    kDone = 0,
    kNothingFound = 1, // nothing matched, or there were problems beside what was found
    kUsage = 2,
    kNoServer = 3,
    kRefused = 4, // by policy or permission
    kBadFont = 5, // what was named is no font, or is damaged
    kTimeOut = 6,
};

} // namespace vellum::tool
