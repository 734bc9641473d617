// SPDX-License-Identifier: MIT
#include "tools/policy.hpp"

#include "tools/exit_code.hpp"
#include "tools/json.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <iostream>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

// The name under which the setting for all applications is kept.
constexpr char kForAll[] = "com.orrery.Laydown";

struct SettingName {
    const char *name;
    VLAutoActivationSetting setting;
    const char *meaning;
};

constexpr SettingName kSettings[] = {
    {"default", kVLAutoActivationDefault, "nothing is set"},
    {"disable", kVLAutoActivationDisable, "missing fonts are not searched"},
    {"enable", kVLAutoActivationEnable, "missing fonts are found and activated"},
    {"ask", kVLAutoActivationAsk, "missing fonts are found, and activated when you say so"},
};

const SettingName &NameOf(VLAutoActivationSetting setting) {
    return kSettings[setting < std::size(kSettings) ? setting : 0];
}

struct Options {
    std::string application; // empty: all
    std::string setting;
    bool json = false;
    bool dry_run = false;
};

Ref<const ValString> ApplicationOf(const Options &options) {
    const std::string &name = options.application.empty() ? kForAll : options.application;
    auto application = Adopt(ValStringCreateWithUTF8(name.data(), name.size()));
    if (!application) throw std::bad_alloc();
    return application;
}

void Show(const Options &options, const SettingName &setting) {
    const bool is_for_all = options.application.empty();
    if (options.json) {
        const Json document = {{"schema", {{"name", "vellum.policy"}, {"version", 1}}},
                               {"application", is_for_all ? Json() : Json(options.application)},
                               {"setting", setting.name}};
        std::cout << Dump(document, 2) << '\n';
        return;
    }
    std::cout << (is_for_all ? "all applications" : Printable(options.application)) << ": " << setting.name
              << " (" << setting.meaning << ")\n";
}

int Get(const Options &options) {
    Show(options, NameOf(VLGetAutoActivationSetting(ApplicationOf(options).Get())));
    return kDone;
}

// The library keeps the setting or leaves it as it was: reading it again tells.
int Set(const Options &options, const SettingName &wanted) {
    const auto application = ApplicationOf(options);
    if (!options.dry_run) {
        VLSetAutoActivationSetting(application.Get(), wanted.setting);
        if (VLGetAutoActivationSetting(application.Get()) != wanted.setting) {
            std::cerr
                << "vellum: the setting could not be kept, and the system's log says why; "
                   "try whether the folder vellum in $XDG_CONFIG_HOME (or ~/.config) can be written to\n";
            return kRefused;
        }
    }
    Show(options, wanted);
    return kDone;
}

int SetByName(const Options &options) {
    for (const SettingName &setting : kSettings) {
        if (options.setting == setting.name) return Set(options, setting);
    }
    return kUsage; // not reached: the option's check knows the names
}

// Text that a setting can be kept under.
CLI::Validator IsApplication() {
    return CLI::Validator(
        [](std::string &text) -> std::string {
            if (text.empty()) return "an application's identifier is not empty; try org.example.App";
            if (text.size() > 255) return "an application's identifier is at most 255 bytes long";
            if (!Adopt(ValStringCreateWithUTF8(text.data(), text.size())))
                return "an application's identifier is UTF-8";
            for (const char c : text) {
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
                    return "an application's identifier has no control characters";
            }
            return {};
        },
        "");
}

CLI::App *AddVerb(CLI::App &policy, const char *name, const char *what,
                  const std::shared_ptr<Options> &options) {
    CLI::App *verb = policy.add_subcommand(name, what);
    verb->add_option("--app", options->application, "of this application alone, by its identifier")
        ->type_name("ID")
        ->check(IsApplication());
    verb->add_flag("--json", options->json, "one JSON document");
    return verb;
}

void AddFooter(CLI::App &verb, const std::string &example) {
    verb.footer(
        "Without --app it is the setting for all applications; an application's own goes before it.\n\n"
        "Exit codes: 0 done; 2 wrong usage; 4 the setting could not be kept.\n\nExample:\n  " +
        example + "\n");
}

} // namespace

void AddPolicy(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *policy = app.add_subcommand("policy", "Say whether missing fonts are found and activated.");
    policy->require_subcommand(1);
    AddFooter(*policy, "vellum policy set ask");

    CLI::App *get = AddVerb(*policy, "get", "Show what is set.", options);
    AddFooter(*get, "vellum policy get --app org.example.App");
    get->callback([options, &result] { result = Get(*options); });

    CLI::App *set = AddVerb(*policy, "set", "Set it: disable, enable or ask.", options);
    set->add_option("SETTING", options->setting, "disable, enable or ask")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"disable", "enable", "ask"}));
    set->add_flag("--dry-run", options->dry_run, "show what would be set, and set nothing");
    AddFooter(*set, "vellum policy set disable --app org.example.App");
    set->callback([options, &result] { result = SetByName(*options); });

    CLI::App *reset = AddVerb(*policy, "reset", "Take away what was set.", options);
    reset->add_flag("--dry-run", options->dry_run, "show what would be, and take nothing away");
    AddFooter(*reset, "vellum policy reset --app org.example.App");
    reset->callback([options, &result] { result = Set(*options, kSettings[0]); });
}

} // namespace vellum::tool
