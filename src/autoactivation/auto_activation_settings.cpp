// SPDX-License-Identifier: MIT
// What the user set: for all applications, and for single ones.
#include "autoactivation/auto_activation_manager.hpp"
#include "platform/app/application.hpp"
#include "platform/app/preferences.hpp"
#include "platform/log/log.hpp"
#include "platform/val/static_string.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

namespace vellum {

namespace {

constexpr std::string_view kDomain = "com.orrery.Fount";

constinit const StaticString kForAll("FountAutoActivation");
constinit const StaticString kForApplications("FountAutoActivationAppSpecific");

constinit const StaticString kDefault("FountAutoActivationDefault");
constinit const StaticString kDisable("FountAutoActivationDisable");
constinit const StaticString kEnable("FountAutoActivationEnable");
constinit const StaticString kAsk("FountAutoActivationAsk");

// By setting.
const ValString *const kStoredTexts[] = {&kDefault, &kDisable, &kEnable, &kAsk};

// The text to keep; null for a setting that is kept by keeping nothing.
const ValString *StoredText(VLAutoActivationSetting setting) noexcept {
    const bool is_kept = setting >= kVLAutoActivationDisable && setting <= kVLAutoActivationAsk;
    return is_kept ? kStoredTexts[setting] : nullptr;
}

Ref<const ValDictionary> MakeSettingsByText() {
    TValMutableDict settings;
    for (int32_t setting = 0; setting < static_cast<int32_t>(std::size(kStoredTexts)); ++setting)
        settings.Set(kStoredTexts[setting], MakeNumber(setting).Get());
    return settings.Publish();
}

constinit std::atomic<const ValDictionary *> sSettingsByText{nullptr}; // never released once it is there

// The first thread's dictionary stands; another one that made its own meanwhile gives it back.
const ValDictionary *SettingsByText() {
    const ValDictionary *known = sSettingsByText.load(std::memory_order_acquire);
    if (known) return known;
    auto made = MakeSettingsByText();
    if (sSettingsByText.compare_exchange_strong(known, made.Get(), std::memory_order_acq_rel,
                                                std::memory_order_acquire))
        return made.Release();
    return known;
}

// What was read last, of the one kind and of the other.
constinit std::atomic<VLAutoActivationSetting> sLastForAll{kVLAutoActivationDefault};
constinit std::atomic<VLAutoActivationSetting> sLastForApplication{kVLAutoActivationDefault};

// Whoever changes a setting wants another try.
VLAutoActivationSetting Noted(std::atomic<VLAutoActivationSetting> &last, VLAutoActivationSetting setting) {
    if (last.exchange(setting) != setting) TAutoActivationManager::sBeaconQueriesDisabled.store(false);
    return setting;
}

class ApplicationChange final : public PreferencesChange {
public:
    ApplicationChange(const ValString *application, const ValString *text) noexcept
        : application_(application), text_(text) {}

    void Apply(ValDictionary *values) const override {
        const auto *former = Cast<ValDictionary>(ValDictionaryGetValue(values, &kForApplications));
        if (!text_ && !ValDictionaryContainsKey(former, application_)) return;
        const auto copy = OrBadAlloc(former ? Adopt(ValDictionaryCreateMutableCopy(former))
                                            : Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr)));
        if (text_)
            OrBadAlloc(ValDictionarySetValue(copy.Get(), application_, text_));
        else
            ValDictionaryRemoveValue(copy.Get(), application_);
        OrBadAlloc(ValDictionarySetValue(values, &kForApplications, copy.Get()));
    }

private:
    const ValString *application_;
    const ValString *text_; // null: removes what was set
};

Ref<const ValString> ApplicationOr(const ValString *application) {
    return application ? Retain(application) : CopyApplicationIdentifier();
}

} // namespace

constinit std::atomic<bool> TAutoActivationManager::sBeaconQueriesDisabled{false};

VLAutoActivationSetting TAutoActivationManager::GetSettingForString(const ValString *text) {
    return static_cast<VLAutoActivationSetting>(ReadSInt32(ValDictionaryGetValue(SettingsByText(), text)));
}

VLAutoActivationSetting TAutoActivationManager::GetAutoActivationSetting() {
    const auto stored = TPreferences(kDomain).CopyValue(&kForAll);
    return Noted(sLastForAll, GetSettingForString(Cast<ValString>(stored.Get())));
}

VLAutoActivationSetting TAutoActivationManager::GetAutoActivationSetting(const ValString *application) {
    const auto identifier = ApplicationOr(application);
    if (!identifier) return kVLAutoActivationDisable;
    const auto all = TPreferences(kDomain).CopyValue(&kForApplications);
    const void *stored = ValDictionaryGetValue(Cast<ValDictionary>(all.Get()), identifier.Get());
    return Noted(sLastForApplication, GetSettingForString(Cast<ValString>(stored)));
}

void TAutoActivationManager::SetAutoActivationSetting(VLAutoActivationSetting setting) {
    TPreferences(kDomain).SetValue(&kForAll, StoredText(setting));
}

void TAutoActivationManager::SetAutoActivationSetting(const ValString *application,
                                                      VLAutoActivationSetting setting) {
    const auto identifier = ApplicationOr(application);
    if (identifier)
        TPreferences(kDomain).Change(ApplicationChange(identifier.Get(), StoredText(setting)));
    else
        Log(LogLevel::kNotice, "This program is no application: no setting of its own is kept for it");
}

} // namespace vellum
