// SPDX-License-Identifier: MIT
#include "beacon/program.hpp"

#include "beacon/crawler_program.hpp"
#include "beacon/search_service.hpp"
#include "ipc/messages/index_rows.hpp"
#include "service/readiness.hpp"
#include "service/service_lock.hpp"
#include "service/service_options.hpp"
#include "service/service_process.hpp"
#include "service/session_bus.hpp"

#include <signal.h>
#include <sys/epoll.h>

#include <cstdio>
#include <exception>

namespace vellum {

namespace {

constexpr char kUsage[] =
    "Usage: vellum-beacon [--foreground] [--help] [--version]\n"
    "\n"
    "Keeps an index of the font files that lie in the user's folders, by their names, so that a font\n"
    "that a document wants can be found wherever it was put. Folders are read when nobody else wants the\n"
    "disk.\n"
    "\n"
    "VELLUM_INDEX_ROOTS lists the folders, with colons between them; so does, a line each, the file\n"
    "vellum/index-roots in the user's configuration, where a line with ! before it leaves a folder out.\n"
    "It ends by SIGTERM. What goes wrong is told to the system's log, and to standard error with\n"
    "--foreground.\n"
    "\n"
    "Example: VELLUM_INDEX_ROOTS=$HOME/Fonts vellum-beacon --foreground\n";

// The service starts its crawler by the option that is none of the user's.
constexpr ServiceProgram kProgram = {"vellum-beacon", kUsage, "--crawl"};

void Serve(bool is_in_foreground) {
    const ServerName name(kBeaconName);
    const TDescriptor lock =
        TakeServiceLock(FolderForService(name), name.Get(), name.Get(), "an index of font files");
    const TDescriptor signals = EndingSignals();
    ::signal(SIGXFSZ, SIG_IGN); // a limit of files is an error as any, for the crawler too
    RaiseDescriptorLimit();
    EventLoop loop;
    TDescriptor listener = InheritedListener();
    if (!listener.IsOpen()) listener = ListenOrThrow(name.Get());
    const SearchService service(loop, std::move(listener), is_in_foreground);
    loop.Watch(signals.Get(), EPOLLIN, [&loop](uint32_t) { loop.Stop(); });
    TakeSessionBusName("org.vellum.Beacon");
    SayThatItIsReady();
    loop.Run();
}

} // namespace

int RunBeacon(int count, char **arguments) {
    int exit_code = 0;
    const auto options = ReadServiceOptions(kProgram, count, arguments, &exit_code);
    if (!options) return exit_code;
    if (options->has_own) return RunCrawler();
    try {
        Serve(options->is_in_foreground);
        return 0;
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "%s: %s\n", kProgram.name, problem.what());
        return 1;
    }
}

} // namespace vellum
