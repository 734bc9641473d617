// SPDX-License-Identifier: MIT
// A companion that has a user who takes his time: until another thread of the program has forked. It wants
// all of the fonts, unless the fork was held up.
#include <vellum/glyphary_ui.h>
#include <vellum/values.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

extern "C" CopyConfirmedFontsForAutoActivationRequestFunction CopyConfirmedFontsForAutoActivationRequest;

const ValArray *CopyConfirmedFontsForAutoActivationRequest(const ValDictionary *, const ValArray *fonts,
                                                           bool *remembers) {
    *remembers = false;
    const auto begin = std::chrono::steady_clock::now();
    std::thread([] {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(0);
        ::waitpid(child, nullptr, 0);
    }).join();
    const bool is_prompt = std::chrono::steady_clock::now() - begin < std::chrono::seconds(4);
    return is_prompt ? static_cast<const ValArray *>(ValRetain(fonts)) : nullptr;
}
