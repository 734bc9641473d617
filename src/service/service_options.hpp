// SPDX-License-Identifier: MIT
// What the program of a service may be started with.
#pragma once

#include <optional>

namespace vellum {

// What a program says of itself. `own_option` is one more that it knows: it starts itself with it.
struct ServiceProgram {
    const char *name;
    const char *usage;
    const char *own_option = nullptr;
};

struct ServiceOptions {
    bool is_in_foreground = false; // and what goes wrong is told to standard error, from now on
    bool has_own = false;
};

// Reads the arguments of a program that lasts as long as the process. Nothing when it is to end with
// *exit_code: it has said its usage or its version, or that it does not know an argument.
std::optional<ServiceOptions> ReadServiceOptions(const ServiceProgram &program, int count, char **arguments,
                                                 int *exit_code);

} // namespace vellum
