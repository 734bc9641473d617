// SPDX-License-Identifier: MIT
// Running a program in a process that is somebody else's: with nothing of its files and signals, and with
// an end.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace vellum::companion {

// What a command (an absolute path, and arguments) writes to standard output, 4 KiB at most; empty when it
// can't be run, or has not ended in time: it is killed then. How it ended is not asked, for a program that
// waits for its own children may have taken that away. May throw std::bad_alloc.
std::string OutputOf(const std::vector<std::string> &command, std::chrono::milliseconds patience);

} // namespace vellum::companion
