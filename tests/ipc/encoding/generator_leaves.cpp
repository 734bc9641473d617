// SPDX-License-Identifier: MIT
// Values that hold no others. What is picked from short lists is there to meet its equal, or its
// neighbour, in another place of the same value.
#include "ipc/encoding/generator_leaves.hpp"

#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum::test {
namespace {

using Value = Ref<const void>;

void AppendUTF8(std::string &text, uint32_t c) {
    static constexpr uint32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    text += static_cast<char>(kLead[more] | c >> 6 * more);
    for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80 | (c >> 6 * i & 0x3F));
}

// No surrogate; the first and last code point of every length in UTF-8 more often than others.
uint32_t RandomCharacter(Random &random) {
    static constexpr uint32_t kEdges[] = {0,      0x7F,   0x80,   0x7FF,   0x800,   0xD7FF,
                                          0xE000, 0xFEFF, 0xFFFF, 0x10000, 0x10FFFF};
    static constexpr std::pair<uint32_t, uint32_t> kRanges[] = {
        {0x20, 0x7E}, {0x80, 0x7FF}, {0x800, 0xD7FF}, {0xE000, 0xFFFF}, {0x10000, 0x10FFFF}};
    if (random.OneIn(4)) return random.Pick(kEdges);
    const auto [first, last] = random.Pick(kRanges);
    return static_cast<uint32_t>(random.Between(first, last));
}

std::string RandomText(Random &random, size_t characters) {
    std::string text;
    while (characters-- > 0) AppendUTF8(text, RandomCharacter(random));
    return text;
}

