// SPDX-License-Identifier: MIT
// The directory of an sfnt: which tables a face has, and where in the file they lie.
#pragma once

#include "platform/font/font_source.hpp"
#include "platform/font/gx_font.hpp"

#include <optional>
#include <vector>

namespace vellum {

// A stretch of a file, wholly inside of it.
struct TStretch {
    uint32_t offset = 0;
    uint32_t length = 0;

    bool operator==(const TStretch &) const = default;
};

// After Read, every stretch lies inside the file (entries that run past its end are cut, entries
// that begin past it are gone), every tag stands once (the first entry counts), and the tags stand
// in the order of the directory.
class TTableDirectory {
public:
    // The directory at `offset`. `head` holds the file's first bytes, already read.
    static TTableDirectory Read(const TReading &reading, TBytes head, uint32_t offset);

    std::span<const GxTag> Tags() const noexcept { return tags_; }
    std::optional<TStretch> Find(GxTag tag) const noexcept;
    bool Has(GxTag tag) const noexcept { return Find(tag).has_value(); }

private:
    void Add(GxTag tag, uint64_t offset, uint64_t length, uint64_t file_size);

    std::vector<GxTag> tags_;
    std::vector<TStretch> stretches_; // of the tag at the same index
};

// Where the directories of a file's faces stand: at 0, or where the collection says. Empty for a
// collection that claims more faces than limits::kFaces.
std::vector<uint32_t> ReadFaceOffsets(const TReading &reading, TBytes head);

} // namespace vellum
