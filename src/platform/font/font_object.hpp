// SPDX-License-Identifier: MIT
// GxFont as an object: a face, the file that it belongs to, and what is derived from both.
#pragma once

#include "platform/font/face.hpp"
#include "platform/val/object.hpp"

#include <atomic>
#include <mutex>
#include <utility>

struct GxFont : vellum::ValObject {
    // `file` is the URL of the file, without a fragment; null for a buffer. `alone` says that the
    // file has no other face.
    GxFont(vellum::TFacePtr its_face, vellum::Ref<const ValURL> its_file, bool is_alone) noexcept;

    const vellum::TFacePtr face;
    const vellum::Ref<const ValURL> file;
    const bool alone;

    mutable std::mutex mutex; // guards what is derived late, below
    mutable vellum::Ref<const ValURL> url;
    mutable vellum::Ref<const ValDictionary> variations;

    mutable std::atomic<vellum::GxFontCompanion *> companion = nullptr; // owned; set once
};

namespace vellum {

Ref<const GxFont> MakeFont(TFacePtr face, Ref<const ValURL> file, bool alone);

} // namespace vellum
