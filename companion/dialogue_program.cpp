// SPDX-License-Identifier: MIT
#include "dialogue_program.hpp"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace vellum::companion {

namespace {

// Where programs of the system lie; nothing else is searched. A test builds it with a folder of its own.
#ifndef VELLUM_DIALOGUE_FOLDERS
#define VELLUM_DIALOGUE_FOLDERS "/usr/bin", "/usr/local/bin"
#endif
constexpr std::string_view kFolders[] = {VELLUM_DIALOGUE_FOLDERS};

std::string FindProgram(const std::string &name) {
    for (const std::string_view folder : kFolders) {
        std::string path = std::string(folder) + "/" + name;
        if (::access(path.c_str(), X_OK) == 0) return path;
    }
    return {};
}

bool IsSet(const char *variable) noexcept {
    const char *value = ::secure_getenv(variable);
    return value && *value;
}

// The text is a part of its argument, or stands behind an option, so that it is never taken for one.
std::vector<std::string> Zenity(const std::string &program, const std::string &title,
                                const std::string &text, const std::vector<Choice> &choices) {
    std::vector<std::string> command = {
        program,         "--list",       "--radiolist", "--title=" + title, "--text=" + text,
        "--column=",     "--column=key", "--column=",   "--hide-column=2",  "--print-column=2",
        "--hide-header", "--width=480",  "--height=420"};
    for (const Choice &choice : choices) {
        command.push_back(&choice == &choices.front() ? "TRUE" : "FALSE");
        command.insert(command.end(), {choice.key, choice.text});
    }
    return command;
}

std::vector<std::string> KDialog(const std::string &program, const std::string &title,
                                 const std::string &text, const std::vector<Choice> &choices) {
    std::vector<std::string> command = {program, "--title", title, "--radiolist", text};
    for (const Choice &choice : choices)
        command.insert(command.end(),
                       {choice.key, choice.text, &choice == &choices.front() ? "on" : "off"});
    return command;
}

bool IsPlasma() {
    const char *desktop = ::secure_getenv("XDG_CURRENT_DESKTOP");
    return desktop && std::string_view(desktop).find("KDE") != std::string_view::npos;
}

} // namespace

std::vector<std::string> DialogueCommand(const std::string &title, const std::string &text,
                                         const std::vector<Choice> &choices) {
    if (!IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) return {};
    const std::string zenity = FindProgram("zenity");
    const std::string kdialog = FindProgram("kdialog");
    if (!kdialog.empty() && (zenity.empty() || IsPlasma())) return KDialog(kdialog, title, text, choices);
    return zenity.empty() ? std::vector<std::string>() : Zenity(zenity, title, text, choices);
}

} // namespace vellum::companion
