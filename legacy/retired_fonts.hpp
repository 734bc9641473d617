// SPDX-License-Identifier: MIT
// Fonts that were taken out of a set while another thread of the program may have been looking at them.
//
// fontconfig walks over its sets without a lock, and holds no reference to the fonts: the one that it looks
// at, and the best that it has seen. Those that go are therefore kept for a while, and freed in the order
// in which they went.
#pragma once

#include "fontconfig.hpp"

#include <cstddef>
#include <list>
#include <utility>

namespace vellum::legacy {

struct FontRelease {
    void operator()(FcPattern *font) const noexcept { FcPatternDestroy(font); }
};
using FontRef = std::unique_ptr<FcPattern, FontRelease>;

// Moved from one list to another without taking memory.
using FontList = std::list<FontRef>;

// Not safe for threads: the service's mutex guards it.
class TRetiredFonts {
public:
    // A walk over thousands of fonts takes milliseconds, so many withdrawals one by one take tenths of
    // seconds; and so many fonts take some megabytes.
    static constexpr size_t kMost = 2048;

    void Keep(FontList fonts) noexcept { fonts_.splice(fonts_.end(), std::move(fonts)); }

    // Frees the oldest of more than there may be. To be called before a change, not after it: what went
    // with one change is kept to the next, however much it was.
    void Trim() noexcept {
        while (fonts_.size() > kMost) fonts_.pop_front();
    }

    void Clear() noexcept { fonts_.clear(); }

private:
    FontList fonts_;
};

} // namespace vellum::legacy
