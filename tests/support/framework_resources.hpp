// SPDX-License-Identifier: MIT
// A framework's resources of a test's own. The process looks for them once: a test sets them before
// anything else, and ctest gives each test a process.
#pragma once

#include "support/temp_dir.hpp"

#include <cstdlib>

namespace vellum::test {

class FrameworkResources {
public:
    FrameworkResources() { setenv("VL_FRAMEWORK_RESOURCES_PATH", folder_.Path().c_str(), 1); }

    const TempDir &Folder() const { return folder_; }

private:
    const TempDir folder_;
};

} // namespace vellum::test
