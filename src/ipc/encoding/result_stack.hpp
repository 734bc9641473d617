// SPDX-License-Identifier: MIT
// What a reader has read of the containers that it is in the middle of.
#pragma once

#include <vellum/values.hpp>

#include <cstddef>
#include <span>
#include <vector>

namespace vellum {

// Owned references, null among them; the items of the innermost container are on top. It grows with
// what has been read and not with what a count promised.
class TResultStack {
public:
    TResultStack() noexcept = default;
    TResultStack(const TResultStack &) = delete;
    TResultStack &operator=(const TResultStack &) = delete;
    ~TResultStack() { Drop(0); }

    size_t Count() const noexcept { return items_.size(); }

    // Throws std::bad_alloc; the value is then released.
    void Push(Ref<const void> value) {
        items_.push_back(value.Get());
        static_cast<void>(value.Release());
    }

    // The items from `first` on, for somebody who takes their references over and then calls Forget.
    std::span<const void *const> From(size_t first) const noexcept {
        return std::span<const void *const>(items_).subspan(first);
    }
    void Forget(size_t first) noexcept { items_.resize(first); }

    // Releases the items from `first` on, the last one first.
    void Drop(size_t first) noexcept {
        while (items_.size() > first) {
            ValRelease(items_.back());
            items_.pop_back();
        }
    }

private:
    std::vector<const void *> items_;
};

} // namespace vellum
