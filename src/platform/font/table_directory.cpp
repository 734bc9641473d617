// SPDX-License-Identifier: MIT
// Reading of sfnt table directories and collection headers.
#include "platform/font/table_directory.hpp"

#include "platform/font/limits.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr GxTag kCollectionTag = MakeTag("ttcf");
constexpr size_t kHeaderSize = 12;
constexpr size_t kEntrySize = 16;

// A stretch of the file: borrowed from the bytes already read when it lies among them, else read.
class TWindow {
public:
    TWindow(const TReading &reading, TBytes head, uint64_t offset, size_t length) {
        if (offset <= head.size() && length <= head.size() - static_cast<size_t>(offset)) {
            view_ = head.subspan(static_cast<size_t>(offset), length);
        } else {
            buffer_ = reading.Copy(offset, length);
            view_ = buffer_.View();
        }
    }

    TBytes View() const noexcept { return view_; }

private:
    TBuffer buffer_;
    TBytes view_;
};

} // namespace

TTableDirectory TTableDirectory::Read(const TReading &reading, TBytes head, uint32_t offset) {
    const TWindow header(reading, head, offset, kHeaderSize);
    const size_t count = std::min<size_t>(ReadU16(header.View(), 4), limits::kTables);
    const TWindow entries(reading, head, uint64_t{offset} + kHeaderSize, count * kEntrySize);
    const size_t present = entries.View().size() / kEntrySize;
    TTableDirectory directory;
    directory.tags_.reserve(present);
    directory.stretches_.reserve(present);
    for (size_t i = 0; i < present; ++i) {
        const TBytes entry = entries.View().subspan(i * kEntrySize, kEntrySize);
        directory.Add(ReadU32(entry, 0), ReadU32(entry, 8), ReadU32(entry, 12), reading.Size());
    }
    return directory;
}

void TTableDirectory::Add(GxTag tag, uint64_t offset, uint64_t length, uint64_t file_size) {
    if (offset > file_size || (offset == file_size && length != 0)) return;
    if (std::find(tags_.begin(), tags_.end(), tag) != tags_.end()) return;
    tags_.push_back(tag);
    stretches_.push_back(
        {static_cast<uint32_t>(offset), static_cast<uint32_t>(std::min(length, file_size - offset))});
}

std::optional<TStretch> TTableDirectory::Find(GxTag tag) const noexcept {
    const auto found = std::find(tags_.begin(), tags_.end(), tag);
    if (found == tags_.end()) return std::nullopt;
    return stretches_[static_cast<size_t>(found - tags_.begin())];
}

std::vector<uint32_t> ReadFaceOffsets(const TReading &reading, TBytes head) {
    if (ReadU32(head, 0) != kCollectionTag) return {0};
    const size_t count = ReadU32(head, 8);
    if (count > limits::kFaces) return {};
    const TWindow window(reading, head, kHeaderSize, count * 4);
    std::vector<uint32_t> offsets(window.View().size() / 4);
    for (size_t i = 0; i < offsets.size(); ++i) offsets[i] = ReadU32(window.View(), i * 4);
    return offsets;
}

} // namespace vellum
