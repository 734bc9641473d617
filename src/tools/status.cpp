// SPDX-License-Identifier: MIT
#include "tools/status.hpp"

#include "tools/exit_code.hpp"
#include "tools/json.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <iostream>
#include <memory>

namespace vellum::tool {

namespace {

size_t CountOf(const Ref<const ValArray> &array) {
    return ValArrayGetCount(array.Get());
}

struct Status {
    bool runs = ServerRuns();
    int32_t process = VLGetFontServerProcess();
    size_t fonts = CountOf(Adopt(VLCopyAvailableFontURLs(kVLScopeUser)));
    size_t families = CountOf(Adopt(VLCopyAvailableFamilyNames(kVLScopeUser)));
    size_t providers = runs ? CountOf(Adopt(VLCopyFontProviderRemotePorts())) : 0;
};

Json ToJson(const Status &status) {
    return {
        {"schema", {{"name", "vellum.status"}, {"version", 1}}},
        {"version", VELLUM_VERSION},
        {"server", {{"runs", status.runs}, {"process", status.process ? Json(status.process) : Json()}}},
        {"fonts", status.fonts},
        {"families", status.families},
        {"providers", status.providers}};
}

void Show(const Status &status) {
    std::cout << "vellum " VELLUM_VERSION "\n";
    if (status.runs && status.process)
        std::cout << "font server  runs, as process " << status.process << '\n';
    else
        std::cout << "font server  "
                  << (status.runs ? "starts when it is asked\n"
                                  : "does not run: each program uses the machine's fonts\n");
    std::cout << "fonts        " << Counted(status.fonts, "font", "fonts") << " in "
              << Counted(status.families, "family", "families") << '\n';
    if (status.providers) std::cout << "providers    " << Grouped(status.providers) << '\n';
}

} // namespace

void AddStatus(CLI::App &app, int &result) {
    auto json = std::make_shared<bool>(false);
    CLI::App *verb = app.add_subcommand("status", "Show whether a font server runs, and what there is.");
    verb->add_flag("--json", *json, "one JSON document");
    verb->footer("Exit codes: 0 always; 2 wrong usage. 'vellum doctor' says what is wrong.\n\n"
                 "Example:\n  vellum status\n");
    verb->callback([json, &result] {
        const Status status;
        if (*json)
            std::cout << Dump(ToJson(status), 2) << '\n';
        else
            Show(status);
        result = kDone;
    });
}

} // namespace vellum::tool
