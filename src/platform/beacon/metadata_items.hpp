// SPDX-License-Identifier: MIT
// What the search for files finds, and how it travels: a word that counts the files, then for each 8 bytes
// with the seconds and a word with the nanoseconds of its last change, two words that count the bytes of
// its path and of its content type, and these bytes.
#pragma once

#include "platform/fs/file_properties.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vellum {

struct MetadataItem {
    std::string path;         // absolute
    std::string content_type; // a type identifier
    TFileTime modified;       // its content, last

    bool operator==(const MetadataItem &) const = default;
};

// What one query may bring.
constexpr size_t kMostMetadataItems = 4096;
constexpr size_t kMostMetadataBytes = size_t{4} << 20;
constexpr size_t kLongestMetadataPath = 4095;
constexpr size_t kLongestContentType = 255;

// As they travel; as many of them, from the first on, as may. Throws std::bad_alloc.
std::vector<uint8_t> WriteMetadataItems(std::span<const MetadataItem> items);

// Nothing for bytes that are not laid out like that, to the last one, for a path that is not absolute, or
// is longer or holds a zero, and for more than one query may bring. Throws std::bad_alloc.
std::optional<std::vector<MetadataItem>> ReadMetadataItems(std::span<const uint8_t> bytes);

} // namespace vellum
