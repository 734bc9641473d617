// SPDX-License-Identifier: MIT
// Folders of a test's own for services and those who ask them.
#pragma once

#include "support/temp_dir.hpp"

namespace vellum::test {

// Points this process, and what it starts, at folders of its own: services of anybody else are not met, nor
// is what the user has set or saved. No bus, no service manager and no name suffix is left, either.
class ServiceHome : public TempDir {
public:
    ServiceHome();
};

} // namespace vellum::test
