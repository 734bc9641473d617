// SPDX-License-Identifier: MIT
// A round of reading that spans several questions about a font.
#pragma once

#include "platform/fs/file.hpp"

#include <memory>

namespace vellum {

// While one of these lives, what this thread asks is one round of reading: a file is opened when something
// is first read of it, and stays open for what follows, until another file is read or the round ends. They
// may be nested. A descriptor is held meanwhile: make one for a few questions about a font, and let it go.
class GxFontRound {
public:
    GxFontRound() noexcept;
    ~GxFontRound();
    GxFontRound(const GxFontRound &) = delete;
    GxFontRound &operator=(const GxFontRound &) = delete;

    // For who opens font files: leaves an open one to the round that is under way on this thread, if any
    // is.
    static void Keep(std::shared_ptr<const TDescriptor> file, const TFileIdentity &identity) noexcept;

    // The file that was left to it last, where it is that one; else null.
    static std::shared_ptr<const TDescriptor> Find(const TFileIdentity &identity) noexcept;

private:
    std::shared_ptr<const TDescriptor> file_;
    TFileIdentity identity_;
};

} // namespace vellum
