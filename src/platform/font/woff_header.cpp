// SPDX-License-Identifier: MIT
// Headers and table directories of WOFF, whose entries have one size, and WOFF2, whose have many.
#include "platform/font/woff_header.hpp"

#include "platform/font/font_kind.hpp"
#include "platform/font/limits.hpp"

namespace vellum {
namespace {

// The same fields of both headers.
constexpr size_t kTablesAt = 12;
constexpr size_t kSfntSizeAt = 16;

constexpr size_t kWoffHeaderSize = 44;
constexpr size_t kWoffEntrySize = 20;
constexpr size_t kWoffLengthAt = 12;

constexpr size_t kWoff2HeaderSize = 48;
constexpr size_t kWoff2LargestEntry = 15; // flags, a tag, two numbers of five bytes

// In the flags of a WOFF2 entry: which table it is, and how it was transformed.
constexpr uint8_t kTableMask = 0x3F;
constexpr uint8_t kAnyTable = 0x3F;
constexpr uint8_t kGlyf = 10;
constexpr uint8_t kLoca = 11;
constexpr int kTransformShift = 6;

// Fewer bytes than asked for end the walk: what follows is read as nothing.
class TWoff2Directory {
public:
    explicit TWoff2Directory(TBytes bytes) noexcept : rest_(bytes) {}

    // What the next table is stored as.
    std::optional<uint64_t> NextLength() noexcept {
        const auto flags = Byte();
        if (!flags) return std::nullopt;
        if ((*flags & kTableMask) == kAnyTable) rest_ = Slice(rest_, 4, rest_.size());
        auto length = Number();
        return length && IsTransformed(*flags) ? Number() : length;
    }

private:
    // The two tables of outlines are transformed by method 0, the others are left alone by it.
    static bool IsTransformed(uint8_t flags) noexcept {
        const uint8_t table = flags & kTableMask;
        const int method = flags >> kTransformShift;
        return table == kGlyf || table == kLoca ? method != 3 : method != 0;
    }

    std::optional<uint8_t> Byte() noexcept {
        if (rest_.empty()) return std::nullopt;
        const uint8_t byte = rest_.front();
        rest_ = rest_.subspan(1);
        return byte;
    }

    // Seven bits a byte, the most significant first.
    std::optional<uint64_t> Number() noexcept {
        uint64_t number = 0;
        for (int i = 0; i < 5; ++i) {
            const auto byte = Byte();
            if (!byte) return std::nullopt;
            number = number << 7 | (*byte & 0x7F);
            if ((*byte & 0x80) == 0) return number;
        }
        return std::nullopt;
    }

    TBytes rest_;
};

std::optional<uint64_t> SumOfWoff(const TReading &reading, size_t tables) {
    const TBuffer directory = reading.Copy(kWoffHeaderSize, tables * kWoffEntrySize);
    if (directory.Size() < tables * kWoffEntrySize) return std::nullopt;
    uint64_t sum = 0;
    for (size_t i = 0; i < tables; ++i)
        sum += ReadU32(directory.View(), i * kWoffEntrySize + kWoffLengthAt);
    return sum;
}

std::optional<uint64_t> SumOfWoff2(const TReading &reading, size_t tables) {
    const TBuffer bytes = reading.Copy(kWoff2HeaderSize, tables * kWoff2LargestEntry);
    TWoff2Directory directory(bytes.View());
    uint64_t sum = 0;
    for (size_t i = 0; i < tables; ++i) {
        const auto length = directory.NextLength();
        if (!length) return std::nullopt;
        sum += *length;
    }
    return sum;
}

bool IsBelievable(uint64_t unpacked, uint64_t packed) noexcept {
    return unpacked <= limits::kWoffBytes && unpacked / limits::kWoffRatio <= packed;
}

} // namespace

std::optional<uint64_t> BelievableWoffSize(const TReading &reading) {
    const TBuffer header = reading.Copy(0, kWoffHeaderSize);
    const size_t tables = ReadU16(header.View(), kTablesAt);
    if (header.Size() < kWoffHeaderSize || tables > limits::kTables) return std::nullopt;
    if (reading.Size() > limits::kWoffBytes) return std::nullopt;
    if (!IsBelievable(ReadU32(header.View(), kSfntSizeAt), reading.Size())) return std::nullopt;
    const bool second = SniffFontKind(header.View()) == TFontKind::kWoff2;
    const auto sum = second ? SumOfWoff2(reading, tables) : SumOfWoff(reading, tables);
    return sum && IsBelievable(*sum, reading.Size()) ? sum : std::nullopt;
}

} // namespace vellum
