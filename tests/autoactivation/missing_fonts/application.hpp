// SPDX-License-Identifier: MIT
// An application of a test's own, as a real process in a bundle: missing_font_probe.cpp is its program, and
// says what it can be told.
#pragma once

#include "support/temp_dir.hpp"

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace vellum::test {

class Application {
public:
    // With the identifier, unless it is empty, and more entries, in its Info.vlist.
    explicit Application(const std::string &identifier, const std::string &more = "");
    ~Application();
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    // The answer to a command; empty from an application that has ended.
    std::string Do(const std::string &command);

    pid_t Process() const { return process_; }

private:
    TempDir folder_;
    pid_t process_ = -1;
    FILE *to_ = nullptr, *from_ = nullptr;
};

} // namespace vellum::test
