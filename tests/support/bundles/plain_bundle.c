/* SPDX-License-Identifier: MIT */
/* The code of a bundle that exports one function. */
__attribute__((visibility("default"))) int PlainFunction(void);

int PlainFunction(void) {
    return 1;
}
