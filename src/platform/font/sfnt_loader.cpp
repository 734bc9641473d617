// SPDX-License-Identifier: MIT
// Creation of sfnt faces with as little reading as their validity takes.
#include "platform/font/sfnt_loader.hpp"

#include "platform/font/instance_face.hpp"
#include "platform/font/limits.hpp"

#include <algorithm>
#include <optional>

namespace vellum {
namespace {

constexpr size_t kHeadSize = 54;
constexpr size_t kMaxpSize = 6;

class TSfntLoader {
public:
    TSfntLoader(const TFontSourcePtr &source, const TReading &reading, TBytes head)
        : source_(source), reading_(reading), head_(head) {}

    // Null when there is no valid face at that offset.
    std::shared_ptr<const TSfntFace> Load(uint32_t index, uint32_t offset);

private:
    bool HasHead(const TTableDirectory &directory) const;
    uint16_t CountGlyphs(const TTableDirectory &directory) const;
    TVariations Variations(const TTableDirectory &directory);
    std::shared_ptr<const TNames> Names(const TTableDirectory &directory, const TVariations &variations);

    const TFontSourcePtr &source_;
    const TReading &reading_;
    const TBytes head_;
    std::vector<std::shared_ptr<const TNames>> names_; // of the faces so far, each once
    size_t fvar_bytes_ = limits::kFvarBytesOfFile;     // that may still be read
    size_t instances_ = limits::kInstances;            // that may still be listed
};

bool TSfntLoader::HasHead(const TTableDirectory &directory) const {
    auto head = directory.Find(MakeTag("head"));
    if (!head) head = directory.Find(MakeTag("bhed"));
    return head && head->length >= kHeadSize;
}

uint16_t TSfntLoader::CountGlyphs(const TTableDirectory &directory) const {
    const auto maxp = directory.Find(MakeTag("maxp"));
    if (!maxp || maxp->length < kMaxpSize) return 0;
    uint8_t bytes[kMaxpSize];
    TBytes table = Slice(head_, maxp->offset, kMaxpSize);
    if (table.size() < kMaxpSize) table = TBytes(bytes, reading_.Read(maxp->offset, bytes));
    const uint32_t version = ReadU32(table, 0);
    const bool known = version == 0x00005000 || version >> 16 == 1;
    return known ? ReadU16(table, 4) : uint16_t{0};
}

TVariations TSfntLoader::Variations(const TTableDirectory &directory) {
    const auto fvar = directory.Find(MakeTag("fvar"));
    if (!fvar) return {};
    const size_t length = std::min<size_t>(fvar->length, limits::kFvarBytes);
    if (length > fvar_bytes_) return {};
    fvar_bytes_ -= length;
    TVariations variations = ReadVariations(reading_.Copy(fvar->offset, length).View(), instances_);
    instances_ -= variations.instances.size();
    return variations;
}

// Looks back only a little way: faces that share a name table stand together, and a hostile
// collection is not to make this quadratic.
std::shared_ptr<const TNames> TSfntLoader::Names(const TTableDirectory &directory,
                                                 const TVariations &variations) {
    constexpr std::ptrdiff_t kLookBack = 16;
    const auto stretch = directory.Find(MakeTag("name"));
    std::vector<uint16_t> more = variations.NameIdentifiers();
    const auto begin = names_.end() - std::min<std::ptrdiff_t>(kLookBack, std::ssize(names_));
    const auto known =
        std::find_if(begin, names_.end(), [&](const auto &names) { return names->IsFor(stretch, more); });
    if (known != names_.end()) return *known;
    return names_.emplace_back(std::make_shared<const TNames>(source_, stretch, std::move(more)));
}

std::shared_ptr<const TSfntFace> TSfntLoader::Load(uint32_t index, uint32_t offset) {
    TTableDirectory directory = TTableDirectory::Read(reading_, head_, offset);
    const uint16_t glyphs = HasHead(directory) ? CountGlyphs(directory) : uint16_t{0};
    if (glyphs == 0) return nullptr;
    TVariations variations = Variations(directory);
    auto names = Names(directory, variations);
    if (!variations.axes.empty()) names->Load(reading_);
    return std::make_shared<const TSfntFace>(TSfntFace::TParts{source_, index, std::move(directory), glyphs,
                                                               std::move(variations), std::move(names)});
}

void AddInstances(const std::shared_ptr<const TSfntFace> &face, std::vector<TFacePtr> &instances) {
    for (size_t i = 0; i < face->Instances().size(); ++i) {
        instances.push_back(std::make_shared<const TInstanceFace>(face, i));
    }
}

} // namespace

void LoadSfntFaces(const TFontSourcePtr &source, const TReading &reading, TBytes head,
                   std::vector<TFacePtr> &faces, std::vector<TFacePtr> &instances) {
    TSfntLoader loader(source, reading, head);
    const std::vector<uint32_t> offsets = ReadFaceOffsets(reading, head);
    for (uint32_t i = 0; i < offsets.size(); ++i) {
        const auto face = loader.Load(i, offsets[i]);
        if (!face) continue;
        faces.push_back(face);
        AddInstances(face, instances);
    }
}

} // namespace vellum
