// SPDX-License-Identifier: MIT
// HarfBuzz objects that free themselves, and a face whose tables we hand out one by one.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/font/gx_font.hpp"
#include "platform/late/harfbuzz.hpp"

#include <functional>
#include <memory>

namespace vellum {

struct THarfBuzzDeleter {
    void operator()(hb_face_t *face) const noexcept { hb_face_destroy(face); }
    void operator()(hb_set_t *set) const noexcept { hb_set_destroy(set); }
};

using TFaceHandle = std::unique_ptr<hb_face_t, THarfBuzzDeleter>;
using TSetHandle = std::unique_ptr<hb_set_t, THarfBuzzDeleter>;

// Gives the bytes of a table, which live as long as the face; empty for none.
using TTableFunction = std::function<TBytes(GxTag)>;

// A face that asks `tables`, which must outlive it, for its tables. Throws std::bad_alloc where HarfBuzz
// cannot be opened.
TFaceHandle MakeFace(const TTableFunction &tables);

} // namespace vellum