Value StringOf(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

// Surrogates among the units, some of which make a pair.
Value StringOfUnits(Random &random) {
    static constexpr uint16_t kUnits[] = {0xD800, 0xDBFF, 0xDC00, 0xDFFF, 'a', 0xFEFF, 0};
    std::vector<uint16_t> units(random.Between(1, 4));
    for (uint16_t &unit : units) unit = random.Pick(kUnits);
    return Adopt(ValStringCreateWithUTF16(units.data(), units.size()));
}

std::string FileNameBytes(Random &random) {
    std::string bytes = random.String(random.Between(1, 6));
    for (char &byte : bytes) byte = byte == 0 ? 'x' : byte;
    return bytes;
}

Value FileName(Random &random) {
    const std::string name = FileNameBytes(random);
    return Adopt(ValStringCreateWithFileSystemRepresentation(name.data(), name.size()));
}

Value Integer(ValNumberType type, int64_t value) {
    switch (type) {
    case kValNumberTypeSInt8:
        return Adopt(ValNumberCreateSInt8(static_cast<int8_t>(value)));
    case kValNumberTypeSInt16:
        return Adopt(ValNumberCreateSInt16(static_cast<int16_t>(value)));
    case kValNumberTypeSInt32:
        return Adopt(ValNumberCreateSInt32(static_cast<int32_t>(value)));
    default:
        return Adopt(ValNumberCreateSInt64(value));
    }
}

// Cut to the type: so the limits of one type are also -1 and 0 of a smaller one.
Value RandomInteger(Random &random, ValNumberType type) {
    static constexpr int64_t kKnown[] = {0,         1,         -1,        2,         INT8_MIN,
                                         INT8_MAX,  INT16_MIN, INT16_MAX, INT32_MIN, INT32_MAX,
                                         INT64_MIN, INT64_MAX, 1LL << 24, 1LL << 53, (1LL << 53) + 1};
    if (random.OneIn(4)) return Integer(type, static_cast<int64_t>(random.Bits()));
    return Integer(type, random.OneIn(2) ? static_cast<int64_t>(random.Below(3)) : random.Pick(kKnown));
}

template <class Real>
Real KnownReal(Random &random) {
    using Limits = std::numeric_limits<Real>;
    static const Real kKnown[] = {0,
                                  -Real(0),
                                  1,
                                  2,
                                  Real(-1),
                                  Real(0.5),
                                  Limits::quiet_NaN(),
                                  Limits::infinity(),
                                  -Limits::infinity(),
                                  Limits::max(),
                                  Limits::lowest(),
                                  Limits::min(),
                                  Limits::denorm_min(),
                                  std::ldexp(Real(1), 24),
                                  std::ldexp(Real(1), 53),
                                  std::ldexp(Real(1), 63),
                                  -std::ldexp(Real(1), 63)};
    return random.Pick(kKnown);
}

Value RandomFloat32(Random &random) {
    const float any = std::bit_cast<float>(random.Word());
    return Adopt(ValNumberCreateFloat32(random.OneIn(4) ? any : KnownReal<float>(random)));
}
Value RandomFloat64(Random &random) {
    const double any = std::bit_cast<double>(random.Bits());
    return Adopt(ValNumberCreateFloat64(random.OneIn(4) ? any : KnownReal<double>(random)));
}

Value DataOf(const std::string &bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

Ref<const ValURL> URLOf(std::string_view text, const ValURL *base = nullptr) {
    return Adopt(ValURLCreateWithBytes(text.data(), text.size(), base));
}

Ref<const ValURL> AbsoluteURL(Random &random) {
    static constexpr std::string_view kKnown[] = {"file:///a",
                                                  "file:///a/b/",
                                                  "http://example.com/x/y?q#f",
                                                  "http://example.com",
                                                  "HTTP://Example.com/\u00C4 b",
                                                  "file:///a/./b/../c#postscript-name=A"};
    return URLOf(random.Pick(kKnown));
}

Ref<const ValURL> RelativeURL(Random &random) {
    static constexpr std::string_view kKnown[] = {"a",  "b/", "../c?q", "./d#f",  "/e",
                                                  "#f", "?q", "//h/p",  "\u00E9", "../../../x"};
    auto url = AbsoluteURL(random);
    for (size_t bases = random.Between(1, 2); bases > 0; --bases) {
        if (auto relative = URLOf(random.Pick(kKnown), url.Get())) url = std::move(relative);
    }
    return url;
}

Ref<const ValURL> FileURLOfBytes(Random &random) {
    const std::string path = '/' + FileNameBytes(random);
    const auto text = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    return Adopt(ValURLCreateWithFileSystemPath(text.Get(), random.OneIn(2), nullptr));
}

} // namespace

Ref<const void> RandomString(Random &random) {
    static constexpr std::string_view kKnown[] = {"", "a", "A", "\u00C4", "Name"};
    switch (random.Below(8)) {
    case 0:
        return StringOfUnits(random);
    case 1:
        return FileName(random);
    case 2:
    case 3:
    case 4:
        return StringOf(random.Pick(kKnown));
    default:
        return StringOf(RandomText(random, random.Below(6)));
    }
}

Ref<const void> RandomNumber(Random &random) {
    const auto type = static_cast<ValNumberType>(random.Between(1, 6));
    if (type == kValNumberTypeFloat32) return RandomFloat32(random);
    if (type == kValNumberTypeFloat64) return RandomFloat64(random);
    return RandomInteger(random, type);
}

Ref<const void> RandomBoolean(Random &random) {
    return Retain(random.OneIn(2) ? kValBooleanTrue : kValBooleanFalse);
}

Ref<const void> RandomData(Random &random) {
    if (random.OneIn(4)) return DataOf("");
    return DataOf(random.OneIn(3) ? "a" : random.String(random.Between(1, 12)));
}

Ref<const void> RandomUUID(Random &random) {
    uint8_t bytes[16] = {};
    if (!random.OneIn(3)) {
        for (uint8_t &byte : bytes) byte = random.Byte();
    }
    return Adopt(ValUUIDCreateWithBytes(bytes));
}

Ref<const void> RandomURL(Random &random) {
    switch (random.Below(3)) {
    case 0:
        return AbsoluteURL(random);
    case 1:
        return RelativeURL(random);
    default:
        return FileURLOfBytes(random);
    }
}

Ref<const void> RandomCharacterSet(Random &random) {
    static constexpr uint32_t kPlace[] = {0, 1, 7, 8, 0x41, 0xD800, 0xFFFE, 0xFFFF};
    static constexpr uint32_t kLength[] = {0, 0, 1, 7, 8, 0x1234};
    auto set = Adopt(ValCharacterSetCreateMutable());
    for (size_t ranges = random.Below(4); ranges > 0; --ranges) {
        const auto plane = static_cast<uint32_t>(random.Below(17)) << 16;
        const uint32_t first = plane + (random.OneIn(3) ? random.Word() % 0x10000 : random.Pick(kPlace));
        ValCharacterSetAddRange(set.Get(), first, first + random.Pick(kLength));
    }
    return set;
}

Ref<const void> LargeData(Random &random, size_t length) {
    return DataOf(random.String(length));
}

Ref<const void> LongString(Random &random, size_t characters) {
    return StringOf(RandomText(random, characters));
}

} // namespace vellum::test
