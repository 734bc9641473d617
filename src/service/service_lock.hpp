// SPDX-License-Identifier: MIT
// That a service is the only one of its name.
#pragma once

#include "platform/fs/file.hpp"

#include <stdexcept>
#include <string>

namespace vellum {

// Another process is the service, and answers.
struct ServiceRunsAlready : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Held for as long as the one service of this name lives, in a file of the folder. One that is just ending,
// or has not begun to answer, is waited for, ten seconds at the most; whether one answers is seen at
// `socket`, the name of a socket of its own. `what` it is called, for whoever reads why there is none.
// Throws ServiceRunsAlready, and std::runtime_error for any other trouble.
TDescriptor TakeServiceLock(const std::string &folder, const std::string &name, const std::string &socket,
                            const std::string &what);

} // namespace vellum
