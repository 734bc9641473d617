// SPDX-License-Identifier: MIT
#include "tools/monitor.hpp"

#include "tools/arguments.hpp"
#include "tools/change_lines.hpp"
#include "tools/font_set.hpp"
#include "tools/server.hpp"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

using Clock = std::chrono::steady_clock;

struct Options {
    std::vector<std::string> in;
    size_t count = 0;   // of fonts; 0: without end
    double timeout = 0; // in seconds; 0: without end
    bool jsonl = false;
};

// What the waiting ended with.
enum class Event { kNews, kNoNews, kNobodyReads };

// The longest wait that the system takes at once; what is longer is waited for in pieces.
constexpr double kLongestWait = 1 << 30; // milliseconds

Event WaitForNews(int descriptor, int milliseconds) {
    constexpr short kGone = POLLERR | POLLHUP | POLLNVAL;
    pollfd entries[] = {{descriptor, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    const int ready = ::poll(entries, std::size(entries), milliseconds);
    if (ready > 0 && (entries[1].revents & kGone)) return Event::kNobodyReads;
    return ready == 0 ? Event::kNoNews : Event::kNews;
}

// Shows what is heard until it is enough, the time is over, or nothing more can come.
class Monitor {
public:
    explicit Monitor(const Options &options)
        : options_(options),
          lines_(std::cout, options.jsonl ? ChangeLines::Form::kJson : ChangeLines::Form::kText,
                 options.count) {}

    // Without a server only the fonts of this run are heard of.
    int Run(int descriptor, bool is_alone) {
        const FontSet fonts({options_.in, {}}, 0);
        while (true) {
            VLDeliverNotifications();
            if (lines_.HasEnough() || !std::cout) return fonts.Found();
            if (TimeLeft() == 0) return kTimeOut;
            const bool is_last = is_alone && IsAllThatComes();
            const Event event = WaitForNews(descriptor, is_last ? 0 : TimeLeft());
            if (event == Event::kNobodyReads) return fonts.Found();
            if (event == Event::kNoNews && is_last)
                return lines_.Count() == 0 ? fonts.NotFound() : kNoServer;
        }
    }

private:
    // Of a run alone: a time-out says how long is waited all the same, unless there is no font at all.
    bool IsAllThatComes() const { return options_.timeout == 0 || lines_.Count() == 0; }

    // In milliseconds, as poll wants it: negative for all eternity.
    int TimeLeft() const {
        if (options_.timeout == 0) return -1;
        const std::chrono::duration<double, std::milli> passed = Clock::now() - begin_;
        const double left = options_.timeout * 1000 - passed.count();
        return left <= 0 ? 0 : static_cast<int>(std::min(left + 1, kLongestWait));
    }

    const Options &options_;
    const Clock::time_point begin_ = Clock::now();
    ChangeLines lines_;
};

int Run(const Options &options) {
    const int descriptor = VLGetNotificationDescriptor();
    if (descriptor < 0) {
        std::cerr << "vellum: changes cannot be heard, for no more files can be opened; "
                     "try a higher limit (ulimit -n)\n";
        return kNothingFound;
    }
    Monitor monitor(options);
    const bool is_alone = !ServerRuns();
    if (is_alone) ReportNoServer("what other programs change is not heard");
    if (is_alone && options.in.empty()) return kNoServer;
    return monitor.Run(descriptor, is_alone);
}

} // namespace

void AddMonitor(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("monitor", "Show which fonts come and go, as it happens.");
    verb->add_option("--in", options->in, "register these files and folders for this run first")
        ->type_name("PATH")
        ->check(IsPath())
        ->allow_extra_args(false);
    verb->add_option("--count", options->count, "end after so many fonts")
        ->type_name("N")
        ->check(IsCount());
    verb->add_option("--timeout", options->timeout, "end after so many seconds")
        ->type_name("SECONDS")
        ->check(IsDuration());
    verb->add_flag("--jsonl", options->jsonl, "one JSON object a font and line");
    verb->footer(
        "Without --count and --timeout it runs until it is interrupted, or nobody reads any more. Where "
        "no\n"
        "font server runs, only the fonts of --in are heard of: it ends when they were shown, or with\n"
        "--timeout when the time is over.\n\n"
        "Exit codes: 0 so many fonts were shown, or nobody reads any more; 1 some files of --in were\n"
        "refused, or none was found; 2 wrong usage; 3 a font server is needed and none runs; 4 a file of\n"
        "--in may not be read; 5 none of --in is a font; 6 the time is over.\n\nExample:\n"
        "  vellum monitor --jsonl\n");
    verb->callback([options, &result] { result = Run(*options); });
}

} // namespace vellum::tool
