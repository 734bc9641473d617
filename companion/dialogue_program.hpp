// SPDX-License-Identifier: MIT
// The programs that show a dialogue: the desktop ships one or the other.
#pragma once

#include <string>
#include <vector>

namespace vellum::companion {

// One line to choose.
struct Choice {
    const char *key; // what the program writes when it is chosen
    const char *text;
};

// The command that lets the user choose one of some lines, or none: an absolute path in a folder of the
// system's, and its arguments. Empty when there is no such program, or no display to show it on.
std::vector<std::string> DialogueCommand(const std::string &title, const std::string &text,
                                         const std::vector<Choice> &choices);

} // namespace vellum::companion
