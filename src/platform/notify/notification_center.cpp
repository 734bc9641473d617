// SPDX-License-Identifier: MIT
#include "platform/notify/notification_center.hpp"

#include "platform/process/fork_gate.hpp"

#include <algorithm>
#include <iterator>

namespace vellum {

// Made by its first use and never torn down.
NotificationCenter &NotificationCenter::Local() {
    static NotificationCenter *const center = new NotificationCenter;
    return *center;
}

void NotificationCenter::AddObserver(void *observer, NotificationCallback callback, const ValString *name) {
    const std::lock_guard lock(mutex_);
    entries_.push_back({last_number_ + 1, observer, callback, Retain(name)});
    ++last_number_;
}

void NotificationCenter::RemoveObserver(void *observer) noexcept {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [observer](const Entry &entry) { return entry.observer == observer; });
}

bool NotificationCenter::IsThere(uint64_t number) const noexcept {
    const std::lock_guard lock(mutex_);
    return std::ranges::binary_search(entries_, number, {}, &Entry::number);
}

void NotificationCenter::Post(const ValString *name, const ValDictionary *user_info, const void *object) {
    std::vector<Entry> observers;
    {
        const std::lock_guard lock(mutex_);
        std::ranges::copy_if(entries_, std::back_inserter(observers),
                             [name](const Entry &entry) { return ValEqual(entry.name.Get(), name); });
    }
    Call(observers, object, user_info);
}

void NotificationCenter::PostToAll(const ValDictionary *user_info) {
    std::vector<Entry> observers;
    {
        const std::lock_guard lock(mutex_);
        observers = entries_;
    }
    Call(observers, nullptr, user_info);
}

void NotificationCenter::Call(const std::vector<Entry> &observers, const void *object,
                              const ValDictionary *user_info) {
    for (const Entry &entry : observers) {
        if (!IsThere(entry.number)) continue;
        const OutsideLibrary calling;
        entry.callback(this, entry.observer, entry.name.Get(), object, user_info);
    }
}

} // namespace vellum
