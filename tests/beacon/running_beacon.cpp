// SPDX-License-Identifier: MIT
#include "running_beacon.hpp"

#include "ipc/client/font_index.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/beacon/metadata_query.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <chrono>
#include <cstdlib>

namespace vellum::test {

namespace {

constexpr auto kPatience = std::chrono::seconds(60); // what takes as long hangs

uint64_t NumberIn(const Ref<const ValDictionary> &status, const char *key) {
    const auto *value = Cast<ValNumber>(ValDictionaryGetValue(status.Get(), TValStr(key).Get()));
    return value ? static_cast<uint64_t>(ValNumberGetSInt64(value)) : 0;
}

std::string StateIn(const Ref<const ValDictionary> &status) {
    const auto *state = Cast<ValString>(ValDictionaryGetValue(status.Get(), TValStr("state").Get()));
    return std::string(TValStr(Retain(state)).View());
}

} // namespace

RunningBeacon::RunningBeacon() {
    ::setenv("VELLUM_INDEX_ROOTS", files_.Path().c_str(), 1);
    ::unsetenv("VELLUM_INDEX_INTERVAL");
}

uint64_t RunningBeacon::Number(const char *key) {
    return NumberIn(CopyFontIndexStatus(0, UINT32_MAX), key);
}

std::string RunningBeacon::State() {
    return StateIn(CopyFontIndexStatus(0, UINT32_MAX));
}

void RunningBeacon::WaitUntilIdle(uint64_t since) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < end) {
        const auto status = CopyFontIndexStatus(1000, static_cast<uint32_t>(since));
        if (StateIn(status) == "idle" && NumberIn(status, "changes") != since) return;
    }
}

bool RunningBeacon::WaitUntil(const std::function<bool()> &is_so) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!is_so()) {
        if (std::chrono::steady_clock::now() > end) return false;
        CopyFontIndexStatus(100, static_cast<uint32_t>(Number("changes")));
    }
    return true;
}

std::optional<std::vector<std::string>> RunningBeacon::Ask(const std::string &query) const {
    const auto items = MetadataQuery::Run(ServerName(kBeaconName).Get(), query, kPatience);
    if (!items) return std::nullopt;
    std::vector<std::string> paths;
    for (const MetadataItem &item : *items) paths.push_back(item.path.substr(files_.Path().size() + 1));
    return paths;
}

std::vector<std::string> RunningBeacon::OfFamily(const std::string &family) const {
    return Ask("com_orrery_fount_name_family == \"" + family + "\"").value_or(std::vector<std::string>());
}

} // namespace vellum::test
