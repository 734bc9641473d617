// SPDX-License-Identifier: MIT
// Reads item by item along the grammar; what refuses the reading is thrown to Next, which alone knows
// that nothing of it remains.
#include "ipc/encoding/reference_decoder.hpp"

#include <vellum/values.hpp>

#include <optional>
#include <utility>

namespace vellum::test {
namespace {

constexpr size_t kDeepest = 64;
constexpr size_t kLeastItem = 4;
constexpr size_t kUUIDBytes = 16;
constexpr size_t kPlaneBytes = 8192;
constexpr uint32_t kPlaneCharacters = 0x10000;

uint64_t BigEndian(std::string_view bytes) {
    uint64_t value = 0;
    for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

// The two's complement number in the low `size` bytes.
int64_t SignExtended(uint64_t value, size_t size) {
    const uint64_t sign = uint64_t{1} << (8 * size - 1);
    return static_cast<int64_t>((value ^ sign) - sign);
}

// The size of a type's numbers; none for what is no type.
std::optional<size_t> SizeOfType(uint32_t type) {
    switch (type) {
    case 1:
        return 1;
    case 2:
        return 2;
    case 3:
        return 4;
    case 4:
        return 8;
    case 5:
        return 4;
    case 6:
        return 8;
    default:
        return std::nullopt;
    }
}

bool IsNumberSize(uint32_t size) {
    return size == 1 || size == 2 || size == 4 || size == 8;
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// How many bytes begin with this one, by its highest bits; 0 if none may.
size_t CharacterSize(unsigned char lead) {
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) return 2;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return 4;
    return 0;
}

uint32_t DecodeCharacter(std::string_view character) {
    static constexpr uint32_t kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    uint32_t code_point = static_cast<unsigned char>(character[0]) & kLeadBits[character.size()];
    for (const char byte : character.substr(1)) {
        code_point = code_point << 6 | (static_cast<unsigned char>(byte) & 0x3F);
    }
    return code_point;
}

bool IsCharacter(std::string_view character) {
    static constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    for (const char byte : character.substr(1)) {
        if (!IsContinuation(byte)) return false;
    }
    const uint32_t code_point = DecodeCharacter(character);
    const bool is_surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
    return code_point >= kLeast[character.size()] && code_point <= 0x10FFFF && !is_surrogate;
}

void AddCharacter(std::vector<CodePointRange> &ranges, uint32_t code_point) {
    if (!ranges.empty() && ranges.back().last + 1 == code_point) {
        ranges.back().last = code_point;
    } else {
        ranges.push_back({code_point, code_point});
    }
}

void AddPlane(std::vector<CodePointRange> &ranges, uint32_t plane, std::string_view bitmap) {
    uint32_t code_point = plane * kPlaneCharacters;
    for (const char byte : bitmap) {
        for (uint32_t n = 0; n < 8 && byte != 0; ++n) {
            if (static_cast<unsigned char>(byte) >> n & 1) AddCharacter(ranges, code_point + n);
        }
        code_point += 8;
    }
}

// The planes of a bitmap by their numbers; none for another shape.
std::optional<std::vector<std::string_view>> SplitBitmap(std::string_view bitmap) {
    if (bitmap.size() < kPlaneBytes) return std::nullopt;
    std::vector<std::string_view> planes(17);
    planes[0] = bitmap.substr(0, kPlaneBytes);
    bitmap.remove_prefix(kPlaneBytes);
    while (!bitmap.empty()) {
        if (bitmap.size() < 1 + kPlaneBytes) return std::nullopt;
        const auto plane = static_cast<unsigned char>(bitmap[0]);
        if (plane < 1 || plane > 16 || !planes[plane].empty()) return std::nullopt;
        planes[plane] = bitmap.substr(1, kPlaneBytes);
        bitmap.remove_prefix(1 + kPlaneBytes);
    }
    return planes;
}

} // namespace

bool IsUTF8(std::string_view text) {
    while (!text.empty()) {
        const size_t size = CharacterSize(static_cast<unsigned char>(text[0]));
        if (size == 0 || size > text.size() || !IsCharacter(text.substr(0, size))) return false;
        text.remove_prefix(size);
    }
    return true;
}

Model ReferenceDecoder::Next() {
    if (refused_ || BytesLeft() == 0) return {};
    try {
        return Item();
    } catch (const Refusal &) {
        refused_ = true;
        return {};
    }
}

std::string ReferenceDecoder::Take(size_t length) {
    if (length > BytesLeft()) throw Refusal();
    at_ += length;
    return bytes_.substr(at_ - length, length);
}

uint32_t ReferenceDecoder::TakeWord() {
    return static_cast<uint32_t>(BigEndian(Take(4)));
}

// A length or a count.
size_t ReferenceDecoder::TakeLength() {
    const uint32_t word = TakeWord();
    return word >= 0x80000000 ? 0 : word;
}

size_t ReferenceDecoder::TakeCount(size_t item_size) {
    const size_t count = TakeLength();
    if (count * item_size > BytesLeft()) throw Refusal();
    return count;
}

Model ReferenceDecoder::Item() {
    switch (TakeWord()) {
    case 7:
        return String();
    case 16:
        return Container(&ReferenceDecoder::Dictionary, 2 * kLeastItem);
    case 17:
        return Container(&ReferenceDecoder::Array, kLeastItem);
    case 18:
        return Data();
    case 22:
        return Number();
    case 27:
        return CharacterSet();
    case 256:
        return Container(&ReferenceDecoder::Set, kLeastItem);
    case 257:
        return URL();
    case 258:
        return UUID();
    case 259:
        return Boolean();
    default:
        return {};
    }
}

Model ReferenceDecoder::String() {
    std::string text = TakePayload();
    return StringModel(IsUTF8(text) ? std::move(text) : "");
}

Model ReferenceDecoder::Number() {
    const uint32_t type = TakeWord();
    const uint32_t size = TakeWord();
    const std::optional<size_t> expected = SizeOfType(type);
    if (expected ? size != *expected : !IsNumberSize(size)) throw Refusal();
    const uint64_t bits = BigEndian(Take(size));
    if (!expected) return {};
    if (type == 5) return Float32Model(static_cast<uint32_t>(bits));
    if (type == 6) return Float64Model(bits);
    return IntegerModel(static_cast<ModelNumberType>(type), SignExtended(bits, size));
}

Model ReferenceDecoder::Boolean() {
    if (TakeLength() != 1) return BooleanModel(false);
    return BooleanModel(Take(1)[0] != 0);
}

Model ReferenceDecoder::Data() {
    std::string bytes = TakePayload();
    if (bytes.empty()) return {};
    return DataModel(std::move(bytes));
}

Model ReferenceDecoder::UUID() {
    if (TakeLength() == 0) return {};
    return UUIDModel(Take(kUUIDBytes));
}

// What is an absolute URL is no matter of this format: the values are asked.
Model ReferenceDecoder::URL() {
    const std::string text = TakePayload();
    if (text.empty() || !Adopt(ValURLCreateWithBytes(text.data(), text.size(), nullptr))) return {};
    return URLModel(text, text);
}

Model ReferenceDecoder::CharacterSet() {
    const std::string bitmap = TakePayload();
    const auto planes = SplitBitmap(bitmap);
    if (!planes) return {};
    std::vector<CodePointRange> ranges;
    for (uint32_t plane = 0; plane < planes->size(); ++plane) {
        if (!(*planes)[plane].empty()) AddPlane(ranges, plane, (*planes)[plane]);
    }
    return CharacterSetModel(std::move(ranges));
}

Model ReferenceDecoder::Container(Model (ReferenceDecoder::*read)(size_t), size_t item_size) {
    if (++nesting_ > kDeepest) throw Refusal();
    Model container = (this->*read)(TakeCount(item_size));
    --nesting_;
    return container;
}

Model ReferenceDecoder::Array(size_t count) {
    Model array = EmptyModel(ModelKind::kArray);
    while (count-- > 0) array.items.push_back(Item());
    return array;
}

Model ReferenceDecoder::Set(size_t count) {
    Model set = EmptyModel(ModelKind::kSet);
    while (count-- > 0) AddMember(set, Item());
    return set;
}

Model ReferenceDecoder::Dictionary(size_t count) {
    Model dictionary = EmptyModel(ModelKind::kDictionary);
    while (count-- > 0) {
        Model key = Item();
        Model value = Item();
        if (key.IsNull() || value.IsNull()) break;
        AddPair(dictionary, std::move(key), std::move(value));
    }
    return dictionary;
}

} // namespace vellum::test
