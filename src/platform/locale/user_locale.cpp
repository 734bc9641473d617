// SPDX-License-Identifier: MIT
#include "platform/locale/user_locale.hpp"

#include "platform/fs/file.hpp"
#include "platform/locale/locale_names.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/process/process.hpp"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string_view>

namespace vellum {
namespace {

// A configuration that is longer is no list of a few variables.
constexpr size_t kMaximumConfiguration = 16384;
// More languages than anyone reads.
constexpr size_t kMaximumPreferred = 32;
constexpr std::string_view kDefaultLocale = "en";
constexpr std::string_view kBlank = " \t\r";
constexpr const char *kConfigurationFiles[] = {"/etc/locale.conf", "/etc/default/locale"};

std::string_view ViewOf(const char *text) noexcept {
    return text ? std::string_view(text) : std::string_view();
}

std::string_view TextOf(const TBuffer &buffer) noexcept {
    return {reinterpret_cast<const char *>(buffer.View().data()), buffer.Size()};
}

std::string_view TrimBlanks(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
    return text.substr(0, text.find_last_not_of(kBlank) + 1);
}

std::string_view Unquoted(std::string_view value) noexcept {
    const bool is_quoted = value.size() >= 2 && value.front() == value.back() &&
                           (value.front() == '"' || value.front() == '\'');
    return is_quoted ? value.substr(1, value.size() - 2) : value;
}

// The value of a line "LANG=value"; empty for other lines, as for those that are commented out.
std::string_view LangOfLine(std::string_view line) noexcept {
    constexpr std::string_view kKey = "LANG=";
    constexpr std::string_view kExport = "export ";
    line = TrimBlanks(line);
    if (line.starts_with(kExport)) line = TrimBlanks(line.substr(kExport.size()));
    return line.starts_with(kKey) ? Unquoted(TrimBlanks(line.substr(kKey.size()))) : std::string_view();
}

// What is set later holds, as in the shell that reads such files too.
std::string_view LangOfConfiguration(std::string_view configuration) noexcept {
    std::string_view lang;
    while (!configuration.empty()) {
        const size_t end = std::min(configuration.find('\n'), configuration.size());
        if (const auto found = LangOfLine(configuration.substr(0, end)); !found.empty()) lang = found;
        configuration.remove_prefix(std::min(end + 1, configuration.size()));
    }
    return lang;
}

std::string CanonicalOrDefault(std::string_view locale) {
    std::string canonical = CanonicalLanguageIdentifier(locale);
    return canonical.empty() ? std::string(kDefaultLocale) : canonical;
}

std::string FindSystemLocale(std::span<const char *const> files) {
    for (const char *file : files) {
        const auto configuration = ReadWholeFile(file, kMaximumConfiguration);
        const std::string_view lang = configuration ? LangOfConfiguration(TextOf(*configuration)) : "";
        if (!lang.empty()) return CanonicalOrDefault(lang);
    }
    return std::string(kDefaultLocale);
}

// The locale as it is spelled, for "C" and "en" are one language but not treated alike.
std::string_view ChooseLocale(const LocaleEnvironment &environment) noexcept {
    for (const char *locale : {environment.all, environment.messages, environment.lang}) {
        if (!ViewOf(locale).empty()) return locale;
    }
    return "C";
}

// "C.UTF-8" too: it is "C" but for its encoding.
bool IsUntranslated(std::string_view locale) noexcept {
    const std::string_view name = locale.substr(0, locale.find_first_of(".@"));
    return name == "C" || name == "POSIX";
}

std::vector<std::string> ParseLanguages(std::string_view list) {
    std::vector<std::string> languages;
    while (!list.empty() && languages.size() < kMaximumPreferred) {
        const size_t end = std::min(list.find(':'), list.size());
        std::string language = CanonicalLanguageIdentifier(list.substr(0, end));
        if (!language.empty() && std::ranges::count(languages, language) == 0)
            languages.push_back(std::move(language));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return languages;
}

constinit std::atomic<const TUserLocale *> sUserLocale{nullptr};

std::unique_ptr<const TUserLocale> ReadUserLocale() {
    return std::make_unique<const TUserLocale>(
        LocaleEnvironment{GetEnvironment("LC_ALL"), GetEnvironment("LC_MESSAGES"), GetEnvironment("LANG"),
                          GetEnvironment("LANGUAGE"), kConfigurationFiles});
}

} // namespace

TUserLocale::TUserLocale(const LocaleEnvironment &environment)
    : system_(FindSystemLocale(environment.configuration_files)) {
    const std::string_view locale = ChooseLocale(environment);
    current_ = CanonicalOrDefault(locale);
    if (!IsUntranslated(locale)) preferred_ = ParseLanguages(ViewOf(environment.language));
    if (preferred_.empty()) preferred_.push_back(current_);
}

std::shared_ptr<const TUserLocale> UserLocale() {
    const auto for_ever = [](const TUserLocale *locale) {
        return std::shared_ptr<const TUserLocale>(std::shared_ptr<const void>(), locale);
    };
    if (const TUserLocale *known = sUserLocale.load(std::memory_order_acquire)) return for_ever(known);
    const uint32_t failures = tPassingFailures;
    auto fresh = ReadUserLocale();
    if (failures != tPassingFailures)
        return fresh; // the machine's may be missing: it is read again next time
    const TUserLocale *current = nullptr;
    if (sUserLocale.compare_exchange_strong(current, fresh.get(), std::memory_order_acq_rel))
        return for_ever(fresh.release()); // never torn down: programs ask until they end
    return for_ever(current);
}

} // namespace vellum
