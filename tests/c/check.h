/* SPDX-License-Identifier: MIT */
/* What the tests in C have instead of a framework: a condition that must hold, or the program ends. */
#ifndef VELLUM_TESTS_C_CHECK_H
#define VELLUM_TESTS_C_CHECK_H

#include <stdio.h>
#include <stdlib.h>

#define CHECK(condition)                                                                                   \
    do {                                                                                                   \
        if (!(condition)) {                                                                                \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                                \
            exit(EXIT_FAILURE);                                                                            \
        }                                                                                                  \
    } while (0)

#endif
