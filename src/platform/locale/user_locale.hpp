// SPDX-License-Identifier: MIT
// The languages of the user and of the machine, as the environment and the machine's configuration
// have them.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vellum {

// What the languages are learned from; all are borrowed, and null is unset.
struct LocaleEnvironment {
    const char *all = nullptr;      // LC_ALL
    const char *messages = nullptr; // LC_MESSAGES
    const char *lang = nullptr;     // LANG
    const char *language = nullptr; // LANGUAGE

    // Of the machine: the first of these that is there and has a LANG is believed.
    std::span<const char *const> configuration_files = {};
};

// Nothing of it changes once it is made. All identifiers are canonical.
class TUserLocale {
public:
    // Throws std::bad_alloc when memory is exhausted.
    explicit TUserLocale(const LocaleEnvironment &environment);

    // The user's: the first of LC_ALL, LC_MESSAGES and LANG that is set to something, else "en".
    const std::string &GetCurrentLocale() const noexcept { return current_; }

    // The machine's: "en" where nothing is configured.
    const std::string &GetSystemLocale() const noexcept { return system_; }

    // The languages that the user wants, the best first: those that LANGUAGE lists, unless the current
    // locale is "C" or "POSIX", which no list changes; else the current one. Never empty, each once.
    const std::vector<std::string> &GetPreferredLanguages() const noexcept { return preferred_; }

private:
    std::string current_;
    std::string system_;
    std::vector<std::string> preferred_;
};

// Those of this process, never null. Read by the first call that can read all of them, and then the same
// for ever; until then each call's own. Throws std::bad_alloc when memory is exhausted.
std::shared_ptr<const TUserLocale> UserLocale();

} // namespace vellum
