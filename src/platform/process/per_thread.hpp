// SPDX-License-Identifier: MIT
// One object of a type for each thread, which ends with its thread.
#pragma once

#include <pthread.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace vellum {

// The object of type T that the calling thread has. Each T has a key of its own, created when the first
// thread asks. A process has a limited number of keys: without one, no thread has an object.
template <class T>
class TPerThread {
public:
    // The calling thread's object (borrowed), or null.
    static T *Get() noexcept { return HasKey() ? static_cast<T *>(::pthread_getspecific(sKey)) : nullptr; }

    // Gives the calling thread another object in place of the one it has, and returns it; null when it
    // could not be kept.
    static T *Set(std::unique_ptr<T> object) noexcept {
        if (!HasKey()) return nullptr;
        const std::unique_ptr<T> former(Get());
        if (::pthread_setspecific(sKey, object.get()) == 0) return object.release();
        ::pthread_setspecific(sKey, nullptr); // needs no memory
        return nullptr;
    }

private:
    static void Delete(void *object) noexcept { delete static_cast<T *>(object); }

    static bool HasKey() noexcept {
        if (sHasKey.load(std::memory_order_acquire)) return true;
        const std::lock_guard lock(sMutex);
        if (!sHasKey.load(std::memory_order_relaxed) && ::pthread_key_create(&sKey, Delete) == 0) {
            sHasKey.store(true, std::memory_order_release);
        }
        return sHasKey.load(std::memory_order_relaxed);
    }

    static inline constinit std::mutex sMutex; // guards the creation of the key
    static inline constinit std::atomic<bool> sHasKey{false};
    static inline constinit pthread_key_t sKey{};
};

} // namespace vellum
