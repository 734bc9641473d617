// SPDX-License-Identifier: MIT
// A fork, all numbers big-endian:
//
//     header      where the resources lie and where the map does, and how long both are
//     resources   each a length and its bytes
//     map         24 bytes of no interest, where in the map the list of types stands, where the names do
//       types       a count, and for each type its tag, a count and where in this list its references stand
//       references  the id, the name, 8 bits of attributes, 24 of where among the resources it lies
//
// Every count stands there as one less. The lengths in the header are not believed: what is there, is.
#include "platform/font/resource_map.hpp"

#include "platform/fs/file_fork.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace vellum {
namespace {

constexpr size_t kAttributeBytes = 16u << 20;

constexpr size_t kHeaderSize = 16;
constexpr size_t kMapOffset = 4; // in the header

// In the map, and the least that it has.
constexpr size_t kTypeListOffset = 24;
constexpr size_t kMapHeaderSize = 28;

// In the list of types: behind the count, and from row to row. A row begins with the tag.
constexpr size_t kFirstType = 2;
constexpr size_t kTypeSize = 8;
constexpr size_t kReferenceCount = 4;
constexpr size_t kReferenceList = 6;

// A reference begins with the id.
constexpr size_t kReferenceSize = 12;
constexpr size_t kDataOffset = 4; // with the attributes in front of it
constexpr uint32_t kDataOffsetBits = 0xFFFFFF;

// Two offsets of 16 bits lead to the last list of references that can be reached.
constexpr size_t kMapBytes = 2 * 0xFFFF + kReferenceSize * kMaximumResources;

// 0xFFFF stands for none.
constexpr size_t ReadCount(TBytes bytes, size_t at) noexcept {
    return (ReadU16(bytes, at) + 1u) & 0xFFFF;
}

constexpr size_t RowOffset(size_t row) noexcept {
    return kFirstType + row * kTypeSize;
}

} // namespace

TReading OpenFork(const TReading &file, const std::string &path) {
    const auto attribute =
        std::make_shared<const TBuffer>(file.CopyAttribute(kForkAttribute, kAttributeBytes));
    if (attribute->Size() != 0) return TReading(attribute->View(), attribute);
    TFileIdentity identity;
    TDescriptor descriptor = OpenRegularFile(ForkFileOf(path).c_str(), &identity);
    return descriptor.IsOpen() ? TReading(std::move(descriptor), identity.size) : TReading();
}

TResourceMap::TResourceMap(TReading fork) : fork_(std::move(fork)), left_(fork_.Size()) {
    const TBuffer header = fork_.Copy(0, kHeaderSize);
    if (header.Size() < kHeaderSize) return;
    map_ = fork_.Copy(ReadU32(header.View(), kMapOffset), kMapBytes);
    if (map_.Size() < kMapHeaderSize) return;
    data_ = ReadU32(header.View(), 0);
    types_ = Slice(map_.View(), ReadU16(map_.View(), kTypeListOffset), map_.Size());
    if (types_.size() < kFirstType) return;
    type_count_ = std::min(ReadCount(types_, 0), (types_.size() - kFirstType) / kTypeSize);
}

GxTag TResourceMap::TypeAt(size_t row) const noexcept {
    return ReadU32(types_, RowOffset(row));
}

bool TResourceMap::HasType(GxTag type) const noexcept {
    for (size_t row = 0; row < type_count_; ++row)
        if (TypeAt(row) == type) return true;
    return false;
}

std::vector<TResource> TResourceMap::Find(GxTag type) const {
    std::vector<TResource> found;
    for (size_t row = 0; row < type_count_; ++row)
        if (TypeAt(row) == type) AppendReferences(found, row);
    return found;
}

void TResourceMap::AppendReferences(std::vector<TResource> &found, size_t row) const {
    const size_t at = RowOffset(row);
    const TBytes list = Slice(types_, ReadU16(types_, at + kReferenceList), types_.size());
    const size_t count = std::min({ReadCount(types_, at + kReferenceCount), list.size() / kReferenceSize,
                                   kMaximumResources - found.size()});
    for (size_t i = 0; i < count; ++i) {
        const TBytes reference = list.subspan(i * kReferenceSize, kReferenceSize);
        found.push_back(
            {ReadU16(reference, 0), data_ + (ReadU32(reference, kDataOffset) & kDataOffsetBits)});
    }
}

std::optional<TBuffer> TResourceMap::Copy(const TResource &resource) {
    const TBuffer stated = fork_.Copy(resource.offset, sizeof(uint32_t));
    const uint32_t length = ReadU32(stated.View(), 0);
    if (stated.Size() < sizeof length || length > std::min<uint64_t>(kMaximumResourceSize, left_))
        return std::nullopt;
    left_ -= length;
    TBuffer data = fork_.Copy(resource.offset + sizeof length, length);
    if (data.Size() != length) return std::nullopt;
    return data;
}

} // namespace vellum
