// SPDX-License-Identifier: MIT
// A process that is asked whether it may activate fonts: in a bundle of a test's own it is that
// application. Each argument is a command, done in order; answers go to standard output, a line each.
//
//   can              whether fonts may be activated: "no", "yes" or "ask"
//   identifier       the application's identifier
//   all=N, own=N     sets the setting for all, or its own, to N
//   own?             its own setting
//   disable-search   as if searching had failed too often
//   daemon=0, =1     what its own GetApplicationIsDaemon answers from now on, in the build that has one
#include "autoactivation/auto_activation_manager.hpp"
#include "autoactivation/auto_activation_verifier.hpp"
#include "platform/app/application.hpp"
#include "platform/val/string.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace vellum;

namespace {

bool sIsDaemon = false;

const char *Can() {
    bool asks = true;
    if (!TAutoActivationVerifier::CanAutoActivateFonts(asks)) return "no";
    return asks ? "ask" : "yes";
}

bool Do(const std::string &command) {
    const auto setting = static_cast<VLAutoActivationSetting>(command.back() - '0');
    if (command == "can")
        std::puts(Can());
    else if (command == "identifier")
        std::puts(std::string(Text(CopyApplicationIdentifier())).c_str());
    else if (command.starts_with("all="))
        TAutoActivationManager::SetAutoActivationSetting(setting);
    else if (command.starts_with("own="))
        TAutoActivationManager::SetAutoActivationSetting(nullptr, setting);
    else if (command == "own?")
        std::printf("%u\n", TAutoActivationManager::GetAutoActivationSetting(nullptr));
    else if (command == "disable-search")
        TAutoActivationManager::sBeaconQueriesDisabled = true;
    else if (command.starts_with("daemon="))
        sIsDaemon = setting != 0;
    else
        return false;
    return true;
}

} // namespace

#ifdef PROBE_SAYS_WHETHER_IT_IS_A_DAEMON
bool GetApplicationIsDaemon() noexcept {
    return sIsDaemon;
}
#endif

int main(int count, char **arguments) {
    for (int i = 1; i < count; ++i) {
        if (!Do(arguments[i])) return 2;
    }
    return 0;
}
