// SPDX-License-Identifier: MIT
// Data: plain bytes.
#include "platform/val/data.hpp"

#include "platform/val/hash.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// Hashes look at this many bytes at both ends, as data may be a whole font.
constexpr size_t kHashedBytes = 64;

struct LentData : ValData {
    LentData(const void *lent, size_t size, void (*give_back)(void *), void *lender) noexcept
        : release(give_back), context(lender) {
        place = Place::kLent;
        bytes = static_cast<uint8_t *>(const_cast<void *>(lent));
        length = capacity = size;
    }

    void (*release)(void *context);
    void *context;
};

void FinalizeData(ValObject *object) {
    auto *data = static_cast<ValData *>(object);
    if (data->place == ValData::Place::kHeap) std::free(data->bytes);
    if (data->place != ValData::Place::kLent) return;
    auto *lent = static_cast<LentData *>(data);
    if (lent->release) lent->release(lent->context);
}

bool EqualData(const ValObject *a, const ValObject *b) {
    return Bytes(static_cast<const ValData *>(a)) == Bytes(static_cast<const ValData *>(b));
}

uint64_t HashData(const ValObject *object) {
    std::string_view bytes = Bytes(static_cast<const ValData *>(object));
    size_t hashed = std::min(bytes.size(), kHashedBytes);
    uint64_t hash = CombineHash(bytes.size(), HashBytes(bytes.substr(0, hashed)));
    return CombineHash(hash, HashBytes(bytes.substr(bytes.size() - hashed)));
}

bool IsMutable(const ValData *data) noexcept {
    return data && data->place != ValData::Place::kLent;
}

} // namespace

constinit const ValKind kDataKind{kValTypeData, "Data", FinalizeData, EqualData, HashData, nullptr};

bool ReserveData(ValData *data, size_t capacity) noexcept {
    if (capacity <= data->capacity) return true;
    if (capacity > kMaximumSize) return false;
    capacity = std::max(capacity, std::min(data->capacity * 2, kMaximumSize));
    bool on_heap = data->place == ValData::Place::kHeap;
    auto *grown = static_cast<uint8_t *>(Reallocate(on_heap ? data->bytes : nullptr, capacity));
    if (!grown) return false;
    if (!on_heap && data->length) std::memcpy(grown, data->bytes, data->length);
    data->place = ValData::Place::kHeap;
    data->bytes = grown;
    data->capacity = capacity;
    return true;
}

} // namespace vellum

using namespace vellum;

const ValData *ValDataCreate(const void *bytes, size_t length) noexcept {
    if (!bytes && length) return nullptr;
    ValData *data = ValDataCreateMutable(length);
    if (data && length) {
        std::memcpy(data->bytes, bytes, length);
        data->length = length;
    }
    return data;
}

const ValData *ValDataCreateWithBytesNoCopy(const void *bytes, size_t length,
                                            void (*release)(void *context), void *context) noexcept {
    if (!bytes && length) return nullptr;
    return AllocateObject<LentData>(0, bytes, length, release, context);
}

ValData *ValDataCreateMutable(size_t capacity) noexcept {
    auto *data = AllocateObject<ValData>(capacity);
    if (!data) return nullptr;
    data->bytes = static_cast<uint8_t *>(ExtraBytes(data));
    data->capacity = capacity;
    return data;
}

size_t ValDataGetLength(const ValData *data) noexcept {
    return data ? data->length : 0;
}
const uint8_t *ValDataGetBytes(const ValData *data) noexcept {
    return data ? data->bytes : nullptr;
}
uint8_t *ValDataGetMutableBytes(ValData *data) noexcept {
    return IsMutable(data) ? data->bytes : nullptr;
}

bool ValDataAppend(ValData *data, const void *bytes, size_t length) noexcept {
    if (!IsMutable(data) || (!bytes && length) || length > SIZE_MAX - data->length) return false;
    if (length == 0) return true;
    // The bytes may be the data's own, and move with it.
    auto from = reinterpret_cast<uintptr_t>(bytes);
    auto start = reinterpret_cast<uintptr_t>(data->bytes);
    bool own = from >= start && from - start < data->length;
    if (!ReserveData(data, data->length + length)) return false;
    std::memmove(data->bytes + data->length, own ? data->bytes + (from - start) : bytes, length);
    data->length += length;
    return true;
}

bool ValDataSetLength(ValData *data, size_t length) noexcept {
    if (!IsMutable(data) || !ReserveData(data, length)) return false;
    if (length > data->length) std::memset(data->bytes + data->length, 0, length - data->length);
    data->length = length;
    return true;
}
