// SPDX-License-Identifier: MIT
#include "platform/beacon/metadata_items.hpp"

#include <cstring>

namespace vellum {

namespace {

struct Head {
    int64_t seconds;
    uint32_t nanoseconds;
    uint32_t path_length;
    uint32_t type_length;
};
constexpr size_t kHeadSize = 20; // without what the compiler adds at the end

void Append(std::vector<uint8_t> &bytes, const void *more, size_t length) {
    const auto *first = static_cast<const uint8_t *>(more);
    bytes.insert(bytes.end(), first, first + length);
}

class Cursor {
public:
    explicit Cursor(std::span<const uint8_t> bytes) noexcept : rest_(bytes) {}

    bool Read(void *out, size_t length) noexcept {
        if (rest_.size() < length) return false;
        std::memcpy(out, rest_.data(), length);
        rest_ = rest_.subspan(length);
        return true;
    }
    bool Read(std::string &text, size_t length) {
        if (rest_.size() < length) return false;
        text.assign(reinterpret_cast<const char *>(rest_.data()), length);
        rest_ = rest_.subspan(length);
        return true;
    }
    bool IsAtEnd() const noexcept { return rest_.empty(); }

private:
    std::span<const uint8_t> rest_;
};

bool ReadItem(Cursor &cursor, MetadataItem &item) {
    Head head;
    if (!cursor.Read(&head, kHeadSize) || head.nanoseconds >= 1'000'000'000 ||
        head.path_length > kLongestMetadataPath || head.type_length > kLongestContentType)
        return false;
    item.modified = {head.seconds, head.nanoseconds};
    return cursor.Read(item.path, head.path_length) && cursor.Read(item.content_type, head.type_length) &&
           item.path.starts_with('/') && item.path.find('\0') == std::string::npos;
}

} // namespace

std::vector<uint8_t> WriteMetadataItems(std::span<const MetadataItem> items) {
    std::vector<uint8_t> bytes(sizeof(uint32_t));
    uint32_t count = 0;
    for (const MetadataItem &item : items) {
        const size_t size = kHeadSize + item.path.size() + item.content_type.size();
        if (count == kMostMetadataItems || bytes.size() + size > kMostMetadataBytes) break;
        if (item.path.size() > kLongestMetadataPath || item.content_type.size() > kLongestContentType)
            continue;
        const Head head = {item.modified.seconds, item.modified.nanoseconds,
                           static_cast<uint32_t>(item.path.size()),
                           static_cast<uint32_t>(item.content_type.size())};
        Append(bytes, &head, kHeadSize);
        Append(bytes, item.path.data(), item.path.size());
        Append(bytes, item.content_type.data(), item.content_type.size());
        ++count;
    }
    std::memcpy(bytes.data(), &count, sizeof count);
    return bytes;
}

std::optional<std::vector<MetadataItem>> ReadMetadataItems(std::span<const uint8_t> bytes) {
    Cursor cursor(bytes);
    uint32_t count = 0;
    if (bytes.size() > kMostMetadataBytes || !cursor.Read(&count, sizeof count) ||
        count > kMostMetadataItems)
        return std::nullopt;
    std::vector<MetadataItem> items;
    for (uint32_t i = 0; i < count; ++i)
        if (!ReadItem(cursor, items.emplace_back())) return std::nullopt;
    if (!cursor.IsAtEnd()) return std::nullopt;
    return items;
}

} // namespace vellum
