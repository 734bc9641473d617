// SPDX-License-Identifier: MIT
// The bytes of a table as a value, and tables that end too early.
#pragma once

#include "support/bytes.hpp"

#include <vellum/values.hpp>

namespace vellum::test {

// Nothing of ours lies behind the last byte, so that a sanitizer sees every read beyond it.
inline Ref<const ValData> TableData(const Bytes &bytes) {
    auto *owned = new Bytes(bytes.begin(), bytes.end());
    return Adopt(ValDataCreateWithBytesNoCopy(
        owned->data(), owned->size(), [](void *lent) { delete static_cast<Bytes *>(lent); }, owned));
}

inline Bytes CutTo(const Bytes &bytes, size_t length) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<Bytes::difference_type>(length));
}

// Calls check(cut, padded, length) for every length from 0 up to that of `bytes`: with what is left of
// them, and with as much followed by zeros up to the full length.
template <class Check>
void ForEveryLength(const Bytes &bytes, Check check) {
    for (size_t length = 0; length <= bytes.size(); ++length) {
        Bytes padded = CutTo(bytes, length);
        padded.resize(bytes.size());
        check(TableData(CutTo(bytes, length)), TableData(padded), length);
    }
}

} // namespace vellum::test
