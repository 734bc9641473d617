// SPDX-License-Identifier: MIT
// Writing of WOFF headers and of the two simplest kinds of deflate blocks.
#include "support/packed_fonts.hpp"

#include <algorithm>
#include <map>

namespace vellum::test {
namespace {

uint32_t ReadWord(const Bytes &bytes, size_t at) {
    return static_cast<uint32_t>(bytes.at(at)) << 24 | static_cast<uint32_t>(bytes.at(at + 1)) << 16 |
           static_cast<uint32_t>(bytes.at(at + 2)) << 8 | bytes.at(at + 3);
}

struct PackedTable {
    uint32_t checksum;
    Bytes bytes;
};

std::map<uint32_t, PackedTable> TablesOf(const Bytes &sfnt) {
    std::map<uint32_t, PackedTable> tables;
    const size_t count = ReadWord(sfnt, 2) & 0xFFFF;
    for (size_t at = 12; at < 12 + 16 * count; at += 16) {
        const auto begin = sfnt.begin() + static_cast<std::ptrdiff_t>(ReadWord(sfnt, at + 8));
        const Bytes bytes(begin, begin + static_cast<std::ptrdiff_t>(ReadWord(sfnt, at + 12)));
        tables[ReadWord(sfnt, at)] = {ReadWord(sfnt, at + 4), bytes};
    }
    return tables;
}

// Bits go into bytes from the least significant on; Huffman codes with their first bit first.
class BitWriter {
public:
    void Bits(uint32_t value, int count) {
        for (int i = 0; i < count; ++i) Bit(value >> i & 1);
    }
    void Code(uint32_t code, int count) {
        for (int i = count - 1; i >= 0; --i) Bit(code >> i & 1);
    }
    Bytes Finish() {
        while (used_ != 0) Bit(0);
        return bytes_;
    }

private:
    void Bit(uint32_t bit) {
        if (used_ == 0) bytes_.push_back(0);
        bytes_.back() = static_cast<uint8_t>(bytes_.back() | bit << used_);
        used_ = (used_ + 1) % 8;
    }

    Bytes bytes_;
    int used_ = 0;
};

// Deflate's fixed code.
void AddLiteral(BitWriter &writer, uint8_t byte) {
    if (byte < 144) {
        writer.Code(0x30u + byte, 8);
    } else {
        writer.Code(0x190u + byte - 144u, 9);
    }
}

// The longest repetition there is, 258 times the last byte.
void AddRepetition(BitWriter &writer) {
    writer.Code(0xC5, 8);
    writer.Code(0, 5);
}

LittleEndianWriter GzipHeader() {
    LittleEndianWriter file;
    file.U8(0x1F).U8(0x8B).U8(8).Zeros(7);
    return file;
}

// The checksum is left out: readers of fonts do not look at it.
Bytes GzipEnd(LittleEndianWriter file, size_t size) {
    file.U32(0).U32(static_cast<uint32_t>(size));
    return file;
}

} // namespace

Bytes BuildWoff(const Bytes &sfnt) {
    constexpr size_t kHeaderSize = 44;
    const auto tables = TablesOf(sfnt);
    ByteWriter directory;
    ByteWriter body;
    const size_t start = kHeaderSize + 20 * tables.size();
    for (const auto &[tag, table] : tables) {
        const auto length = static_cast<uint32_t>(table.bytes.size());
        directory.U32(tag).U32(static_cast<uint32_t>(start + body.Size())).U32(length).U32(length);
        directory.U32(table.checksum);
        body.Append(table.bytes).Align(4);
    }
    ByteWriter file;
    file.Text("wOFF").U32(ReadWord(sfnt, 0)).U32(static_cast<uint32_t>(start + body.Size()));
    file.U16(static_cast<uint32_t>(tables.size())).U16(0);
    file.U32(static_cast<uint32_t>(12 + 16 * tables.size() + body.Size())).Zeros(24);
    return file.Append(directory).Append(body);
}

Bytes Gzip(const Bytes &bytes) {
    constexpr size_t kBlock = 65535;
    LittleEndianWriter file = GzipHeader();
    for (size_t at = 0; at < bytes.size(); at += kBlock) {
        const size_t size = std::min(kBlock, bytes.size() - at);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        file.U8(at + size == bytes.size() ? 1 : 0);
        file.U16(static_cast<uint32_t>(size)).U16(static_cast<uint32_t>(~size));
        file.Append(Bytes(begin, begin + static_cast<std::ptrdiff_t>(size)));
    }
    return GzipEnd(std::move(file), bytes.size());
}

Bytes GzipOfZeros(const Bytes &prefix, size_t zeros) {
    BitWriter block;
    block.Bits(3, 3);
    for (const uint8_t byte : prefix) AddLiteral(block, byte);
    AddLiteral(block, 0);
    for (size_t i = 0; i < zeros / 258; ++i) AddRepetition(block);
    block.Code(0, 7);
    LittleEndianWriter file = GzipHeader();
    file.Append(block.Finish());
    return GzipEnd(std::move(file), prefix.size() + 1 + zeros / 258 * 258);
}

} // namespace vellum::test
