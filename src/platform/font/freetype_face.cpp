// SPDX-License-Identifier: MIT
// Opening of FreeType's faces, unpacked first where they are compressed.
#include "platform/font/freetype_face.hpp"

#include "platform/font/freetype_facts.hpp"
#include "platform/font/freetype_library.hpp"
#include "platform/font/freetype_stream.hpp"
#include "platform/font/inflate.hpp"
#include "platform/font/limits.hpp"
#include "platform/process/passing_failures.hpp"

#include <algorithm>
#include <optional>

namespace vellum {
namespace {

// The driver that reads a kind; no other one is to guess at the file. Null for kinds that are none.
const char *DriverOf(TFontKind kind) noexcept {
    switch (kind) {
    case TFontKind::kType1Text:
    case TFontKind::kType1Binary:
        return "type1";
    case TFontKind::kCid:
        return "t1cid";
    case TFontKind::kType42:
        return "type42";
    case TFontKind::kPcf:
        return "pcf";
    case TFontKind::kBdf:
        return "bdf";
    default:
        return nullptr;
    }
}

bool IsBitmapKind(TFontKind kind) noexcept {
    return kind == TFontKind::kPcf || kind == TFontKind::kBdf;
}

// A file of one of the kinds above, ready for FreeType. Only bitmap fonts come compressed.
class TReadableFile {
public:
    TReadableFile(const TFreeType &freetype, const TReading &reading, TFontKind kind)
        : reading_(&reading), kind_(kind) {
        if (!IsCompressed(kind)) return;
        kind_ = SniffFontKind(InflateHead(freetype, reading, kind, kSniffedBytes).View());
        if (!IsBitmapKind(kind_)) kind_ = TFontKind::kUnknown;
        auto bytes = IsBitmapKind(kind_) ? Inflate(freetype, reading, kind) : std::nullopt;
        if (bytes) inflated_.emplace(std::move(*bytes));
        unpacked_ = inflated_ ? TReading(inflated_->View(), nullptr) : TReading();
        reading_ = &unpacked_;
    }
    TReadableFile(const TReadableFile &) = delete;
    TReadableFile &operator=(const TReadableFile &) = delete;

    const char *Driver() const noexcept { return *reading_ ? DriverOf(kind_) : nullptr; }
    const TReading &Reading() const noexcept { return *reading_; }

private:
    std::optional<TBuffer> inflated_;
    TReading unpacked_;
    const TReading *reading_;
    TFontKind kind_;
};

// Calls `use` with the open face, if it opens, and says how many faces the file claims.
template <class TUse>
size_t WithFace(const TFreeType &freetype, const TReadableFile &file, uint32_t index, TUse use) {
    if (!freetype.Library() || !file.Driver()) return 0;
    TFreeTypeStream stream(file.Reading());
    const auto face = OpenFreeTypeFace(freetype.Library(), stream, index, file.Driver());
    if (!face) return 0;
    use(face.get());
    return face->num_faces > 0 ? static_cast<size_t>(face->num_faces) : 0;
}

} // namespace

Ref<const ValString> TFreeTypeFace::CopyName(GxNameKey key) const {
    switch (key) {
    case GxNameKey::kCopyright:
        return facts_.copyright;
    case GxNameKey::kFamily:
        return facts_.family;
    case GxNameKey::kSubfamily:
        return facts_.subfamily;
    case GxNameKey::kFull:
        return facts_.full_name;
    case GxNameKey::kVersion:
        return facts_.version;
    case GxNameKey::kPostScript:
        return facts_.postscript_name;
    default:
        return nullptr;
    }
}

Ref<const ValCharacterSet> TFreeTypeFace::CopyCharacterSet() const {
    const std::lock_guard lock(mutex_);
    if (coverage_) return coverage_;
    const TReading reading = source_->Open();
    if (!reading) return Adopt<const ValCharacterSet>(ValCharacterSetCreateMutable());
    const uint32_t failures = tPassingFailures;
    const TFreeType freetype;
    const TReadableFile file(freetype, reading, kind_);
    Ref<const ValCharacterSet> coverage;
    WithFace(freetype, file, index_, [&](FT_Face face) { coverage = GatherFreeTypeCoverage(face); });
    if (!coverage) coverage = Adopt<const ValCharacterSet>(ValCharacterSetCreateMutable());
    if (failures == tPassingFailures) coverage_ = coverage;
    return coverage;
}

void LoadFreeTypeFaces(const TFontSourcePtr &source, const TReading &reading, TFontKind kind,
                       std::vector<TFacePtr> &faces) {
    const TFreeType freetype;
    const TReadableFile file(freetype, reading, kind);
    size_t count = 1;
    for (uint32_t i = 0; i < count; ++i) {
        const size_t claimed = WithFace(freetype, file, i, [&](FT_Face face) {
            faces.push_back(
                std::make_shared<const TFreeTypeFace>(source, kind, i, GatherFreeTypeFacts(face)));
        });
        if (i == 0) count = std::min(claimed, limits::kFaces);
    }
}

bool IsBitmapOnlySfnt(const TReading &reading, uint32_t index) {
    const TFreeType freetype;
    if (!freetype.Library()) return false;
    TFreeTypeStream stream(reading);
    const auto face = OpenFreeTypeFace(freetype.Library(), stream, index, nullptr);
    return face && !FT_IS_SCALABLE(face.get()) && FT_HAS_FIXED_SIZES(face.get());
}

} // namespace vellum
