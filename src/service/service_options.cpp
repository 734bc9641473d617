// SPDX-License-Identifier: MIT
#include "service/service_options.hpp"

#include "platform/log/log.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vellum {

namespace {

void PrintLog(void *program, LogLevel, std::string_view text, std::span<const LogField>) {
    std::fprintf(stderr, "%s: %.*s\n", static_cast<const ServiceProgram *>(program)->name,
                 static_cast<int>(text.size()), text.data());
}

} // namespace

std::optional<ServiceOptions> ReadServiceOptions(const ServiceProgram &program, int count, char **arguments,
                                                 int *exit_code) {
    ServiceOptions options;
    const auto end = [exit_code](int printed) {
        *exit_code = printed < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
        return std::nullopt;
    };
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help") return end(std::fputs(program.usage, stdout));
        if (argument == "--version") return end(std::printf("%s %s\n", program.name, VELLUM_VERSION));
        if (argument == "--foreground") {
            options.is_in_foreground = true;
        } else if (program.own_option && argument == program.own_option) {
            options.has_own = true;
        } else {
            std::fprintf(stderr, "%s: unknown argument '%s'; try --help\n", program.name, arguments[i]);
            *exit_code = 2;
            return std::nullopt;
        }
    }
    if (options.is_in_foreground) SetLogSink({PrintLog, const_cast<ServiceProgram *>(&program)});
    return options;
}

} // namespace vellum
