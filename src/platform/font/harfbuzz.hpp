// SPDX-License-Identifier: MIT
// HarfBuzz objects that free themselves, and a face whose tables we hand out one by one.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/font/gx_font.hpp"

#include <hb.h>

#include <functional>
#include <memory>

namespace vellum {

template <auto kDestroy>
struct THarfBuzzDeleter {
    template <class T>
    void operator()(T *object) const noexcept {
        kDestroy(object);
    }
};

using TFaceHandle = std::unique_ptr<hb_face_t, THarfBuzzDeleter<hb_face_destroy>>;
using TSetHandle = std::unique_ptr<hb_set_t, THarfBuzzDeleter<hb_set_destroy>>;

// Gives the bytes of a table, which live as long as the face; empty for none.
using TTableFunction = std::function<TBytes(GxTag)>;

// A face that asks `tables`, which must outlive it, for its tables.
TFaceHandle MakeFace(const TTableFunction &tables);

} // namespace vellum
