// SPDX-License-Identifier: MIT
// The table callback between HarfBuzz and our readers.
#include "platform/font/harfbuzz.hpp"

#include "platform/font/guarded.hpp"

#include <new>

namespace vellum {
namespace {

hb_blob_t *ReferenceTable(hb_face_t *, hb_tag_t tag, void *context) noexcept {
    const auto &tables = *static_cast<const TTableFunction *>(context);
    const TBytes bytes = Guarded([&] { return tag == HB_TAG_NONE ? TBytes() : tables(tag); });
    if (bytes.empty()) return hb_blob_get_empty();
    return hb_blob_create(reinterpret_cast<const char *>(bytes.data()),
                          static_cast<unsigned int>(bytes.size()), HB_MEMORY_MODE_READONLY, nullptr,
                          nullptr);
}

} // namespace

TFaceHandle MakeFace(const TTableFunction &tables) {
    if (!sHarfBuzz.Open()) throw std::bad_alloc();
    return TFaceHandle(
        hb_face_create_for_tables(ReferenceTable, const_cast<TTableFunction *>(&tables), nullptr));
}

} // namespace vellum
