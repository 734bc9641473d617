/* SPDX-License-Identifier: MIT */
/* Code that calls the program which loads it, while it is loaded. */
void WhileLoaderIsLocked(void);

__attribute__((constructor)) static void CallProgram(void) {
    WhileLoaderIsLocked();
}
