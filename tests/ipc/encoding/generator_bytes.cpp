// SPDX-License-Identifier: MIT
// The making of bytes that claim to be flattened values.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/generator.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum::test {
namespace {

constexpr uint32_t kTags[] = {7, 16, 17, 18, 22, 27, 256, 257, 258, 259};
constexpr uint32_t kContainerTags[] = {16, 17, 256};
constexpr uint32_t kUnknownTags[] = {0,  1,   6,   8,          15,         19,        21,
                                     23, 255, 260, 0x07000000, 0x80000007, 0xFFFFFFFF};
constexpr uint32_t kSizeOfType[] = {0, 1, 2, 4, 8, 4, 8};
constexpr uint32_t kOddLengths[] = {0, 1, 0xFFFFFFFF, 0x80000000, 0x7FFFFFFF};
constexpr uint32_t kNoLengths[] = {0, 0xFFFFFFFF, 0x80000000};

using namespace std::string_view_literals;

// Right ways to write characters, then wrong ones: too long, surrogates, out of range, cut short.
constexpr std::string_view kTextPieces[] = {""sv,
                                            "a"sv,
                                            "b"sv,
                                            "\0"sv,
                                            "\x7F"sv,
                                            "\xC2\x80"sv,
                                            "\xC3\xA9"sv,
                                            "\xE0\xA0\x80"sv,
                                            "\xED\x9F\xBF"sv,
                                            "\xEE\x80\x80"sv,
                                            "\xEF\xBB\xBF"sv,
                                            "\xEF\xBF\xBF"sv,
                                            "\xF0\x90\x80\x80"sv,
                                            "\xF4\x8F\xBF\xBF"sv,
                                            "\xC0\x80"sv,
                                            "\xC1\xBF"sv,
                                            "\xE0\x9F\xBF"sv,
                                            "\xF0\x8F\xBF\xBF"sv,
                                            "\xED\xA0\x80"sv,
                                            "\xED\xBF\xBF"sv,
                                            "\xF4\x90\x80\x80"sv,
                                            "\xF5\x80\x80\x80"sv,
                                            "\xF8\x88\x80\x80\x80"sv,
                                            "\xC3"sv,
                                            "\xE2\x82"sv,
                                            "\xF0\x9F\x98"sv,
                                            "\x80"sv,
                                            "\xBF"sv,
                                            "\xFE"sv,
                                            "\xFF"sv};

bool Contains(std::span<const uint32_t> tags, uint32_t tag) {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

uint32_t WordAt(const Bytes &bytes, size_t at) {
    return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 | uint32_t{bytes[at + 2]} << 8 |
           bytes[at + 3];
}

void PutWord(Bytes &bytes, size_t at, uint32_t word) {
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(word >> (24 - 8 * i));
}

// Where the words of a writer's bytes begin: those of tags, and those of types, lengths and counts.
struct WordPlaces {
    std::vector<size_t> tags;
    std::vector<size_t> lengths;
};

// A writer's items stand one behind the other, a container's behind its count: no recursion needed.
WordPlaces FindWords(const Bytes &bytes) {
    constexpr uint32_t kNumber = 22;
    WordPlaces places;
    for (size_t at = 0; at < bytes.size();) {
        const uint32_t tag = WordAt(bytes, at);
        places.tags.push_back(at);
        places.lengths.push_back(at += 4);
        if (tag == kNumber) places.lengths.push_back(at += 4); // behind the type
        at += 4 + (Contains(kContainerTags, tag) ? 0 : WordAt(bytes, at));
    }
    return places;
}

void FlipBit(Random &random, Bytes &bytes, const WordPlaces &) {
    bytes[random.Below(bytes.size())] ^= static_cast<uint8_t>(1U << random.Below(8));
}

void SetByte(Random &random, Bytes &bytes, const WordPlaces &) {
    bytes[random.Below(bytes.size())] = random.Byte();
}

void CutEnd(Random &random, Bytes &bytes, const WordPlaces &) {
    bytes.resize(random.Between(bytes.size() - std::min<size_t>(bytes.size(), 40), bytes.size()));
}

// Often where an item begins.
size_t Place(Random &random, const Bytes &bytes, const WordPlaces &places) {
    const size_t at = places.tags[random.Below(places.tags.size())];
    return random.OneIn(4) ? random.Below(bytes.size()) : std::min(at, bytes.size());
}

void CutOut(Random &random, Bytes &bytes, const WordPlaces &places) {
    const auto [first, last] = std::minmax({Place(random, bytes, places), Place(random, bytes, places)});
    bytes.erase(bytes.begin() + static_cast<ptrdiff_t>(first),
                bytes.begin() + static_cast<ptrdiff_t>(last));
}

void Splice(Random &random, Bytes &bytes, const WordPlaces &places) {
    const Bytes piece = Flattened(RandomValue(random));
    const size_t length = random.OneIn(4) ? random.Between(0, piece.size()) : piece.size();
    const auto at = static_cast<ptrdiff_t>(Place(random, bytes, places));
    bytes.insert(bytes.begin() + at, piece.begin(), piece.begin() + static_cast<ptrdiff_t>(length));
}

void ChangeWord(Random &random, Bytes &bytes, const std::vector<size_t> &places,
                uint32_t (*change)(Random &, uint32_t)) {
    const size_t at = places[random.Below(places.size())];
    if (at + 4 <= bytes.size()) PutWord(bytes, at, change(random, WordAt(bytes, at)));
}

void ChangeLength(Random &random, Bytes &bytes, const WordPlaces &places) {
    ChangeWord(random, bytes, places.lengths, [](Random &r, uint32_t) { return r.Pick(kOddLengths); });
}

void MissByOne(Random &random, Bytes &bytes, const WordPlaces &places) {
    ChangeWord(random, bytes, places.lengths,
               [](Random &r, uint32_t length) { return r.OneIn(2) ? length + 1 : length - 1; });
}

void ChangeTag(Random &random, Bytes &bytes, const WordPlaces &places) {
    ChangeWord(random, bytes, places.tags,
               [](Random &r, uint32_t) { return r.OneIn(2) ? r.Pick(kTags) : r.Pick(kUnknownTags); });
}

Bytes BytesOfValues(Random &random) {
    Bytes bytes;
    while (bytes.empty() || random.OneIn(4)) bytes = std::move(bytes) + Flattened(RandomValue(random));
    return bytes;
}

class OddWriter {
public:
    explicit OddWriter(Random &random) : random_(random) {}

    void Item(size_t depth) {
        using Writer = void (OddWriter::*)();
        static constexpr Writer kWriters[] = {&OddWriter::Text, &OddWriter::Number, &OddWriter::Boolean,
                                              &OddWriter::Data, &OddWriter::UUID,   &OddWriter::URL};
        if (depth > 0 && random_.OneIn(2)) return Container(depth - 1);
        if (random_.OneIn(100)) return CharacterSet();
        if (random_.OneIn(14)) return Unknown();
        (this->*random_.Pick(kWriters))();
    }

    // Containers in each other, about as many as may be.
    void Chain() {
        for (size_t i = random_.Between(60, 68); i > 0; --i) {
            const uint32_t tag = random_.Pick(kContainerTags);
            bytes_.U32(tag).U32(1);
            if (tag == 16) Number();
        }
        Item(0);
    }

    const Bytes &Get() const { return bytes_.Get(); }

private:
    void Unknown() { bytes_.U32(random_.OneIn(2) ? random_.Pick(kUnknownTags) : random_.Word()); }

    void Payload(uint32_t tag, std::string_view payload) {
        if (payload.empty()) {
            bytes_.U32(tag).U32(random_.Pick(kNoLengths));
        } else {
            bytes_.U32(tag).U32(static_cast<uint32_t>(payload.size())).Text(payload);
        }
    }

    void Text() {
        std::string text;
        for (size_t pieces = random_.Below(3); pieces > 0; --pieces) text += random_.Pick(kTextPieces);
        Payload(7, text);
    }

    void Number() {
        static constexpr uint32_t kSizes[] = {1, 2, 4, 8};
        if (!random_.OneIn(4)) return KnownNumber();
        const uint32_t type = random_.OneIn(4) ? random_.Word() : static_cast<uint32_t>(random_.Below(9));
        const bool is_known = type >= 1 && type <= 6;
        uint32_t size = is_known ? kSizeOfType[type] : random_.Pick(kSizes);
        if (random_.OneIn(10)) size = static_cast<uint32_t>(random_.Below(10));
        bytes_.U32(22).U32(type).U32(size).Text(random_.String(size));
    }

    // A right number, which often equals one of another type or is next to it.
    void KnownNumber() {
        static constexpr uint64_t kIntegers[] = {0, 1, UINT64_MAX, 1ULL << 53, (1ULL << 53) + 1, INT64_MAX};
        static constexpr uint32_t kFloat32[] = {0,          0x80000000, 0x3F800000, 0xBF800000, 0x5A000000,
                                                0x5F000000, 0x7FC00000, 0xFFC00001, 0x7F800001};
        static constexpr uint64_t kFloat64[] = {0,
                                                1ULL << 63,
                                                0x3FFULL << 52,
                                                0xBFFULL << 52,
                                                0x434ULL << 52,
                                                0x43EULL << 52,
                                                0x7FF8ULL << 48,
                                                0xFFF8000000000001};
        const auto type = static_cast<uint32_t>(random_.Between(1, 6));
        const uint32_t size = kSizeOfType[type];
        uint64_t bits = random_.Pick(kIntegers);
        if (type == 5) bits = random_.Pick(kFloat32);
        if (type == 6) bits = random_.Pick(kFloat64);
        bytes_.U32(22).U32(type).U32(size);
        for (uint32_t left = size; left > 0; --left)
            bytes_.U8(static_cast<uint8_t>(bits >> 8 * (left - 1)));
    }

    void Boolean() {
        static constexpr uint32_t kLengths[] = {1, 1, 1, 1, 0, 2, 4, 0xFFFFFFFF, 0x7FFFFFFF};
        const uint32_t length = random_.Pick(kLengths);
        bytes_.U32(259).U32(length);
        if (length == 1)
            bytes_.U8(random_.OneIn(2) ? static_cast<uint32_t>(random_.Below(2)) : random_.Byte());
    }

    void Data() { Payload(18, random_.String(random_.Below(3))); }

    void UUID() {
        static constexpr uint32_t kLengths[] = {16, 16,   0,          1,          15,
                                                17, 1000, 0x7FFFFFFF, 0xFFFFFFFF, 0x80000000};
        const uint32_t length = random_.Pick(kLengths);
        bytes_.U32(258).U32(length);
        if (length != 0 && length < 0x80000000) bytes_.Text(random_.String(16));
    }

    void URL() {
        static constexpr std::string_view kKnown[] = {"file:///a", "HTTP://h/", "http://h/\xFF", "a/b",
                                                      "",          "file:",     "mailto:a@b",    "1:x"};
        Payload(257, random_.Pick(kKnown));
    }

    // Planes that come twice, that do not exist, or in no order; a part of a plane; planes of nobody.
    void CharacterSet() {
        static constexpr size_t kLengths[] = {8192, 8192, 8192, 8192, 8192, 8192, 8191, 1};
        std::string bitmap = Plane(random_.Pick(kLengths));
        for (size_t planes = random_.Below(3); planes > 0; --planes) {
            bitmap += static_cast<char>(random_.OneIn(2) ? random_.Below(18) : random_.Below(4));
            bitmap += Plane(random_.OneIn(12) ? 8193 : 8192);
        }
        Payload(27, bitmap);
    }

    std::string Plane(size_t length) {
        std::string plane(length, '\0');
        for (size_t bytes = random_.Below(4); bytes > 0; --bytes) {
            plane[random_.OneIn(2) ? length - 1 : random_.Below(length)] =
                static_cast<char>(random_.Byte());
        }
        return plane;
    }

    void Container(size_t depth) {
        const uint32_t tag = random_.Pick(kContainerTags);
        const size_t count = random_.Below(5);
        const size_t promised = random_.OneIn(40) ? count + 1 : count;
        bytes_.U32(tag).U32(promised == 0 ? random_.Pick(kNoLengths) : static_cast<uint32_t>(promised));
        const bool only_numbers = random_.OneIn(3);
        for (size_t i = tag == 16 ? 2 * count : count; i > 0; --i) only_numbers ? Number() : Item(depth);
    }

    Random &random_;
    ByteWriter bytes_;
};

} // namespace

Bytes MutatedBytes(Random &random) {
    using Mutation = void (*)(Random &, Bytes &, const WordPlaces &);
    static constexpr Mutation kMutations[] = {FlipBit, SetByte,      CutEnd,    CutOut,
                                              Splice,  ChangeLength, MissByOne, ChangeTag};
    Bytes bytes = BytesOfValues(random);
    const WordPlaces places = FindWords(bytes);
    for (size_t i = random.Between(1, 3); i > 0 && !bytes.empty(); --i) {
        random.Pick(kMutations)(random, bytes, places);
    }
    return bytes;
}

Bytes OddBytes(Random &random) {
    OddWriter writer(random);
    if (random.OneIn(30)) {
        writer.Chain();
    } else {
        for (size_t items = random.Between(1, 3); items > 0; --items) writer.Item(4);
    }
    return writer.Get();
}

Bytes NoisyBytes(Random &random) {
    ByteWriter bytes;
    for (size_t items = random.Between(1, 4); items > 0; --items) {
        bytes.U32(random.Pick(kTags));
        if (!random.OneIn(4))
            bytes.U32(random.OneIn(3) ? random.Pick(kOddLengths) : static_cast<uint32_t>(random.Below(20)));
        bytes.Text(random.String(random.Below(30)));
    }
    return bytes;
}

} // namespace vellum::test
