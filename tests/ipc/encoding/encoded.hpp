// SPDX-License-Identifier: MIT
// Short ways of writing flattened bytes out by hand, of making values, and of asking both contexts.
#pragma once

#include "ipc/encoding/flatten_context.hpp"
#include "ipc/encoding/resurrect_context.hpp"
#include "support/bytes.hpp"
#include "support/values.hpp"

#include <string_view>

namespace vellum::test {

// Bytes as they are written in a hex dump; spaces part them.
inline Bytes Hex(std::string_view text) {
    Bytes bytes;
    int digits = 0;
    uint8_t byte = 0;
    for (char c : text) {
        if (c == ' ' || c == '\n') continue;
        const int digit = c <= '9' ? c - '0' : c - 'a' + 10;
        byte = static_cast<uint8_t>(byte << 4 | digit);
        if (++digits % 2 == 0) bytes.push_back(byte);
    }
    return bytes;
}

inline Bytes operator+(Bytes first, const Bytes &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// What the writer makes of a value.
inline Bytes Flattened(const void *value) {
    TValFlattenContext context(ValDataCreateMutable(0), true);
    context.Flatten(value);
    return Bytes(context.GetBytePtr(), context.GetBytePtr() + context.GetLength());
}
template <class T>
Bytes Flattened(const Ref<T> &value) {
    return Flattened(static_cast<const void *>(value.Get()));
}

// The bytes in memory of just their size, so that a sanitizer sees a read behind them.
inline Ref<const void> Resurrected(const Bytes &bytes) {
    const Bytes copy(bytes);
    return TValResurrectContext(copy.data(), copy.size()).Resurrect();
}

// A boolean that is true: what tests put behind an item, to see that reading goes on there.
inline constexpr std::string_view kTrue = "00000103 00000001 01";

// A reader of bytes that it keeps.
class Reader {
public:
    explicit Reader(Bytes bytes) : bytes_(std::move(bytes)), context_(bytes_.data(), bytes_.size()) {}
    TValResurrectContext *operator->() { return &context_; }

private:
    Bytes bytes_;
    TValResurrectContext context_;
};

inline Ref<const ValArray> List(const std::vector<Ref<const void>> &values) {
    std::vector<const void *> items;
    for (const auto &value : values) items.push_back(value.Get());
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

inline Ref<const ValSet> SetOf(const std::vector<Ref<const void>> &values) {
    std::vector<const void *> items;
    for (const auto &value : values) items.push_back(value.Get());
    return Adopt(ValSetCreate(items.data(), items.size()));
}

inline Ref<const ValDictionary>
Dictionary(const std::vector<std::pair<Ref<const void>, Ref<const void>>> &pairs) {
    std::vector<const void *> keys;
    std::vector<const void *> values;
    for (const auto &[key, value] : pairs) {
        keys.push_back(key.Get());
        values.push_back(value.Get());
    }
    return Adopt(ValDictionaryCreate(keys.data(), values.data(), keys.size()));
}

inline Ref<const ValNumber> Int(int32_t value) {
    return Adopt(ValNumberCreateSInt32(value));
}

inline Ref<const ValURL> Url(std::string_view text, const ValURL *base = nullptr) {
    return Adopt(ValURLCreateWithBytes(text.data(), text.size(), base));
}

// Arrays in arrays, `depth` of them.
inline Ref<const void> Nested(size_t depth) {
    Ref<const void> value = List({});
    for (size_t i = 1; i < depth; ++i) value = List({value});
    return value;
}

// A mebibyte and a bit, twice in an array, which is twice in the next one, and so on `times` times.
inline Ref<const void> Doubled(int times) {
    static constexpr char kBytes[(1 << 20) + 64] = {};
    Ref<const void> value = Adopt(ValDataCreateWithBytesNoCopy(kBytes, sizeof kBytes, nullptr, nullptr));
    for (int i = 0; i < times; ++i) value = List({value, value});
    return value;
}

} // namespace vellum::test
