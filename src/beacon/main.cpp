// SPDX-License-Identifier: MIT
// vellum-beacon: the program.
#include "beacon/program.hpp"

int main(int count, char **arguments) {
    return vellum::RunBeacon(count, arguments);
}
