// SPDX-License-Identifier: MIT
// The bitmap form of character sets.
#include "platform/val/character_set.hpp"
#include "platform/val/data.hpp"
#include "platform/val/hash.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr size_t kPlaneBytes = 8192;
constexpr uint32_t kPlanes = 17;
constexpr uint32_t kPlanePages = kPlaneBytes * 8 / kPageBits;
constexpr uint32_t kPlaneWords = kPlanePages / 64; // of the bits that tell which pages are there
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

constexpr size_t kPageWords = kPageBytes / 8;

// Visits the pages of a plane: visit(number of the page, its bytes). The plane may end within the last.
template <class Visit>
void ForEachPage(std::string_view plane, Visit visit) noexcept {
    const size_t whole = plane.size() / kPageBytes;
    for (size_t page = 0; page < whole; ++page) visit(page, plane.data() + page * kPageBytes);
    if (plane.size() % kPageBytes == 0) return;
    char bytes[kPageBytes] = {};
    std::memcpy(bytes, plane.data() + whole * kPageBytes, plane.size() % kPageBytes);
    visit(whole, bytes);
}

uint64_t PageWord(const char *page, size_t word) noexcept {
    return LoadBytes(page + word * 8, 8);
}

PageBitmap FindPages(const Planes &planes) noexcept {
    PageBitmap presence{};
    for (uint32_t plane = 0; plane < kPlanes; ++plane) {
        uint64_t *const words = &presence[plane * kPlaneWords];
        ForEachPage(planes[plane], [words](size_t page, const char *bytes) {
            uint64_t members = 0;
            for (size_t i = 0; i < kPageWords; ++i) members |= PageWord(bytes, i);
            words[page / 64] |= uint64_t{members != 0} << (page % 64);
        });
    }
    return presence;
}

void WritePage(const CharacterPage &page, uint8_t *out) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(out, page.data(), kPageBytes);
        return;
    }
    for (uint64_t word : page) {
        for (int i = 0; i < 8; ++i, word >>= 8) *out++ = static_cast<uint8_t>(word);
    }
}

// Writes a plane; `pages` stands at its first page that is there, and then behind its last one.
void WritePlane(const ValCharacterSet &set, uint32_t plane, const CharacterPage *&pages,
                uint8_t *out) noexcept {
    for (uint32_t word = plane * kPlaneWords; word < (plane + 1) * kPlaneWords; ++word) {
        uint64_t presence = set.presence[word];
        if (presence != ~uint64_t{0}) std::memset(out, 0, kPlaneBytes / kPlaneWords);
        for (; presence; presence &= presence - 1) {
            WritePage(*pages++, out + static_cast<size_t>(std::countr_zero(presence)) * kPageBytes);
        }
        out += kPlaneBytes / kPlaneWords;
    }
}

} // namespace

bool IsBitmap(std::string_view bytes) noexcept {
    Planes planes;
    return bytes.size() >= kPlaneBytes && SplitPlanes(bytes, planes);
}

size_t BitmapLength(const ValCharacterSet &set) noexcept {
    size_t length = kPlaneBytes;
    for (uint32_t plane = 1; plane < kPlanes; ++plane) {
        if (ValCharacterSetHasMemberInPlane(&set, plane)) length += 1 + kPlaneBytes;
    }
    return length;
}

void WriteBitmap(const ValCharacterSet &set, uint8_t *out) noexcept {
    const CharacterPage *pages = set.pages;
    WritePlane(set, 0, pages, out);
    out += kPlaneBytes;
    for (uint32_t plane = 1; plane < kPlanes; ++plane) {
        if (!ValCharacterSetHasMemberInPlane(&set, plane)) continue;
        *out++ = static_cast<uint8_t>(plane);
        WritePlane(set, plane, pages, out);
        out += kPlaneBytes;
    }
}

} // namespace vellum

using namespace vellum;

const ValCharacterSet *ValCharacterSetCreateWithBitmap(const void *bytes, size_t length) noexcept {
    Planes planes;
    if (!bytes || !SplitPlanes({static_cast<const char *>(bytes), length}, planes)) return nullptr;
    ValCharacterSet *set = AllocateCharacterSet(FindPages(planes));
    if (!set) return nullptr;
    CharacterPage *out = set->pages;
    for (uint32_t plane = 0; plane < kPlanes; ++plane) {
        const uint64_t *const presence = &set->presence[plane * kPlaneWords];
        ForEachPage(planes[plane], [presence, &out](size_t page, const char *members) {
            if (!(presence[page / 64] >> (page % 64) & 1)) return;
            for (size_t i = 0; i < kPageWords; ++i) (*out)[i] = PageWord(members, i);
            ++out;
        });
    }
    return set;
}

const ValData *ValCharacterSetCopyBitmap(const ValCharacterSet *set) noexcept {
    if (!set) return nullptr;
    ValData *data = ValDataCreateMutable(BitmapLength(*set));
    if (data) WriteBitmap(*set, ExtendData(data, BitmapLength(*set)));
    return data;
}
