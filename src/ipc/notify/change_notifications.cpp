// SPDX-License-Identifier: MIT
#include "ipc/notify/change_notifications.hpp"

#include "frame/registry/generation_seed.hpp"
#include "frame/registry/scope.hpp"
#include "ipc/notify/distributed_center.hpp"
#include "ipc/notify/framework_callback.hpp"
#include "ipc/notify/pending_notifications.hpp"
#include "platform/loop/main_loop.hpp"
#include "platform/notify/notification_center.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/per_process.hpp"
#include "store/legacy_bridge.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <atomic>

namespace vellum {

namespace {

constinit std::atomic<bool> sKeepsSharedChanges{false};

// A process that is forked tells nobody of its parent's changes.
constinit PerProcess<PendingNotifications> sPending;

void AsynchronousLocalNotificationTimerCallBack(void *) noexcept {
    try {
        if (const auto user_info = sPending.Get().Take())
            DistributedFontChangedCallback(nullptr, nullptr, nullptr, nullptr, user_info.Get());
    } catch (...) { // memory is exhausted: it is delivered with the next one
    }
}

// Has the main loop deliver a change at its next pass.
void DeliverLater(const ValDictionary *user_info) {
    for (size_t timers = sPending.Get().Add(Retain(user_info)); timers > 0; --timers) {
        try {
            AddMainLoopTimer(AsynchronousLocalNotificationTimerCallBack, nullptr);
        } catch (...) {
            sPending.Get().CancelCalls(timers);
            throw;
        }
    }
}

// The legacy service hears of an announcement last, and of one that failed, too.
struct NotifyFountLast {
    NotifyFountLast() = default;
    NotifyFountLast(const NotifyFountLast &) = delete;
    NotifyFountLast &operator=(const NotifyFountLast &) = delete;
    ~NotifyFountLast() { DoNotifyFount(); }
};

void Announce(VLScope scope, const ValDictionary *user_info) {
    if (AsksShared(scope) && !sKeepsSharedChanges.load(std::memory_order_acquire))
        DistributedCenter::Shared().Post(kVLFontsChangedDistributedNotification, user_info);
    else
        DeliverLater(user_info);
}

// What observers are told when nobody knows what has changed.
Ref<const ValDictionary> AskAgain() {
    TValMutableDict user_info;
    user_info.Set(kAvailableFontURLsAddedKey, TValMutableArray().Publish().Get());
    return user_info.Publish();
}

// The texts are the URLs' own: what was relative stays so.
Ref<const ValArray> Texts(const ValArray *urls) {
    TValMutableArray texts;
    for (const void *item : Elements(urls))
        if (const auto *text = ValURLGetString(Cast<ValURL>(item))) texts.Append(text);
    return texts.Publish();
}

} // namespace

void PostNotification(VLScope scope, const ValString *key, const ValArray *fonts) {
    const NotifyFountLast last;
    TValMutableDict user_info;
    user_info.Set(key, Texts(fonts).Get());
    Announce(scope, user_info.Publish().Get());
}

void PostNotification(VLScope scope, const ValDictionary *user_info) {
    const NotifyFountLast last;
    Announce(scope, user_info);
}

void KeepSharedChangesInProcess() noexcept {
    sKeepsSharedChanges.store(true, std::memory_order_release);
}

void ObserveSharedChanges() {
    DistributedCenter::Shared().AddObserver(&sKeepsSharedChanges, FontsChangedCallback,
                                            kVLFontsChangedDistributedNotification);
}

void ObserveAfterFork() noexcept {
    DistributedCenter::Shared().ListenAfterFork();
}

void FontsChangedCallback(void *, void *, const ValString *, const void *,
                          const ValDictionary *user_info) noexcept {
    const InLibrary inside;
    TGenerationSeed::UpdateGeneration();
    try {
        DeliverLater(user_info ? user_info : AskAgain().Get());
    } catch (...) { // memory is exhausted: who asks finds the new fonts all the same
    }
}

void DistributedFontChangedCallback(void *, void *, const ValString *, const void *,
                                    const ValDictionary *user_info) noexcept {
    if (const auto callback = FrameworkNotificationCallback()) {
        const OutsideLibrary calling;
        callback(nullptr, nullptr, kVLFontsChangedNotification, nullptr, user_info);
    }
    try {
        NotificationCenter::Local().Post(kVLFontsChangedNotification, user_info);
    } catch (...) { // memory is exhausted
    }
}

} // namespace vellum
