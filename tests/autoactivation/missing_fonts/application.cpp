// SPDX-License-Identifier: MIT
#include "application.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace vellum::test {

namespace {

namespace fs = std::filesystem;

// The program at another place, so that it finds the bundle there.
std::string PlaceProgram(const std::string &path) {
    std::error_code error;
    fs::create_hard_link(VELLUM_MISSING_FONT_PROBE, path, error);
    if (error) fs::copy_file(VELLUM_MISSING_FONT_PROBE, path);
    return path;
}

} // namespace

Application::Application(const std::string &identifier, const std::string &more) {
    const std::string name =
        identifier.empty() ? "" : "<key>BundleIdentifier</key><string>" + identifier + "</string>";
    folder_.Write("App/Info.vlist", "<vlist><dict>" + name + more + "</dict></vlist>");
    folder_.MakeFolder("App/bin");
    std::string program = PlaceProgram(folder_.File("App/bin/probe"));
    int in[2], out[2];
    EXPECT_EQ(::pipe2(in, O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(out, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    char *arguments[] = {program.data(), nullptr};
    EXPECT_EQ(::posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    to_ = ::fdopen(in[1], "w");
    from_ = ::fdopen(out[0], "r");
}

// It ends with its input.
Application::~Application() {
    std::fclose(to_);
    std::fclose(from_);
    ::waitpid(process_, nullptr, 0);
}

std::string Application::Do(const std::string &command) {
    std::fprintf(to_, "%s\n", command.c_str());
    std::fflush(to_);
    std::string answer;
    for (int c = std::fgetc(from_); c != EOF && c != '\n'; c = std::fgetc(from_))
        answer += static_cast<char>(c);
    return answer;
}

} // namespace vellum::test
