// SPDX-License-Identifier: MIT
#include "ipc/encoding/resurrect_context.hpp"

#include "ipc/encoding/byte_order.hpp"
#include "ipc/encoding/encoding.hpp"
#include "platform/log/log.hpp"
#include "platform/val/array.hpp"
#include "platform/val/character_set.hpp"
#include "platform/val/dictionary.hpp"
#include "platform/val/set.hpp"
#include "platform/val/string.hpp"
#include "platform/val/url.hpp"

#include <cinttypes>
#include <new>

namespace vellum {
namespace {

// The least that an item takes: a tag that nobody knows has nothing behind it.
constexpr size_t kLeastItem = kWordSize;

constexpr char kOutOfMemory[] = "out of memory";

Ref<const void> Boolean(bool value) noexcept {
    return Ref<const void>::Retain(value ? kValBooleanTrue : kValBooleanFalse);
}

// A number of a known type from its bytes, which are as many as the type has.
const void *CreateNumber(uint32_t type, const uint8_t *bytes) noexcept {
    const auto load = [bytes](auto value) {
        uint8_t native[sizeof value];
        std::memcpy(native, bytes, sizeof value);
        ConvertToNative(native, sizeof value);
        std::memcpy(&value, native, sizeof value);
        return value;
    };
    switch (type) {
    case kValNumberTypeSInt8:
        return ValNumberCreateSInt8(load(int8_t{}));
    case kValNumberTypeSInt16:
        return ValNumberCreateSInt16(load(int16_t{}));
    case kValNumberTypeSInt32:
        return ValNumberCreateSInt32(load(int32_t{}));
    case kValNumberTypeSInt64:
        return ValNumberCreateSInt64(load(int64_t{}));
    case kValNumberTypeFloat32:
        return ValNumberCreateFloat32(load(float{}));
    default:
        return ValNumberCreateFloat64(load(double{}));
    }
}

} // namespace

template <class... Arguments>
void TValResurrectContext::Complain(const char *format, Arguments... arguments) noexcept {
    if (log_lines_ == kMaximumLogLines || refused_) return;
    ++log_lines_;
    Log(LogLevel::kError, format, arguments...);
}

void TValResurrectContext::Refuse(const char *reason) noexcept {
    if (refused_) return;
    refused_ = true;
    Log(LogLevel::kError, "*** refused to resurrect a value: %s, with %zu bytes left", reason, BytesLeft());
}

// What a Create function gave; it gives null for want of memory alone.
inline Ref<const void> TValResurrectContext::OrRefuse(const void *created) noexcept {
    if (!created) Refuse(kOutOfMemory);
    return Ref<const void>::Adopt(created);
}

// The next `length` bytes, read; null, and the reading refused, when there are less.
inline const uint8_t *TValResurrectContext::ReadBytes(size_t length) noexcept {
    if (length > BytesLeft() || refused_) {
        Refuse("it ends too early");
        return nullptr;
    }
    const uint8_t *bytes = cursor_;
    cursor_ += length;
    return bytes;
}

inline bool TValResurrectContext::ReadWord(uint32_t &word) noexcept {
    const uint8_t *bytes = ReadBytes(kWordSize);
    if (bytes) word = LoadWord(bytes);
    return bytes != nullptr;
}

// A length and that many bytes. Lengths are signed; one below zero is none at all.
inline bool TValResurrectContext::ReadPayload(const uint8_t *&bytes, size_t &length) noexcept {
    uint32_t word = 0;
    if (!ReadWord(word)) return false;
    length = word > kMaximumFlattenedLength ? 0 : word;
    bytes = ReadBytes(length);
    return bytes != nullptr;
}

bool TValResurrectContext::StreamInData(void *destination, size_t size, size_t count) noexcept {
    const uint8_t *bytes = ReadBytes(count && size > SIZE_MAX / count ? SIZE_MAX : size * count);
    if (!bytes) return false;
    auto *out = static_cast<uint8_t *>(destination);
    if (size == 0 || count == 0) return true;
    std::memcpy(out, bytes, size * count);
    for (size_t i = 0; i < count; ++i) ConvertToNative(out + i * size, size);
    return true;
}

Ref<const void> TValResurrectContext::Resurrect() noexcept {
    if (!cursor_ || (BytesLeft() == 0 && nesting_ == 0)) return nullptr; // a null value is no bytes
    uint32_t tag = 0;
    if (!ReadWord(tag)) return nullptr;
    switch (EncodingTag{tag}) {
    case EncodingTag::kString:
        return ResurrectValString();
    case EncodingTag::kDictionary:
        return ResurrectValDictionary();
    case EncodingTag::kArray:
        return ResurrectValArray();
    case EncodingTag::kData:
        return ResurrectValData();
    case EncodingTag::kNumber:
        return ResurrectValNumber();
    case EncodingTag::kCharacterSet:
        return ResurrectValCharacterSet();
    case EncodingTag::kSet:
        return ResurrectValSet();
    case EncodingTag::kURL:
        return ResurrectValURL();
    case EncodingTag::kUUID:
        return ResurrectValUUID();
    case EncodingTag::kBoolean:
        return ResurrectValBoolean();
    }
    Complain("*** don't how to resurrect type %d", static_cast<int>(tag)); // the wording is kept
    return nullptr;
}

Ref<const void> TValResurrectContext::ResurrectValString() noexcept {
    const uint8_t *bytes;
    size_t length;
    if (!ReadPayload(bytes, length) || skips_) return nullptr;
    return OrRefuse(recent_.GetUniqueString({reinterpret_cast<const char *>(bytes), length}).Release());
}

Ref<const void> TValResurrectContext::ResurrectValNumber() noexcept {
    uint32_t type = 0;
    uint32_t size = 0;
    if (!ReadWord(type) || !ReadWord(size)) return nullptr;
    const size_t expected = NumberSize(type);
    if (expected ? size != expected : size != 1 && size != 2 && size != 4 && size != 8) {
        Refuse("a number's size is impossible");
        return nullptr;
    }
    const uint8_t *bytes = ReadBytes(size);
    if (!bytes) return nullptr;
    if (expected) return OrRefuse(CreateNumber(type, bytes));
    Complain("*** don't know number type %d", static_cast<int>(type));
    return nullptr;
}

Ref<const void> TValResurrectContext::ResurrectValBoolean() noexcept {
    uint32_t length = 0;
    if (!ReadWord(length)) return nullptr;
    if (length != 1) {
        Complain("*** incorrect size %d for boolean data, expected %d", static_cast<int>(length), 1);
        return Boolean(false);
    }
    const uint8_t *byte = ReadBytes(1);
    return byte ? Boolean(*byte != 0) : nullptr;
}

Ref<const void> TValResurrectContext::ResurrectValData() noexcept {
    const uint8_t *bytes;
    size_t length;
    if (!ReadPayload(bytes, length) || length == 0 || skips_) return nullptr;
    return OrRefuse(ValDataCreate(bytes, length));
}

Ref<const void> TValResurrectContext::ResurrectValCharacterSet() noexcept {
    const uint8_t *bytes;
    size_t length;
    if (!ReadPayload(bytes, length) || length == 0 || skips_) return nullptr;
    const std::string_view bitmap(reinterpret_cast<const char *>(bytes), length);
    if (last_set_ && bitmap == last_bitmap_) return last_set_;
    // A set takes some hundred bytes, however few its bitmap has: a short one is none, so that a message
    // cannot ask for fifty times what it takes itself.
    if (!IsBitmap(bitmap)) {
        Complain("*** %zu bytes are no bitmap of a character set", length);
        return nullptr;
    }
    last_bitmap_ = bitmap;
    last_set_ = Adopt(ValCharacterSetCreateWithBitmap(bytes, length));
    if (!last_set_) Refuse(kOutOfMemory);
    return last_set_;
}

Ref<const void> TValResurrectContext::ResurrectValURL() noexcept {
    const uint8_t *bytes;
    size_t length;
    if (!ReadPayload(bytes, length) || skips_) return nullptr;
    auto url = Adopt(ValURLCreateWithBytes(bytes, length, nullptr));
    if (!url && IsAbsoluteURL({reinterpret_cast<const char *>(bytes), length})) Refuse(kOutOfMemory);
    if (!url) Complain("*** %zu bytes are no absolute URL", length);
    return url;
}

Ref<const void> TValResurrectContext::ResurrectValUUID() noexcept {
    uint32_t length = 0;
    if (!ReadWord(length) || length == 0 || length > kMaximumFlattenedLength) return nullptr;
    const uint8_t *bytes = ReadBytes(kUUIDSize);
    return bytes ? OrRefuse(ValUUIDCreateWithBytes(bytes)) : nullptr;
}

bool TValResurrectContext::ReadItems(size_t count) {
    for (size_t i = 0; i < count && !refused_; ++i) {
        Ref<const void> item = Resurrect();
        if (!skips_) results_.Push(std::move(item));
    }
    return !refused_;
}

bool TValResurrectContext::ReadPairs(size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Ref<const void> key = Resurrect();
        Ref<const void> value = Resurrect();
        if (refused_) return false;
        if (skips_) continue;
        if (!key || !value) {
            Complain("*** ResurrectValDictionary missing either a key or a value, truncating dictionary");
            return true;
        }
        results_.Push(std::move(key));
        results_.Push(std::move(value));
    }
    return true;
}

