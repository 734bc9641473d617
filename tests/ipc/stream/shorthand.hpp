// SPDX-License-Identifier: MIT
// Streams, and bytes to compare their buffers with.
#pragma once

#include "ipc/stream/segments.hpp"

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace vellum::test {

using namespace std::string_view_literals;

inline constexpr uint32_t kNone = kVLDataStreamNoParent;

struct FreeStream {
    void operator()(VLDataStream *stream) const noexcept { VLDataStreamFree(stream); }
};
using Stream = std::unique_ptr<VLDataStream, FreeStream>;

inline Stream NewStream() {
    return Stream(VLDataStreamCreateStream());
}

// A value as it lies in memory.
template <class T>
std::string InMemory(const T &value) {
    return std::string(reinterpret_cast<const char *>(&value), sizeof value);
}

// 32-bit words as they lie in memory; six of them are a header: id, start, length, position, parent, count.
inline std::string Words(std::initializer_list<uint32_t> words) {
    std::string bytes;
    for (const uint32_t word : words) bytes += InMemory(word);
    return bytes;
}

inline Ref<ValData> MutableData(std::string_view bytes) {
    auto data = Adopt(ValDataCreateMutable(bytes.size()));
    ValDataAppend(data.Get(), bytes.data(), bytes.size());
    return data;
}

// A stream over a root header and these bytes behind it.
inline Stream StreamOver(std::string_view payload) {
    return Stream(VLDataStreamWithData(MutableData(std::string(24, '\0').append(payload)).Get()));
}

inline std::string BytesOf(const ValData *data) {
    return std::string(reinterpret_cast<const char *>(ValDataGetBytes(data)), ValDataGetLength(data));
}

inline std::string BytesOf(const Stream &stream) {
    return BytesOf(stream->buffer.Get());
}

// The header of a segment as Words writes it; empty for null.
inline std::string HeaderBytes(const VLDataStreamSegment *header) {
    return header ? InMemory(*header) : std::string();
}

inline std::string ReadHeader(const Stream &stream) {
    return HeaderBytes(VLDataStreamCurrentReadSegment(stream.get()));
}

inline std::string WriteHeader(const Stream &stream) {
    return HeaderBytes(VLDataStreamCurrentWriteSegment(stream.get()));
}

// Writes over the stream's buffer, as foreign bytes would stand there.
inline void Overwrite(const Stream &stream, size_t offset, std::string_view bytes) {
    std::memcpy(ValDataGetMutableBytes(stream->buffer.Get()) + offset, bytes.data(), bytes.size());
}

} // namespace vellum::test
