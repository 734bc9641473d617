// SPDX-License-Identifier: MIT
#include "platform/app/preferences.hpp"

#include "platform/app/preferences_file.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"

#include <cerrno>
#include <cstring>
#include <new>

namespace vellum {

namespace {

// Empty when no variable says where. A program that runs with more rights than its caller sees neither.
std::string ConfigurationFolder() {
    const char *config = GetEnvironment("XDG_CONFIG_HOME");
    if (config && *config == '/') return std::string(config) + "/vellum";
    const char *home = GetEnvironment("HOME");
    return home && *home == '/' ? std::string(home) + "/.config/vellum" : std::string();
}

std::string PathOf(std::string_view domain) {
    const std::string folder = ConfigurationFolder();
    if (folder.empty() || domain.empty() || domain.find('/') != std::string_view::npos) return {};
    return folder + "/" + std::string(domain) + ".vlist";
}

class SetsValue final : public PreferencesChange {
public:
    SetsValue(const ValString *key, const void *value) noexcept : key_(key), value_(value) {}

    void Apply(ValDictionary *values) const override {
        if (!value_)
            ValDictionaryRemoveValue(values, key_);
        else if (!ValDictionarySetValue(values, key_, value_))
            throw std::bad_alloc();
    }

private:
    const ValString *key_;
    const void *value_;
};

} // namespace

TPreferences::TPreferences(std::string_view domain) : path_(PathOf(domain)) {}

Ref<const void> TPreferences::CopyValue(const ValString *key) const {
    const PreferencesContent content = ReadPreferences(path_);
    return Ref<const void>::Retain(ValDictionaryGetValue(content.values.Get(), key));
}

int TPreferences::Change(const PreferencesChange &change) const {
    const int error = path_.empty() ? ENOENT : ChangeLocked(change);
    if (error)
        Log(LogLevel::kError, "The preferences <%s> can't be changed (%d -- %s)", path_.c_str(), error,
            std::strerror(error));
    return error;
}

int TPreferences::SetValue(const ValString *key, const void *value) const {
    return Change(SetsValue(key, value));
}

int TPreferences::ChangeLocked(const PreferencesChange &change) const {
    PreferencesLock lock;
    if (const int error = lock.Take(path_)) return error;
    const PreferencesContent content = ReadPreferences(path_);
    if (content.error) return content.error;
    const auto values = content.values ? Adopt(ValDictionaryCreateMutableCopy(content.values.Get()))
                                       : Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
    if (!values) throw std::bad_alloc();
    change.Apply(values.Get());
    if (content.values && ValEqual(values.Get(), content.values.Get())) return 0;
    return WritePreferences(path_, values.Get(), content.is_broken);
}

} // namespace vellum
