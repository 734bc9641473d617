// SPDX-License-Identifier: MIT
#include "ipc/encoding/flattened_size.hpp"

#include "ipc/encoding/value_items.hpp"
#include "platform/val/character_set.hpp"
#include "platform/val/data.hpp"
#include "platform/val/number.hpp"
#include "platform/val/string.hpp"
#include "platform/val/url.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr size_t kHead = 2 * kWordSize; // the tag, and the length or count

// The most that one UTF-16 unit takes in UTF-8; the two of a pair take four together.
constexpr size_t kBytesPerUTF16Unit = 3;

// Adds up a value and what is in it. Values may share parts and so be far larger than what they take
// in memory: the sum stops where it is known to be more than enough.
class SizeEstimate {
public:
    explicit SizeEstimate(size_t enough) noexcept : enough_(enough) {}

    size_t Sum() const noexcept { return sum_; }

    void Add(const void *value) noexcept {
        switch (TypeOf(value)) {
        case kValTypeString:
            return AddBytes(kHead +
                            kBytesPerUTF16Unit * static_cast<const ValString *>(value)->utf16_length);
        case kValTypeNumber:
            return AddBytes(kHead + kWordSize + NumberSize(static_cast<const ValNumber *>(value)->type));
        case kValTypeBoolean:
            return AddBytes(kHead + 1);
        case kValTypeData:
            return AddBytes(kHead + static_cast<const ValData *>(value)->length);
        case kValTypeCharacterSet:
            return AddBytes(kHead + BitmapLength(*static_cast<const ValCharacterSet *>(value)));
        case kValTypeURL:
            return AddBytes(kHead + AbsoluteText(*static_cast<const ValURL *>(value)).size());
        case kValTypeUUID:
            return AddBytes(kHead + kUUIDSize);
        case kValTypeArray:
            return AddItems(static_cast<const ValArray *>(value));
        case kValTypeSet:
            return AddItems(static_cast<const ValSet *>(value));
        case kValTypeDictionary:
            return AddItems(static_cast<const ValDictionary *>(value));
        default:
            return;
        }
    }

private:
    void AddBytes(size_t bytes) noexcept { sum_ += std::min(bytes, kMaximumFlattenedLength + 1); }

    template <class Container>
    void AddItems(const Container *container) noexcept {
        AddBytes(kHead);
        if (!HoldsValues(container) || nesting_ == kMaximumNesting) return;
        ++nesting_;
        ForEachItem(container, [this](const void *item) {
            if (sum_ <= enough_) Add(item);
        });
        --nesting_;
    }

    const size_t enough_;
    size_t sum_ = 0;
    size_t nesting_ = 0;
};

} // namespace

size_t EstimateFlattenedSize(const void *value, size_t enough) noexcept {
    SizeEstimate estimate(enough);
    if (value) estimate.Add(value);
    return estimate.Sum();
}

} // namespace vellum
