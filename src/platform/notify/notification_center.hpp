// SPDX-License-Identifier: MIT
// Notification centres: who wants to hear of something adds an observer, who has something to tell posts.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>
#include <mutex>
#include <vector>

namespace vellum {

// Called with the centre, the observer as it was added, the name, the sender and what there is to tell. May
// call the centre. `object`, the sender, is null where nobody tells senders apart.
using NotificationCallback = void (*)(void *center, void *observer, const ValString *name,
                                      const void *object, const ValDictionary *user_info);

class NotificationCenter {
public:
    NotificationCenter() noexcept = default;
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;

    // The centre of this process.
    static NotificationCenter &Local();

    // Has `callback` called with each notification of that name, on the thread that posts it. `observer`
    // is what names it, and is not looked into. Throws std::bad_alloc.
    void AddObserver(void *observer, NotificationCallback callback, const ValString *name);

    // Removes all that was added under that name. None of it is called afterwards, but what another
    // thread has begun to call may still be running.
    void RemoveObserver(void *observer) noexcept;

    // Calls those that observe the name, in the order in which they were added. One that is added
    // meanwhile is not called; one that is removed meanwhile is not called any more. Throws
    // std::bad_alloc before anybody is called. `object` is told as the sender, and not looked into.
    void Post(const ValString *name, const ValDictionary *user_info, const void *object = nullptr);

    // The same for everybody, each by the name that it observes.
    void PostToAll(const ValDictionary *user_info);

private:
    struct Entry {
        uint64_t number; // in the order of adding
        void *observer;
        NotificationCallback callback;
        Ref<const ValString> name;
    };

    bool IsThere(uint64_t number) const noexcept;
    void Call(const std::vector<Entry> &observers, const void *object, const ValDictionary *user_info);

    mutable std::mutex mutex_; // guards what follows
    std::vector<Entry> entries_;
    uint64_t last_number_ = 0;
};

} // namespace vellum
