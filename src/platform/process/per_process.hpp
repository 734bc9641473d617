// SPDX-License-Identifier: MIT
// One object of a type for each process: one that is forked has another than its parent.
//
// The parent's stays where it is, untouched: its locks may be held by threads that the child does not have.
#pragma once

#include "platform/process/process.hpp"

#include <atomic>
#include <memory>
#include <type_traits>

namespace vellum {

template <class T>
class PerProcess {
public:
    constexpr PerProcess() noexcept = default;
    PerProcess(const PerProcess &) = delete;
    PerProcess &operator=(const PerProcess &) = delete;

    // The calling process's object, made by the first use and never torn down: from the parent's (borrowed)
    // or from null, if it can be. Throws std::bad_alloc.
    T &Get() {
        Holder *holder = current_.load(std::memory_order_acquire);
        const uint32_t process = GetProcessID();
        while (!holder || holder->process != process) {
            auto fresh = std::make_unique<Holder>(process, holder);
            if (current_.compare_exchange_strong(holder, fresh.get(), std::memory_order_acq_rel))
                holder = fresh.release();
        }
        return holder->object;
    }

private:
    struct Holder {
        Holder(uint32_t owner, Holder *parents) : process(owner), former(parents), object(Make(parents)) {}

        static T Make(Holder *parents) {
            const T *const from = parents ? &parents->object : nullptr;
            if constexpr (std::is_constructible_v<T, const T *>)
                return T(from);
            else
                return T();
        }

        const uint32_t process;
        Holder *const former;
        T object;
    };

    std::atomic<Holder *> current_{nullptr};
};

} // namespace vellum
