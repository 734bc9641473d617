// SPDX-License-Identifier: MIT
#include "beacon/program.hpp"

#include "beacon/crawler_program.hpp"
#include "beacon/search_service.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/log/log.hpp"
#include "platform/port/service_address.hpp"
#include "service/readiness.hpp"
#include "service/service_lock.hpp"
#include "service/service_process.hpp"
#include "service/session_bus.hpp"

#include <signal.h>
#include <sys/epoll.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vellum {

namespace {

constexpr char kUsage[] =
    "Usage: vellum-beacon [--foreground] [--help] [--version]\n"
    "\n"
    "Keeps an index of the font files that lie in the user's folders, by their names, so that a font that "
    "a\n"
    "document wants can be found wherever it was put. Folders are read when nobody else wants the disk.\n"
    "\n"
    "VELLUM_INDEX_ROOTS lists the folders, with colons between them; so does, a line each, the file\n"
    "vellum/index-roots in the user's configuration, where a line with ! before it leaves a folder out.\n"
    "It ends by SIGTERM. What goes wrong is told to the system's log, and to standard error with "
    "--foreground.\n"
    "\n"
    "Example: VELLUM_INDEX_ROOTS=$HOME/Fonts vellum-beacon --foreground\n";

void PrintLog(void *, LogLevel, std::string_view text, std::span<const LogField>) {
    std::fprintf(stderr, "vellum-beacon: %.*s\n", static_cast<int>(text.size()), text.data());
}

void Serve(bool is_in_foreground) {
    const std::string folder = ServicesFolder(IfMissing::kMake), name = ServerName(kBeaconName).Get();
    if (folder.empty())
        throw std::runtime_error("there is no folder for services that is this user's alone");
    if (name.empty()) throw std::runtime_error("VL_SERVICE_NAME_SUFFIX makes no name for a service");
    const TDescriptor lock = TakeServiceLock(folder, name, name, "an index of font files");
    const TDescriptor signals = EndingSignals();
    ::signal(SIGXFSZ, SIG_IGN); // a limit of files is an error as any, for the crawler too
    RaiseDescriptorLimit();
    EventLoop loop;
    TDescriptor listener = InheritedListener();
    if (!listener.IsOpen()) listener = ListenOrThrow(name);
    const SearchService service(loop, std::move(listener), is_in_foreground);
    loop.Watch(signals.Get(), EPOLLIN, [&loop](uint32_t) { loop.Stop(); });
    TakeSessionBusName("org.vellum.Beacon");
    SayThatItIsReady();
    loop.Run();
}

} // namespace

int RunBeacon(int count, char **arguments) {
    bool is_in_foreground = false, is_crawler = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help") return std::fputs(kUsage, stdout) < 0;
        if (argument == "--version") return std::printf("vellum-beacon %s\n", VELLUM_VERSION) < 0;
        if (argument == "--foreground")
            is_in_foreground = true;
        else if (argument == "--crawl") // how the service starts its crawler
            is_crawler = true;
        else
            return std::fprintf(stderr, "vellum-beacon: unknown argument '%s'; try --help\n", arguments[i]),
                   2;
    }
    if (is_in_foreground) SetLogSink({PrintLog, nullptr});
    if (is_crawler) return RunCrawler();
    try {
        Serve(is_in_foreground);
        return 0;
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "vellum-beacon: %s\n", problem.what());
        return 1;
    }
}

} // namespace vellum
