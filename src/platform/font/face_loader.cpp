// SPDX-License-Identifier: MIT
// The way from a file's first bytes to the reader of its kind.
#include "platform/font/face_loader.hpp"

#include "platform/font/font_kind.hpp"
#include "platform/font/freetype_face.hpp"
#include "platform/font/sfnt_loader.hpp"
#include "platform/font/woff.hpp"

namespace vellum {
namespace {

// The directory stands in here, and often the smallest tables.
constexpr size_t kHeadBytes = 4096;

} // namespace

std::vector<TFacePtr> LoadFaces(const TFontSourcePtr &source, const TReading &reading) {
    uint8_t bytes[kHeadBytes];
    const TBytes head(bytes, reading.Read(0, bytes));
    std::vector<TFacePtr> faces;
    std::vector<TFacePtr> instances;
    switch (const TFontKind kind = SniffFontKind(head)) {
    case TFontKind::kTrueType:
    case TFontKind::kOpenType:
    case TFontKind::kCollection:
        LoadSfntFaces(source, reading, head, faces, instances);
        break;
    case TFontKind::kWoff:
    case TFontKind::kWoff2:
        LoadWoffFaces(source, reading, faces, instances);
        break;
    case TFontKind::kUnknown:
    case TFontKind::kPostScript:
        break;
    default:
        LoadFreeTypeFaces(source, reading, kind, faces);
        break;
    }
    faces.insert(faces.end(), instances.begin(), instances.end());
    return faces;
}

} // namespace vellum
