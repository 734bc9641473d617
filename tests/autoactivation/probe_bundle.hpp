// SPDX-License-Identifier: MIT
// An application in a bundle of a test's own, with preferences of its own: activation_probe.cpp is its
// program.
#pragma once

#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace vellum::test {

class ProbeBundle {
public:
    explicit ProbeBundle(const char *program = VELLUM_ACTIVATION_PROBE) {
        ::setenv("XDG_CONFIG_HOME", folder_.File("config").c_str(), 1);
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
        folder_.MakeFolder("App/bin");
        std::filesystem::copy_file(program, Program());
    }

    // The entries of its Info.vlist.
    void Declare(const std::string &entries) const {
        folder_.Write("App/Info.vlist", "<vlist><dict>" + entries + "</dict></vlist>");
    }
    void DeclareIdentifier(const std::string &identifier, const std::string &more = "") const {
        Declare("<key>BundleIdentifier</key><string>" + identifier + "</string>" + more);
    }

    void Prefer(const std::string &entries) const {
        folder_.Write("config/vellum/com.orrery.Fount.vlist",
                      "<vlist><dict>" + entries + "</dict></vlist>");
    }

    const TempDir &Folder() const { return folder_; }

    // The answers to commands, each with a comma behind it.
    std::string Ask(const std::string &commands) const {
        FILE *pipe = ::popen((Program() + " " + commands).c_str(), "r");
        std::string answers;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
            answers += c == '\n' ? ',' : static_cast<char>(c);
        EXPECT_EQ(::pclose(pipe), 0) << commands;
        return answers;
    }

private:
    std::string Program() const { return folder_.File("App/bin/probe"); }

    TempDir folder_;
};

} // namespace vellum::test
