// SPDX-License-Identifier: MIT
#include "ipc/encoding/flatten_context.hpp"

#include "ipc/encoding/byte_order.hpp"
#include "ipc/encoding/encoding.hpp"
#include "ipc/encoding/value_items.hpp"
#include "platform/log/log.hpp"
#include "platform/val/character_set.hpp"
#include "platform/val/number.hpp"
#include "platform/val/string.hpp"
#include "platform/val/url.hpp"

namespace vellum {
namespace {

constexpr uint32_t Tag(EncodingTag tag) noexcept {
    return static_cast<uint32_t>(tag);
}

// A number in its own type and the processor's order.
void StoreNumber(uint8_t *out, const ValNumber &number) noexcept {
    const auto store = [out](auto value) { std::memcpy(out, &value, sizeof value); };
    switch (number.type) {
    case kValNumberTypeSInt8:
        return store(static_cast<int8_t>(number.integer));
    case kValNumberTypeSInt16:
        return store(static_cast<int16_t>(number.integer));
    case kValNumberTypeSInt32:
        return store(static_cast<int32_t>(number.integer));
    case kValNumberTypeSInt64:
        return store(number.integer);
    case kValNumberTypeFloat32:
        return store(static_cast<float>(number.real));
    default:
        return store(number.real);
    }
}

} // namespace

TValFlattenContext::TValFlattenContext(ValData *output, bool adopt) noexcept {
    SetOutput(adopt ? Adopt(output) : Retain(output));
}

void TValFlattenContext::SetOutput(Ref<ValData> output) noexcept {
    output_ = std::move(output);
    ok_ = open_ = static_cast<bool>(output_);
}

void TValFlattenContext::Fail() noexcept {
    ok_ = open_ = false;
    ValDataSetLength(output_.Get(), 0);
}

bool TValFlattenContext::MakeRoom(size_t bytes) noexcept {
    const size_t length = GetLength();
    return bytes <= kMaximumFlattenedLength && length <= kMaximumFlattenedLength - bytes &&
           ReserveData(output_.Get(), length + bytes);
}

// The place of that many bytes at the end; null when there is no room, which ends an open context.
inline uint8_t *TValFlattenContext::Extend(size_t bytes) noexcept {
    if (!open_) return nullptr;
    ValData *output = output_.Get();
    if (bytes > output->capacity - output->length && !MakeRoom(bytes)) {
        Fail();
        return nullptr;
    }
    uint8_t *end = output->bytes + output->length;
    output->length += bytes;
    return end;
}

// Writes tag and length, and answers the place of the `payload` bytes that follow.
inline uint8_t *TValFlattenContext::BeginItem(uint32_t tag, size_t length, size_t payload) noexcept {
    uint8_t *out = payload <= kMaximumFlattenedLength ? Extend(2 * kWordSize + payload) : Extend(SIZE_MAX);
    return out ? StoreWord(StoreWord(out, tag), static_cast<uint32_t>(length)) : nullptr;
}

inline void TValFlattenContext::AppendItem(uint32_t tag, const void *bytes, size_t length) noexcept {
    uint8_t *out = BeginItem(tag, length, length);
    if (out && length) std::memcpy(out, bytes, length);
}

void TValFlattenContext::StreamOut32bitEntity(uint32_t word) noexcept {
    if (uint8_t *out = Extend(kWordSize)) StoreWord(out, word);
}

void TValFlattenContext::StreamOut(const void *elements, size_t element_size, size_t count) noexcept {
    const size_t size =
        count && element_size > kMaximumFlattenedLength / count ? SIZE_MAX : element_size * count;
    uint8_t *out = Extend(size);
    if (!out || size == 0) return;
    std::memcpy(out, elements, size);
    for (size_t i = 0; i < count; ++i) ConvertToBigEndian(out + i * element_size, element_size);
}

void TValFlattenContext::Flatten(const void *value) noexcept {
    if (!value || !open_) return;
    switch (TypeOf(value)) {
    case kValTypeString:
        return FlattenValString(static_cast<const ValString *>(value));
    case kValTypeNumber:
        return FlattenValNumber(static_cast<const ValNumber *>(value));
    case kValTypeBoolean:
        return FlattenValBoolean(static_cast<const ValBoolean *>(value));
    case kValTypeDictionary:
        return FlattenValDictionary(static_cast<const ValDictionary *>(value));
    case kValTypeArray:
        return FlattenValArray(static_cast<const ValArray *>(value));
    case kValTypeData:
        return FlattenValData(static_cast<const ValData *>(value));
    case kValTypeCharacterSet:
        return FlattenValCharacterSet(static_cast<const ValCharacterSet *>(value));
    case kValTypeSet:
        return FlattenValSet(static_cast<const ValSet *>(value));
    case kValTypeURL:
        return FlattenValURL(static_cast<const ValURL *>(value));
    case kValTypeUUID:
        return FlattenValUUID(static_cast<const ValUUID *>(value));
    default:
        Log(LogLevel::kError, "*** don't know how to flatten type %d (object %@)",
            static_cast<int>(TypeOf(value)), value);
        return Fail();
    }
}

void TValFlattenContext::FlattenValString(const ValString *string) noexcept {
    // What is no valid Unicode cannot be written without loss.
    const std::string_view text = string && string->is_unicode ? Text(*string) : std::string_view();
    AppendItem(Tag(EncodingTag::kString), text.data(), text.size());
}

void TValFlattenContext::FlattenValNumber(const ValNumber *number) noexcept {
    if (!number) return;
    const size_t size = NumberSize(number->type);
    uint8_t *out = BeginItem(Tag(EncodingTag::kNumber), number->type, kWordSize + size);
    if (!out) return;
    out = StoreWord(out, static_cast<uint32_t>(size));
    StoreNumber(out, *number);
    ConvertToBigEndian(out, size);
}

void TValFlattenContext::FlattenValBoolean(const ValBoolean *boolean) noexcept {
    const uint8_t byte = ValBooleanGetValue(boolean);
    AppendItem(Tag(EncodingTag::kBoolean), &byte, sizeof byte);
}

void TValFlattenContext::FlattenValData(const ValData *data) noexcept {
    AppendItem(Tag(EncodingTag::kData), ValDataGetBytes(data), ValDataGetLength(data));
}

void TValFlattenContext::FlattenValCharacterSet(const ValCharacterSet *set) noexcept {
    const size_t length = set ? BitmapLength(*set) : 0;
    uint8_t *out = BeginItem(Tag(EncodingTag::kCharacterSet), length, length);
    if (out && set) WriteBitmap(*set, out);
}

template <class Container>
void TValFlattenContext::FlattenContainer(uint32_t tag, const Container *container) noexcept {
    if (!open_) return;
    if (!HoldsValues(container) || nesting_ == kMaximumNesting) {
        Log(LogLevel::kError,
            nesting_ == kMaximumNesting ? "*** too many containers in each other to flatten %@"
                                        : "*** don't know how to flatten the items of %@",
            static_cast<const void *>(container));
        return Fail();
    }
    BeginItem(tag, CountItems(container), 0);
    ++nesting_;
    ForEachItem(container, [this](const void *item) { Flatten(item); });
    --nesting_;
}

void TValFlattenContext::FlattenValArray(const ValArray *array) noexcept {
    FlattenContainer(Tag(EncodingTag::kArray), array);
}
void TValFlattenContext::FlattenValDictionary(const ValDictionary *dictionary) noexcept {
    FlattenContainer(Tag(EncodingTag::kDictionary), dictionary);
}
void TValFlattenContext::FlattenValSet(const ValSet *set) noexcept {
    FlattenContainer(Tag(EncodingTag::kSet), set);
}

void TValFlattenContext::FlattenValURL(const ValURL *url) noexcept {
    const std::string_view text = url ? AbsoluteText(*url) : std::string_view();
    AppendItem(Tag(EncodingTag::kURL), text.data(), text.size());
}

void TValFlattenContext::FlattenValUUID(const ValUUID *uuid) noexcept {
    AppendItem(Tag(EncodingTag::kUUID), ValUUIDGetBytes(uuid), uuid ? kUUIDSize : 0);
}

} // namespace vellum
