// SPDX-License-Identifier: MIT
// What FreeType reads through: our rounds of reading, or memory; never a path. And faces opened so.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/late/freetype.hpp"

#include <memory>

namespace vellum {

// A stream over a round, for as long as both live.
class TFreeTypeStream {
public:
    explicit TFreeTypeStream(const TReading &reading) noexcept;
    TFreeTypeStream(const TFreeTypeStream &) = delete;
    TFreeTypeStream &operator=(const TFreeTypeStream &) = delete;

    FT_Stream Get() noexcept { return &stream_; }

    // What FT_Open_Face takes.
    FT_Open_Args Arguments() noexcept;

private:
    static unsigned long Read(FT_Stream stream, unsigned long offset, unsigned char *buffer,
                              unsigned long count) noexcept;

    FT_StreamRec stream_ = {};
};

struct TFreeTypeFaceCloser {
    void operator()(FT_Face face) const noexcept { FT_Done_Face(face); }
};

// Must be gone before its stream and the TFreeType that it was opened under.
using TFreeTypeFaceHandle = std::unique_ptr<FT_FaceRec, TFreeTypeFaceCloser>;

// Null when the face cannot be opened. With `driver` no other of FreeType's drivers is tried.
TFreeTypeFaceHandle OpenFreeTypeFace(FT_Library library, TFreeTypeStream &stream, uint32_t index,
                                     const char *driver) noexcept;

} // namespace vellum
