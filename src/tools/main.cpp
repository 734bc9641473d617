// SPDX-License-Identifier: MIT
// vellum VERB: fonts from the command line. Each verb is a file of its own that adds itself here.
#include "tools/activate.hpp"
#include "tools/change.hpp"
#include "tools/coverage.hpp"
#include "tools/doctor.hpp"
#include "tools/exit_code.hpp"
#include "tools/fontinfo.hpp"
#include "tools/index_verb.hpp"
#include "tools/inspect.hpp"
#include "tools/list.hpp"
#include "tools/match.hpp"
#include "tools/monitor.hpp"
#include "tools/policy.hpp"
#include "tools/provider.hpp"
#include "tools/runs.hpp"
#include "tools/server.hpp"
#include "tools/server_verb.hpp"
#include "tools/status.hpp"
#include "tools/text.hpp"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>

namespace {

using namespace vellum::tool;

// The first argument when it should be a verb and is none.
const char *UnknownVerb(const CLI::App &app, int count, char **arguments) {
    if (count < 2 || arguments[1][0] == '-') return nullptr;
    const auto is_verb = [&](const CLI::App *verb) { return verb->check_name(arguments[1]); };
    return app.get_subcommands(is_verb).empty() ? arguments[1] : nullptr;
}

int Parse(CLI::App &app, int count, char **arguments) {
    if (const char *verb = UnknownVerb(app, count, arguments)) {
        std::cerr << "vellum: there is no verb '" << Printable(verb) << "'; vellum --help lists them\n";
        return kUsage;
    }
    try {
        app.parse(count, arguments);
        return kDone;
    } catch (const CLI::ParseError &error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? kDone : kUsage;
    }
}

int Run(int count, char **arguments) {
    CLI::App app("What fonts are, which there are, which is best.", "vellum");
    app.set_version_flag("--version", "vellum " VELLUM_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Example:\n  vellum inspect ~/.local/share/fonts\n\n'vellum VERB --help' tells more of a verb.\n");
    int result = kDone;
    AddServerFlag(app, count, arguments);
    AddList(app, result);
    AddMatch(app, result);
    AddText(app, result);
    AddInspect(app, result);
    AddCoverage(app, result);
    AddFontInfo(app, result);
    AddChanges(app, result);
    AddActivate(app, result);
    AddMonitor(app, result);
    AddServer(app, result);
    AddProvider(app, result);
    AddPolicy(app, result);
    AddIndex(app, result);
    AddStatus(app, result);
    AddDoctor(app, result);

    DoWithoutServerWhereThereIsNone();
    if (const int misuse = Parse(app, count, arguments)) return misuse;
    if (!std::cout.flush()) {
        std::cerr << "vellum: the result could not be written\n";
        return kNothingFound;
    }
    return result;
}

} // namespace

int main(int count, char **arguments) {
    try {
        return Run(count, arguments);
    } catch (const std::bad_alloc &) {
        std::cerr << "vellum: memory is exhausted\n";
    } catch (const std::exception &error) {
        std::cerr << "vellum: " << error.what() << '\n';
    }
    return kNothingFound;
}
