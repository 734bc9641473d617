// SPDX-License-Identifier: MIT
#include "tools/monitor.hpp"

#include "tools/font_set.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <poll.h>

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

// Writes a line for each font that came or went, and how many there were.
class Monitor {
public:
    explicit Monitor(const Options &options) : options_(options) { VLAddFontsChangedObserver(this, Hear); }
    ~Monitor() { VLRemoveFontsChangedObserver(this); }
    Monitor(const Monitor &) = delete;
    Monitor &operator=(const Monitor &) = delete;

    bool HasEnough() const { return options_.count != 0 && shown_ >= options_.count; }

private:
    static void Hear(void *, void *observer, const ValString *, const void *,
                     const ValDictionary *user_info) noexcept {
        try {
            static_cast<Monitor *>(observer)->Show(user_info);
        } catch (...) { // memory is exhausted, or nobody reads: the next change may be shown
        }
    }

    void Show(const ValDictionary *user_info) {
        Show("removed", ArrayAt(user_info, kAvailableFontURLsRemovedKey));
        Show("added", ArrayAt(user_info, kAvailableFontURLsAddedKey));
        std::cout.flush();
    }

    void Show(const char *change, const ValArray *fonts) {
        for (size_t i = 0; i < ValArrayGetCount(fonts) && !HasEnough(); ++i, ++shown_) {
            const std::string url = Bytes(static_cast<const ValString *>(ValArrayGetValue(fonts, i)));
            if (options_.jsonl)
                std::cout << Dump({{"change", change}, {"url", url}}, -1) << '\n';
            else
                std::cout << change << "  " << Printable(url) << '\n';
        }
    }

    const Options &options_;
    size_t shown_ = 0;
};

// Waits for the next notification; false when the time is over.
bool Wait(int descriptor, const Options &options, Clock::time_point begin) {
    int left = -1;
    if (options.timeout > 0) {
        const auto end = begin + std::chrono::duration<double>(options.timeout);
        const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (rest.count() <= 0) return false;
        left = static_cast<int>(std::min<std::chrono::milliseconds::rep>(rest.count() + 1, 1 << 30));
    }
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, left) != 0;
}

int Run(const Options &options) {
    Monitor monitor(options);
    const int descriptor = VLGetNotificationDescriptor();
    if (!ServerRuns()) {
        ReportNoServer("what other programs change is not heard");
        if (options.in.empty()) return kNoServer;
    }
    const FontSet fonts(options.in, 0);
    const auto begin = Clock::now();
    while (!monitor.HasEnough() && std::cout) {
        if (!Wait(descriptor, options, begin)) return kTimeOut;
        VLDeliverNotifications();
    }
    return fonts.Found();
}

} // namespace

void AddMonitor(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("monitor", "Show which fonts come and go, as it happens.");
    verb->add_option("--in", options->in, "register these files and folders for this run first")
        ->type_name("PATH")
        ->allow_extra_args(false);
    verb->add_option("--count", options->count, "end after so many fonts")->type_name("N");
    verb->add_option("--timeout", options->timeout, "end after so many seconds")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber);
    verb->add_flag("--jsonl", options->jsonl, "one JSON object a font and line");
    verb->footer(
        "Without --count and --timeout it runs until it is interrupted.\n\n"
        "Exit codes: 0 so many fonts were shown; 1 some files of --in were refused; 2 wrong usage;\n"
        "3 a font server is needed and none runs; 6 the time is over.\n\nExample:\n"
        "  vellum monitor --jsonl\n");
    verb->callback([options, &result] { result = Run(*options); });
}

} // namespace vellum::tool
