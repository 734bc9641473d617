// SPDX-License-Identifier: MIT
// vellum VERB: fonts from the command line. Each verb is a file of its own that adds itself here.
#include "tools/exit_code.hpp"
#include "tools/inspect.hpp"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>

namespace {

using namespace vellum::tool;

int Run(int count, char **arguments) {
    CLI::App app("Fonts: what they are, which there are, which is best.", "vellum");
    app.set_version_flag("--version", "vellum " VELLUM_VERSION);
    app.require_subcommand(1);
    int result = kDone;
    AddInspect(app, result);

    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError &error) {
        return app.exit(error, std::cout, std::cerr) == 0 ? kDone : kUsage;
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
