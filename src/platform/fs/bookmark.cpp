// SPDX-License-Identifier: MIT
#include "platform/fs/bookmark.hpp"

#include "platform/fs/directory.hpp"
#include "platform/fs/file_properties.hpp"

#include <climits>
#include <string_view>

namespace vellum {

namespace {

constexpr uint32_t kMagic = 0x56426B6D; // "VBkm"
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 36;
constexpr size_t kMaximumPath = PATH_MAX - 1;

template <class Word>
void AppendWord(std::vector<uint8_t> &bytes, Word word) {
    for (size_t i = sizeof(Word); i-- > 0;) bytes.push_back(static_cast<uint8_t>(word >> (8 * i)));
}

// The word at a place; the caller knows that it is there.
template <class Word>
Word WordAt(std::span<const uint8_t> bytes, size_t at) noexcept {
    Word word = 0;
    for (const uint8_t byte : bytes.subspan(at, sizeof(Word))) word = static_cast<Word>(word << 8 | byte);
    return word;
}

bool IsKeepable(std::string_view path) noexcept {
    return path.starts_with('/') && path.size() <= kMaximumPath && path.find('\0') == path.npos;
}

struct Bookmark {
    uint64_t device;
    uint64_t inode;
    uint64_t size;
    std::string path;
};

std::optional<Bookmark> Read(std::span<const uint8_t> bytes) {
    if (bytes.size() < kHeaderSize || WordAt<uint32_t>(bytes, 0) != kMagic ||
        WordAt<uint32_t>(bytes, 4) != kVersion || WordAt<uint32_t>(bytes, 32) != bytes.size() - kHeaderSize)
        return std::nullopt;
    std::string path(bytes.begin() + kHeaderSize, bytes.end());
    if (!IsKeepable(path)) return std::nullopt;
    return Bookmark{WordAt<uint64_t>(bytes, 8), WordAt<uint64_t>(bytes, 16), WordAt<uint64_t>(bytes, 24),
                    std::move(path)};
}

TResolvedBookmark Resolved(std::string path, const TFileProperties &properties) {
    return {std::move(path), properties.kind == TFileKind::kFolder};
}

bool IsSameFile(const Bookmark &bookmark, const TFileProperties &properties) noexcept {
    return properties.device == bookmark.device && properties.inode == bookmark.inode &&
           properties.size == bookmark.size;
}

std::optional<TResolvedBookmark> FindRenamed(const Bookmark &bookmark) {
    const std::string folder = bookmark.path.substr(0, bookmark.path.find_last_of('/') + 1);
    for (const DirectoryEntry &entry : ListDirectory(folder.c_str())) {
        const auto properties = ReadFileProperties(folder + entry.name);
        if (properties && IsSameFile(bookmark, *properties))
            return Resolved(folder + entry.name, *properties);
    }
    return std::nullopt;
}

} // namespace

std::vector<uint8_t> CreateBookmark(std::string path) {
    // A slash behind the name would make the folder its own parent.
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    if (!IsKeepable(path)) return {};
    const auto properties = ReadFileProperties(path);
    if (!properties) return {};
    std::vector<uint8_t> bytes;
    bytes.reserve(kHeaderSize + path.size());
    AppendWord(bytes, kMagic);
    AppendWord(bytes, kVersion);
    AppendWord(bytes, properties->device);
    AppendWord(bytes, properties->inode);
    AppendWord(bytes, properties->size);
    AppendWord(bytes, static_cast<uint32_t>(path.size()));
    bytes.insert(bytes.end(), path.begin(), path.end());
    return bytes;
}

std::optional<TResolvedBookmark> ResolveBookmark(std::span<const uint8_t> bytes) {
    const auto bookmark = Read(bytes);
    if (!bookmark) return std::nullopt;
    if (const auto properties = ReadFileProperties(bookmark->path))
        return Resolved(bookmark->path, *properties);
    return FindRenamed(*bookmark);
}

} // namespace vellum
