// SPDX-License-Identifier: MIT
#include "server/background.hpp"

#include "platform/fs/file.hpp"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>

namespace vellum {

namespace {

[[noreturn]] void Throw(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Keeps nothing of the starter's but the socket for the report, which gets the first free number. Files and
// folders of the starter's are not held either.
TDescriptor LeaveAll(TDescriptor report) {
    constexpr int kFirst = STDERR_FILENO + 1;
    report = TDescriptor(::fcntl(report.Get(), F_DUPFD_CLOEXEC, kFirst)); // streams may have been closed
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nothing, standard);
    if (report.Get() != kFirst) report = TDescriptor(::dup3(report.Get(), kFirst, O_CLOEXEC));
    ::close_range(kFirst + 1, ~0u, 0);
    if (::chdir("/") != 0) return report; // it stays where it is
    return report;
}

// The report as bytes: the code, then the line. Whoever is not there any more does not wait for it.
void Send(int socket, int exit_code, std::string_view line) {
    const std::string text = static_cast<char>(exit_code) + std::string(line);
    ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
}

std::string ReceiveAll(int socket) {
    std::string text;
    std::array<char, 512> buffer;
    for (;;) {
        const ssize_t size = ::recv(socket, buffer.data(), buffer.size(), 0);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return text;
        text.append(buffer.data(), static_cast<size_t>(size));
    }
}

int WaitForReport(int socket) {
    const std::string text = ReceiveAll(socket);
    if (text.empty()) {
        ReportHere(EXIT_FAILURE, "vellum-fontserver: it has ended before it could answer");
        return EXIT_FAILURE;
    }
    const int exit_code = static_cast<unsigned char>(text.front());
    ReportHere(exit_code, std::string_view(text).substr(1));
    return exit_code;
}

int WorkAndReport(TDescriptor socket, const std::function<int(const StartReport &)> &work) {
    const auto report = std::make_shared<TDescriptor>(LeaveAll(std::move(socket)));
    return work([report](int exit_code, std::string_view line) {
        Send(report->Get(), exit_code, line);
        *report = TDescriptor(); // whoever waits waits for the end of it
    });
}

} // namespace

void ReportHere(int exit_code, std::string_view line) {
    if (line.empty()) return;
    std::FILE *stream = exit_code == EXIT_SUCCESS ? stdout : stderr;
    std::fprintf(stream, "%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(stream);
}

// A leader of a session gets the next terminal that it opens; its child does not.
int WorkInBackground(const std::function<int(const StartReport &report)> &work) {
    std::array<int, 2> ends;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) Throw("no socket");
    TDescriptor here(ends[0]), there(ends[1]);
    std::fflush(nullptr); // what is not written yet would be written twice
    const pid_t leader = ::fork();
    if (leader < 0) Throw("no process can be started");
    if (leader == 0) {
        ::setsid();
        if (const pid_t process = ::fork(); process != 0)
            ::_exit(process < 0 ? EXIT_FAILURE : EXIT_SUCCESS);
        here = TDescriptor();
        return WorkAndReport(std::move(there), work);
    }
    there = TDescriptor();
    while (::waitpid(leader, nullptr, 0) < 0 && errno == EINTR) {
    }
    return WaitForReport(here.Get());
}

} // namespace vellum
