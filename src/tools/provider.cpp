// SPDX-License-Identifier: MIT
#include "tools/provider.hpp"

#include "tools/arguments.hpp"
#include "tools/font_set.hpp"
#include "tools/json.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <poll.h>

#include <cerrno>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

// ---- provider run ----

struct RunOptions {
    std::vector<std::string> paths;
    size_t count = 0; // of requests; 0: without end
};

struct Provider {
    const RunOptions &options;
    size_t answered = 0;

    bool HasEnough() const { return options.count != 0 && answered >= options.count; }

    // The fonts of this run that fit what another process asks for.
    static const void *Answer(void *context, const ValDictionary *attributes, int32_t process) noexcept {
        auto *self = static_cast<Provider *>(context);
        const ValArray *fonts = VLCopyFontsWithProperties(attributes, kVLScopeProcess, kActivateNothing);
        ++self->answered;
        try {
            std::cout << "process " << process << " was given "
                      << Counted(ValArrayGetCount(fonts), "font", "fonts") << std::endl;
        } catch (...) { // nobody reads: that is no reason not to answer
        }
        return fonts;
    }
};

int RunProvider(const RunOptions &options) {
    const FontSet fonts({options.paths, {}});
    const auto registered = Adopt(VLCopyAvailableFontURLs(kVLScopeProcess));
    if (ValArrayGetCount(registered.Get()) == 0) return fonts.NotFound();
    if (!ServerRuns()) {
        ReportNoServer("programs find providers through it; 'vellum server start' starts one");
        return kNoServer;
    }
    Provider provider = {options};
    const auto port = Adopt(VLCreateFontProviderLocalPort(Provider::Answer, &provider, nullptr));
    const int descriptor = VLGetNotificationDescriptor();
    if (!port || descriptor < 0) {
        std::cerr << "vellum: no port can be opened; is there a folder for sockets (XDG_RUNTIME_DIR)?\n";
        return kNothingFound;
    }
    std::cout << "offering " << Counted(ValArrayGetCount(registered.Get()), "font", "fonts")
              << ", until interrupted" << std::endl;
    while (!provider.HasEnough()) {
        pollfd ready = {descriptor, POLLIN, 0};
        if (::poll(&ready, 1, -1) < 0 && errno != EINTR) return kNothingFound;
        VLDeliverNotifications();
    }
    return fonts.Found();
}

// ---- provider list ----

int List(bool json) {
    const auto ports = Adopt(VLCopyFontProviderRemotePorts());
    Json providers = Json::array();
    for (size_t i = 0; i < ValArrayGetCount(ports.Get()); ++i) {
        const auto *port = static_cast<const VLMessagePort *>(ValArrayGetValue(ports.Get(), i));
        const auto name = Adopt(VLCopyMessagePortName(port));
        providers.push_back(
            {{"process", VLGetMessagePortProcess(port)}, {"port", Text(name.Get()).value_or("")}});
    }
    if (json) {
        std::cout << Dump({{"schema", {{"name", "vellum.providers"}, {"version", 1}}},
                           {"providers", providers}},
                          2)
                  << '\n';
    } else {
        for (const Json &provider : providers)
            std::cout << "process " << provider.at("process") << "  "
                      << provider.at("port").get<std::string>() << '\n';
    }
    if (!ServerRuns()) {
        ReportNoServer("nobody can announce a provider");
        return kNoServer;
    }
    if (providers.empty()) std::cerr << "vellum: nobody provides fonts\n";
    return providers.empty() ? kNothingFound : kDone;
}

void AddRun(CLI::App &verb, int &result) {
    auto options = std::make_shared<RunOptions>();
    CLI::App *run = verb.add_subcommand("run", "offer the fonts of files and folders, until interrupted");
    run->add_option("PATH", options->paths, "font files, or folders to look through")
        ->required()
        ->check(IsPath());
    run->add_option("--count", options->count, "end after so many requests")
        ->type_name("N")
        ->check(IsCount());
    run->callback([options, &result] { result = RunProvider(*options); });
}

void AddList(CLI::App &verb, int &result) {
    auto json = std::make_shared<bool>(false);
    CLI::App *list = verb.add_subcommand("list", "show who offers fonts");
    list->add_flag("--json", *json, "one JSON document");
    list->callback([json, &result] { result = List(*json); });
}

} // namespace

void AddProvider(CLI::App &app, int &result) {
    CLI::App *verb = app.add_subcommand("provider", "Offer fonts to programs that lack them.");
    verb->require_subcommand(1);
    AddRun(*verb, result);
    AddList(*verb, result);
    verb->footer(
        "A program that lacks a font asks the providers before it looks elsewhere. The fonts stay\n"
        "where they are, and are registered for the program that asks.\n\n"
        "Exit codes: 0 done; 1 some files were refused, or nobody provides fonts; 2 wrong usage;\n"
        "3 no font server runs; 4 a file may not be read; 5 what was named is no font.\n\n"
        "Example:\n  vellum provider run ~/typefaces\n");
}

} // namespace vellum::tool