bool TValResurrectContext::ReadKeys(size_t count) {
    for (size_t i = 0; i < count && !refused_; ++i) {
        Ref<const void> key = Resurrect();
        if (key) results_.Push(std::move(key));
        skips_ = true;
        Resurrect();
        skips_ = false;
    }
    return !refused_;
}

Ref<const ValArray> TValResurrectContext::ResurrectKeys(size_t most) noexcept {
    uint32_t tag = 0;
    if (!cursor_ || !ReadWord(tag) || EncodingTag{tag} != EncodingTag::kDictionary) return nullptr;
    if (BytesLeft() < kWordSize || LoadWord(cursor_) > most) return nullptr;
    auto keys = ResurrectContainer(2 * kLeastItem, &TValResurrectContext::ReadKeys,
                                   [](auto items) { return AdoptIntoArray(items); });
    return Ref<const ValArray>::Adopt(static_cast<const ValArray *>(keys.Release()));
}

// Reads the count, then with `read` the items, of which each takes at least so many bytes, and gives
// them to `build`.
template <class Build>
Ref<const void> TValResurrectContext::ResurrectContainer(size_t least_bytes,
                                                         bool (TValResurrectContext::*read)(size_t),
                                                         Build build) noexcept {
    uint32_t count = 0;
    if (!ReadWord(count)) return nullptr;
    if (count > kMaximumFlattenedLength) count = 0;
    if (count > BytesLeft() / least_bytes) Refuse("it counts more items than there is room for");
    if (nesting_ == kMaximumNesting) Refuse("too many containers in each other");
    if (refused_) return nullptr;
    const size_t first = results_.Count();
    bool complete = false;
    ++nesting_;
    try {
        complete = (this->*read)(count);
    } catch (const std::bad_alloc &) {
        Refuse(kOutOfMemory);
    }
    --nesting_;
    if (!complete) {
        results_.Drop(first);
        return nullptr;
    }
    if (skips_) return nullptr;
    patience_ += kPatienceForEach * (results_.Count() - first);
    const void *container = build(results_.From(first));
    results_.Forget(first);
    Ref<const void> whole = Ref<const void>::Adopt(container);
    if (whole && patience_) return whole;
    Refuse(patience_ ? kOutOfMemory : "its keys were made to collide");
    return nullptr;
}

Ref<const void> TValResurrectContext::ResurrectValArray() noexcept {
    return ResurrectContainer(kLeastItem, &TValResurrectContext::ReadItems,
                              [](auto items) { return AdoptIntoArray(items); });
}

Ref<const void> TValResurrectContext::ResurrectValDictionary() noexcept {
    return ResurrectContainer(2 * kLeastItem, &TValResurrectContext::ReadPairs,
                              [this](auto pairs) { return AdoptIntoDictionary(pairs, patience_); });
}

Ref<const void> TValResurrectContext::ResurrectValSet() noexcept {
    return ResurrectContainer(kLeastItem, &TValResurrectContext::ReadItems,
                              [this](auto items) { return AdoptIntoSet(items, patience_); });
}

} // namespace vellum
