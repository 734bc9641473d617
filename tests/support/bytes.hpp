// SPDX-License-Identifier: MIT
// Bytes written field by field, big-endian, as font tables are.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vellum::test {

using Bytes = std::vector<uint8_t>;

class ByteWriter {
public:
    ByteWriter &U8(uint32_t value) {
        bytes_.push_back(static_cast<uint8_t>(value));
        return *this;
    }
    ByteWriter &U16(uint32_t value) { return U8(value >> 8).U8(value); }
    ByteWriter &U32(uint32_t value) { return U16(value >> 16).U16(value); }
    ByteWriter &U64(uint64_t value) {
        return U32(static_cast<uint32_t>(value >> 32)).U32(static_cast<uint32_t>(value));
    }
    ByteWriter &I16(int32_t value) { return U16(static_cast<uint32_t>(value)); }

    // A 16.16 fixed-point number.
    ByteWriter &Fixed(double value) {
        return U32(static_cast<uint32_t>(static_cast<int32_t>(value * 65536)));
    }

    ByteWriter &Text(std::string_view text) {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        return *this;
    }
    ByteWriter &Append(const Bytes &more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }
    ByteWriter &Zeros(size_t count) {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }

    // Zeros up to a multiple of `unit`.
    ByteWriter &Align(size_t unit) { return Zeros((unit - bytes_.size() % unit) % unit); }

    size_t Size() const { return bytes_.size(); }
    const Bytes &Get() const { return bytes_; }
    operator Bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

// Little-endian numbers, for the formats that have them.
class LittleEndianWriter : public ByteWriter {
public:
    LittleEndianWriter &U16(uint32_t value) {
        U8(value).U8(value >> 8);
        return *this;
    }
    LittleEndianWriter &U32(uint32_t value) { return U16(value).U16(value >> 16); }
};

} // namespace vellum::test
