// SPDX-License-Identifier: MIT
// vellum-fontserver: the program.
#include "server/program.hpp"

int main(int count, char **arguments) {
    return vellum::RunFontServer(count, arguments);
}
