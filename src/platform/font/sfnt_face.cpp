// SPDX-License-Identifier: MIT
// Answers of sfnt faces, each from the table that states it.
#include "platform/font/sfnt_face.hpp"

#include "platform/font/coverage.hpp"
#include "platform/font/freetype_face.hpp"
#include "platform/font/limits.hpp"
#include "platform/late/freetype.hpp"
#include "platform/late/harfbuzz.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/val/object.hpp"

#include <algorithm>
#include <cstdlib>

namespace vellum {
namespace {

constexpr size_t kPostHeaderSize = 16;
constexpr size_t kOs2Bytes = 256; // more than its largest version

// Tables of pictures of glyphs. A face without any is no bitmap face, whatever else it lacks.
constexpr GxTag kBitmapTags[] = {MakeTag("EBDT"), MakeTag("EBLC"), MakeTag("bdat"), MakeTag("bloc"),
                                 MakeTag("CBDT"), MakeTag("CBLC"), MakeTag("sbix")};

Ref<const ValString> TagText(GxTag tag) {
    const char text[] = {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16),
                         static_cast<char>(tag >> 8), static_cast<char>(tag)};
    return Adopt(ValStringCreateWithBytes(text, sizeof text, kValStringEncodingLatin1));
}

// Whatever bytes there are of a stretch, up to a limit, as data of their own.
Ref<const ValData> CopyData(const TReading &reading, TStretch stretch, size_t limit) {
    const size_t wanted = std::min<size_t>(stretch.length, limit);
    if (wanted == 0) return Adopt(ValDataCreate("", 0));
    std::unique_ptr<void, decltype(&std::free)> bytes(Allocate(wanted), std::free);
    if (!bytes) throw std::bad_alloc();
    const size_t length = reading.Read(stretch.offset, {static_cast<uint8_t *>(bytes.get()), wanted});
    auto data = Adopt(ValDataCreateWithBytesNoCopy(bytes.get(), length, std::free, bytes.get()));
    if (data) static_cast<void>(bytes.release());
    return data;
}

} // namespace

TSfntFace::TSfntFace(TParts parts) : parts_(std::move(parts)), defaults_(parts_.variations.Defaults()) {
    for (const TVariationAxis &axis : parts_.variations.axes) {
        auto name = parts_.names->Copy(axis.name);
        if (!name) name = TagText(axis.tag);
        axes_.push_back({axis.tag, std::move(name), axis.minimum, axis.default_value, axis.maximum});
    }
}

Ref<const ValString> TSfntFace::CopyPostScriptName() const {
    return CopyName(GxNameKey::kPostScript);
}

Ref<const ValString> TSfntFace::CopyFamilyName() const {
    auto name = CopyName(GxNameKey::kPreferredFamily);
    return name ? name : CopyName(GxNameKey::kFamily);
}

Ref<const ValString> TSfntFace::CopyFullName() const {
    return CopyName(GxNameKey::kFull);
}

Ref<const ValString> TSfntFace::CopyName(GxNameKey key) const {
    return parts_.names->Copy(static_cast<uint16_t>(key));
}

Ref<const ValString> TSfntFace::CopyLocalizedName(GxNameKey key, std::string_view language) const {
    return parts_.names->CopyInLanguage(static_cast<uint16_t>(key), language);
}

Ref<const ValArray> TSfntFace::CopyNameLanguages() const {
    return parts_.names->CopyLanguages();
}

void TSfntFace::CopyTables(std::span<const GxTag> tags, std::span<Ref<const ValData>> tables,
                           size_t limit) const {
    TReading reading;
    for (size_t i = 0; i < tags.size() && i < tables.size(); ++i) {
        const auto stretch = parts_.directory.Find(tags[i]);
        if (!stretch) continue;
        if (!reading) reading = parts_.source->Open();
        if (!reading) return;
        tables[i] = CopyData(reading, *stretch, limit);
    }
}

TBuffer TSfntFace::CopyBytes(const TReading &reading, GxTag tag, size_t limit) const {
    const auto stretch = parts_.directory.Find(tag);
    return stretch ? reading.Copy(stretch->offset, std::min<size_t>(stretch->length, limit)) : TBuffer();
}

Ref<const ValCharacterSet> TSfntFace::CopyCharacterSet() const {
    sHarfBuzz.Open(); // before the lock
    const std::lock_guard lock(mutex_);
    if (coverage_) return coverage_;
    const uint32_t failures = tPassingFailures;
    const TReading reading = parts_.source->Open();
    const TBuffer cmap = CopyBytes(reading, MakeTag("cmap"), limits::kCmapBytes);
    const TBuffer os2 = CopyBytes(reading, MakeTag("OS/2"), kOs2Bytes);
    auto coverage = ReadCoverage(cmap.View(), os2.View(), parts_.glyphs);
    if (failures == tPassingFailures) coverage_ = coverage;
    return coverage;
}

TSfntFace::TPostFacts TSfntFace::PostFacts() const {
    const std::lock_guard lock(mutex_);
    if (post_facts_) return *post_facts_;
    const uint32_t failures = tPassingFailures;
    const TReading reading = parts_.source->Open();
    const TBuffer post = CopyBytes(reading, MakeTag("post"), kPostHeaderSize);
    const TPostFacts facts{ReadFixed(post.View(), 4), ReadU32(post.View(), 12) != 0};
    if (failures == tPassingFailures) post_facts_ = facts;
    return facts;
}

double TSfntFace::ItalicAngle() const {
    return PostFacts().italic_angle;
}

bool TSfntFace::IsFixedPitch() const {
    return PostFacts().fixed_pitch;
}

bool TSfntFace::HasBitmaps() const {
    return std::any_of(std::begin(kBitmapTags), std::end(kBitmapTags),
                       [this](GxTag tag) { return parts_.directory.Has(tag); });
}

bool TSfntFace::IsBitmapOnly() const {
    if (!HasBitmaps()) return false;
    sFreeType.Open(); // before the lock
    const std::lock_guard lock(mutex_);
    if (bitmap_only_) return *bitmap_only_;
    const TReading reading = parts_.source->Open();
    if (!reading) return false;
    const uint32_t failures = tPassingFailures;
    const bool is_bitmap_only = IsBitmapOnlySfnt(reading, parts_.index);
    if (failures == tPassingFailures) bitmap_only_ = is_bitmap_only;
    return is_bitmap_only;
}

} // namespace vellum
