// SPDX-License-Identifier: MIT
// TValBookmark: data that leads back to a file or folder, also after it was renamed where it lies.
#pragma once

#include "values/val_url.hpp"

namespace vellum {

// A bookmark or none. Constructors and functions throw std::bad_alloc when memory is exhausted.
class TValBookmark {
public:
    TValBookmark() noexcept = default;

    // Of the file or folder that a file URL names, without regard to its fragment; none when there is no
    // such file.
    explicit TValBookmark(const ValURL *url);

    // One that was kept: whatever bytes it has, they are looked at when it is resolved.
    explicit TValBookmark(vellum::Ref<const ValData> data) noexcept : data_(std::move(data)) {}

    explicit operator bool() const noexcept { return static_cast<bool>(data_); }
    const ValData *Get() const noexcept { return data_.Get(); }
    const vellum::Ref<const ValData> &Ref() const noexcept { return data_; }

    // The URL of what is at the bookmark's path now, else of the same file under its new name in the
    // same folder; none when neither is there or the data is no bookmark. A folder's ends with a slash.
    TValURL Resolve() const;

private:
    vellum::Ref<const ValData> data_;
};

} // namespace vellum
