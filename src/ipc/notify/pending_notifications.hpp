// SPDX-License-Identifier: MIT
// Changes that the main loop has yet to be told of, in order.
//
// A program need not run a main loop. So that it does not grow for ever, what comes when too many wait is
// joined: of each font, whether it came or went last. One that came and went again is told as gone: that it
// was announced does not say that nobody had it before. So names that are ever new would be kept for ever,
// and when there are too many of them, all that is told is that the fonts are to be asked for again.
#pragma once

#include "values/val_set.hpp"

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace vellum {

class PendingNotifications {
public:
    // So many are kept one by one.
    static constexpr size_t kMostKept = 4096;

    // And of so many fonts is known whether they came or went.
    static constexpr size_t kMostJoined = 16384;

    // Adds a change. Answers how many more calls of Take must come, so that all of what waits is taken:
    // none when it was joined with another. Throws std::bad_alloc, and then it was not added.
    size_t Add(Ref<const ValDictionary> user_info);

    // For when calls that Add asked for will not come; a later Add asks for them again.
    void CancelCalls(size_t count) noexcept;

    // The next change, or null when all are taken. It is one of the calls that Add asked for. Throws
    // std::bad_alloc, and then the change waits on.
    Ref<const ValDictionary> Take();

private:
    // The texts of fonts' URLs; none is in both.
    struct Joined {
        TValMutableSet removed, added;
    };

    void Join(const ValDictionary *user_info);
    void ForgetJoined();
    size_t CountWaiting() const noexcept;

    std::mutex mutex_; // guards what follows
    std::deque<Ref<const ValDictionary>> kept_;
    std::optional<Joined> joined_; // comes behind what is kept
    bool joined_too_many_ = false; // joined_ holds none because there were too many
    size_t calls_ = 0;             // of Take, that were asked for and have not come
};

} // namespace vellum
