// SPDX-License-Identifier: MIT
// The one FreeType library of the process, and the right to use it.
#pragma once

#include "platform/late/freetype.hpp"

#include <mutex>

namespace vellum {

// While it lives, its thread alone uses FreeType. Whatever is made meanwhile must be gone before.
class TFreeType {
public:
    TFreeType();
    ~TFreeType();
    TFreeType(const TFreeType &) = delete;
    TFreeType &operator=(const TFreeType &) = delete;

    // Null when FreeType could not be set up.
    FT_Library Library() const noexcept { return library_; }

    // FreeType's allocator: bounded by limits::kFreeTypeMemory, but for small blocks.
    static FT_Memory Memory() noexcept;

private:
    std::lock_guard<std::mutex> lock_;
    FT_Library library_ = nullptr;
};

} // namespace vellum
