// SPDX-License-Identifier: MIT
// The bitmap form of character sets.
#include "platform/val/character_set.hpp"
#include "platform/val/data.hpp"
#include "platform/val/hash.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr size_t kPlaneBytes = 8192;
constexpr uint32_t kPlanes = 17;
constexpr uint32_t kPlanePages = kPlaneBytes * 8 / kPageBits;
constexpr size_t kPageBytes = kPageBits / 8;

// The bytes of each plane; a plane that is not given is empty.
using Planes = std::array<std::string_view, kPlanes>;

bool SplitPlanes(std::string_view bytes, Planes &planes) noexcept {
    planes[0] = bytes.substr(0, kPlaneBytes);
    bytes.remove_prefix(planes[0].size());
    while (!bytes.empty()) {
        auto plane = static_cast<unsigned char>(bytes[0]);
        if (bytes.size() <= kPlaneBytes || plane == 0 || plane >= kPlanes || !planes[plane].empty())
            return false;
        planes[plane] = bytes.substr(1, kPlaneBytes);
        bytes.remove_prefix(1 + kPlaneBytes);
    }
    return true;
}

CharacterPage ReadPage(const Planes &planes, uint32_t page) noexcept {
    std::string_view plane = planes[page / kPlanePages];
    size_t offset = std::min(page % kPlanePages * kPageBytes, plane.size());
    std::string_view bytes = plane.substr(offset, kPageBytes);
    CharacterPage words{};
    for (size_t i = 0; i < bytes.size(); i += 8) {
        words[i / 8] = LoadBytes(bytes.data() + i, std::min<size_t>(bytes.size() - i, 8));
    }
    return words;
}

PageBitmap FindPages(const Planes &planes) noexcept {
    PageBitmap presence{};
    for (uint32_t page = 0; page < kPageCount; ++page) {
        if (ReadPage(planes, page) != CharacterPage{}) presence[page / 64] |= uint64_t{1} << (page % 64);
    }
    return presence;
}

void WritePage(const CharacterPage &page, uint8_t *out) noexcept {
    for (uint64_t word : page) {
        for (int i = 0; i < 8; ++i, word >>= 8) *out++ = static_cast<uint8_t>(word);
    }
}

// Writes one plane's bytes, which are zeros so far.
void WritePlane(const ValCharacterSet &set, uint32_t plane, uint8_t *out) noexcept {
    for (uint32_t i = 0; i < kPlanePages; ++i) {
        if (auto *page = FindPage(set, plane * kPlanePages + i)) WritePage(*page, out + i * kPageBytes);
    }
}

} // namespace
} // namespace vellum

using namespace vellum;

const ValCharacterSet *ValCharacterSetCreateWithBitmap(const void *bytes, size_t length) noexcept {
    Planes planes;
    if (!bytes || !SplitPlanes({static_cast<const char *>(bytes), length}, planes)) return nullptr;
    ValCharacterSet *set = AllocateCharacterSet(FindPages(planes));
    for (uint32_t page = 0, at = 0; set && at < set->page_count; ++page) {
        if (FindPage(*set, page)) set->pages[at++] = ReadPage(planes, page);
    }
    return set;
}

const ValData *ValCharacterSetCopyBitmap(const ValCharacterSet *set) noexcept {
    if (!set) return nullptr;
    size_t length = kPlaneBytes;
    for (uint32_t plane = 1; plane < kPlanes; ++plane) {
        if (ValCharacterSetHasMemberInPlane(set, plane)) length += 1 + kPlaneBytes;
    }
    Ref<ValData> data = Adopt(ValDataCreateMutable(length));
    if (!ValDataSetLength(data.Get(), length)) return nullptr;
    uint8_t *out = data.Get()->bytes;
    WritePlane(*set, 0, out);
    out += kPlaneBytes;
    for (uint32_t plane = 1; plane < kPlanes; ++plane) {
        if (!ValCharacterSetHasMemberInPlane(set, plane)) continue;
        *out++ = static_cast<uint8_t>(plane);
        WritePlane(*set, plane, out);
        out += kPlaneBytes;
    }
    return data.Release();
}
