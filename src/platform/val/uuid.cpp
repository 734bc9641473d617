// SPDX-License-Identifier: MIT
// UUIDs.
#include "platform/process/random.hpp"
#include "platform/val/hash.hpp"
#include "platform/val/string.hpp"

#include <array>
#include <cstring>

namespace vellum {
extern const ValKind kUUIDKind;
} // namespace vellum

struct ValUUID : vellum::ValObject {
    explicit ValUUID(const std::array<uint8_t, 16> &uuid) noexcept
        : ValObject(vellum::kUUIDKind), bytes(uuid) {}

    std::array<uint8_t, 16> bytes;
};

namespace vellum {
namespace {

using UUIDBytes = std::array<uint8_t, 16>;

constexpr size_t kTextLength = 36;

bool EqualUUIDs(const ValObject *a, const ValObject *b) {
    return static_cast<const ValUUID *>(a)->bytes == static_cast<const ValUUID *>(b)->bytes;
}

uint64_t HashUUID(const ValObject *object) {
    auto &bytes = static_cast<const ValUUID *>(object)->bytes;
    return HashBytes({reinterpret_cast<const char *>(bytes.data()), bytes.size()});
}

constexpr bool IsDash(size_t at) noexcept {
    return at == 8 || at == 13 || at == 18 || at == 23;
}

int HexValue(char c) noexcept {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    size_t at = kDigits.find(c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at < 16 ? at : at - 6);
}

bool ParseUUID(std::string_view text, UUIDBytes &bytes) noexcept {
    if (text.size() != kTextLength) return false;
    size_t digits = 0;
    for (size_t i = 0; i < kTextLength; ++i) {
        if (IsDash(i)) {
            if (text[i] != '-') return false;
            continue;
        }
        int value = HexValue(text[i]);
        if (value < 0) return false;
        uint8_t &byte = bytes[digits++ / 2];
        byte = static_cast<uint8_t>(byte << 4 | value);
    }
    return true;
}

} // namespace

constinit const ValKind kUUIDKind{kValTypeUUID, "UUID", nullptr, EqualUUIDs, HashUUID, nullptr};

} // namespace vellum

using namespace vellum;

const ValUUID *ValUUIDCreate(void) noexcept {
    UUIDBytes bytes{};
    if (!FillRandom(bytes.data(), bytes.size())) return nullptr;
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80); // the usual variant
    return AllocateObject<ValUUID>(0, bytes);
}

const ValUUID *ValUUIDCreateWithBytes(const uint8_t bytes[16]) noexcept {
    if (!bytes) return nullptr;
    UUIDBytes copy;
    std::memcpy(copy.data(), bytes, copy.size());
    return AllocateObject<ValUUID>(0, copy);
}

const ValUUID *ValUUIDCreateWithString(const ValString *text) noexcept {
    UUIDBytes bytes{};
    return ParseUUID(Text(text), bytes) ? AllocateObject<ValUUID>(0, bytes) : nullptr;
}

const uint8_t *ValUUIDGetBytes(const ValUUID *uuid) noexcept {
    return uuid ? uuid->bytes.data() : nullptr;
}

const ValString *ValUUIDCopyString(const ValUUID *uuid) noexcept {
    if (!uuid) return nullptr;
    char text[kTextLength];
    size_t digits = 0;
    for (size_t i = 0; i < kTextLength; ++i) {
        if (IsDash(i)) {
            text[i] = '-';
            continue;
        }
        uint8_t byte = uuid->bytes[digits / 2];
        text[i] = "0123456789ABCDEF"[digits++ % 2 ? byte & 15 : byte >> 4];
    }
    return MakeString({text, kTextLength}).Release();
}
