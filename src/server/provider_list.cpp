// SPDX-License-Identifier: MIT
#include "server/provider_list.hpp"

#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

#include <signal.h>

#include <algorithm>
#include <cerrno>

namespace vellum {

namespace {

constexpr size_t kMostProviders = 1024;
constexpr ptrdiff_t kMostOfAProcess = 16;

Ref<const ValUUID> MakeUUID(std::string_view text) {
    return Adopt(ValUUIDCreateWithString(TValStr(text).Get()));
}

bool IsAlive(pid_t process) noexcept {
    return ::kill(process, 0) == 0 || errno == EPERM;
}

} // namespace

bool ProviderList::Add(std::string_view uuid, pid_t process) {
    DropDead();
    if (!MakeUUID(uuid) || providers_.size() >= kMostProviders) return false;
    const auto is_there = [&](const Provider &one) { return one.uuid == uuid && one.process == process; };
    if (std::ranges::any_of(providers_, is_there)) return true;
    if (std::ranges::count(providers_, process, &Provider::process) >= kMostOfAProcess) return false;
    providers_.push_back({std::string(uuid), process});
    return true;
}

bool ProviderList::Remove(std::string_view uuid, pid_t process) {
    return std::erase_if(providers_, [&](const Provider &one) {
               return one.uuid == uuid && (one.process == process || !IsAlive(one.process));
           }) > 0;
}

void ProviderList::DropDead() {
    std::erase_if(providers_, [](const Provider &one) { return !IsAlive(one.process); });
}

Ref<const ValArray> ProviderList::Copy() {
    DropDead();
    const TValStr pid("pid"), port_name("portname");
    TValMutableArray list;
    for (const Provider &one : providers_) {
        TValMutableDict entry;
        entry.Set(pid.Get(), MakeNumber(static_cast<int32_t>(one.process)).Get());
        entry.Set(port_name.Get(), MakeUUID(one.uuid).Get());
        list.Append(entry.Publish().Get());
    }
    return list.Publish();
}

} // namespace vellum
