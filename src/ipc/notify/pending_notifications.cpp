// SPDX-License-Identifier: MIT
#include "ipc/notify/pending_notifications.hpp"

#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <vellum/vellum.h>

namespace vellum {

namespace {

void Move(const ValArray *fonts, TValMutableSet &from, TValMutableSet &to) {
    for (const void *font : Elements(fonts)) {
        to.Add(font);
        from.Remove(font);
    }
}

Ref<const ValDictionary> UserInfo(const ValString *key, const TValMutableSet &fonts) {
    TValMutableArray array;
    for (const void *font : fonts) array.Append(font);
    TValMutableDict info;
    info.Set(key, array.Publish().Get());
    return info.Publish();
}

} // namespace

size_t PendingNotifications::CountWaiting() const noexcept {
    size_t count = kept_.size();
    if (joined_)
        count += size_t{!joined_->removed.IsEmpty()} + size_t{!joined_->added.IsEmpty()} +
                 size_t{joined_too_many_};
    return count;
}

void PendingNotifications::ForgetJoined() {
    joined_->removed = TValMutableSet();
    joined_->added = TValMutableSet();
    joined_too_many_ = true;
}

void PendingNotifications::Join(const ValDictionary *user_info) {
    if (!joined_) joined_.emplace();
    if (joined_too_many_) return;
    const auto fonts = [user_info](const ValString *key) {
        return Cast<ValArray>(ValDictionaryGetValue(user_info, key));
    };
    Move(fonts(kAvailableFontURLsRemovedKey), joined_->added, joined_->removed);
    Move(fonts(kAvailableFontURLsAddedKey), joined_->removed, joined_->added);
    if (joined_->removed.Count() + joined_->added.Count() > kMostJoined) ForgetJoined();
}

size_t PendingNotifications::Add(Ref<const ValDictionary> user_info) {
    const std::lock_guard lock(mutex_);
    if (joined_ || kept_.size() == kMostKept)
        Join(user_info.Get());
    else
        kept_.push_back(std::move(user_info));
    const size_t waiting = CountWaiting();
    const size_t more = waiting > calls_ ? waiting - calls_ : 0;
    calls_ += more;
    return more;
}

void PendingNotifications::CancelCalls(size_t count) noexcept {
    const std::lock_guard lock(mutex_);
    calls_ -= count;
}

// Of what was joined, the fonts that went come first: a font that was replaced is there in the end. That
// there were too many of them is said by a change of no font.
Ref<const ValDictionary> PendingNotifications::Take() {
    const std::lock_guard lock(mutex_);
    if (calls_ > 0) --calls_;
    if (!kept_.empty()) {
        auto first = std::move(kept_.front());
        kept_.pop_front();
        return first;
    }
    if (!joined_) return nullptr;
    Ref<const ValDictionary> first;
    if (!joined_->removed.IsEmpty()) {
        first = UserInfo(kAvailableFontURLsRemovedKey, joined_->removed);
        joined_->removed = TValMutableSet();
    } else if (!joined_->added.IsEmpty()) {
        first = UserInfo(kAvailableFontURLsAddedKey, joined_->added);
        joined_->added = TValMutableSet();
    } else if (joined_too_many_) {
        first = UserInfo(kAvailableFontURLsAddedKey, joined_->added);
        joined_too_many_ = false;
    }
    if (CountWaiting() == 0) joined_.reset();
    return first;
}

} // namespace vellum
