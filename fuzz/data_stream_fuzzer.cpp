// SPDX-License-Identifier: MIT
// Any calls on a stream over any bytes: they end, stay in the buffer, and what they hand out can be read.
// The input: how many calls, a byte for each (what to call, and with how much), then the buffer.
#include <vellum/data_stream.h>
#include <vellum/values.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

using namespace vellum;

namespace {

void Check(bool holds) {
    if (!holds) std::abort();
}

// The stream under test, and the data that it was made over, to look at behind its back.
struct Subject {
    VLDataStream *stream;
    const ValData *data;
};

// Headers lie in the buffer.
void CheckHeader(const Subject &subject, const VLDataStreamSegment *header) {
    if (!header) return;
    const auto offset = reinterpret_cast<const uint8_t *>(header) - ValDataGetBytes(subject.data);
    Check(offset >= 0 && static_cast<size_t>(offset) + sizeof *header <= ValDataGetLength(subject.data));
}

// Whether the header of the read segment lies in the first bytes of a string, and was changed by reading
// it.
bool HoldsReadHeader(const Subject &subject, const char *string, size_t length) {
    const auto *header = reinterpret_cast<const char *>(VLDataStreamCurrentReadSegment(subject.stream));
    return header && header < string + length && string < header + sizeof(VLDataStreamSegment);
}

// Strings begin in the buffer, and end in it or with the zero behind it.
void CheckString(const Subject &subject, const char *string, size_t length) {
    if (!string) return;
    const auto offset = reinterpret_cast<const uint8_t *>(string) - ValDataGetBytes(subject.data);
    const size_t size = ValDataGetLength(subject.data);
    Check(offset >= 0 && static_cast<size_t>(offset) < size);
    const size_t rest = size - static_cast<size_t>(offset);
    Check(length <= rest && std::strlen(string) <= rest);
    Check(length <= std::strlen(string) || HoldsReadHeader(subject, string, length));
}

void ReadBytes(const Subject &subject, size_t amount) {
    const auto bytes = std::make_unique<char[]>(amount);
    Check(VLDataStreamReadBytes(subject.stream, bytes.get(), amount) <= amount);
}

void ReadString(const Subject &subject, size_t) {
    size_t length = 0;
    const char *string = VLDataStreamReadString(subject.stream, &length);
    Check(string || length == 0);
    CheckString(subject, string, length);
}

// A position that reading moved far away would ask for gigabytes of zeros.
void OpenWriteSegment(const Subject &subject, size_t) {
    const auto *header = VLDataStreamCurrentWriteSegment(subject.stream);
    if (header && header->position < 65'536)
        CheckHeader(subject, VLDataStreamOpenWriteSegment(subject.stream));
}

using Call = void (*)(const Subject &subject, size_t amount);
constexpr Call kCalls[] = {
    [](const Subject &s, size_t n) { VLDataStreamAppendBytes(s.stream, "01234567", n); },
    [](const Subject &s, size_t n) { VLDataStreamAppendUInt32(s.stream, static_cast<uint32_t>(n) * 12); },
    [](const Subject &s, size_t n) { VLDataStreamAppendDouble(s.stream, static_cast<double>(n)); },
    [](const Subject &s, size_t n) { VLDataStreamAppendCString(s.stream, &"01234567"[n]); },
    [](const Subject &s, size_t n) { VLDataStreamAppendString(s.stream, "01234567", n); },
    [](const Subject &s, size_t n) {
        VLDataStreamAppendEmptyStrings(s.stream, static_cast<int32_t>(n) - 1);
    },
    OpenWriteSegment,
    [](const Subject &s, size_t) { VLDataStreamCloseWriteSegment(s.stream); },
    ReadBytes,
    [](const Subject &s, size_t n) { ReadBytes(s, n * 16); },
    [](const Subject &s, size_t) { VLDataStreamReadUInt32(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamReadDouble(s.stream); },
    ReadString,
    [](const Subject &s, size_t) { CheckString(s, VLDataStreamReadCString(s.stream), 0); },
    [](const Subject &s, size_t) { VLDataStreamOpenReadSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamSkipReadSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamCloseReadSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamResetReadSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamBytesLeftToReadInCurrentSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamBytesLeftToRead(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamResetStream(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamClearToStartOfSegment(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamClearStream(s.stream); },
    [](const Subject &s, size_t) { VLDataStreamShow(s.stream); },
};
constexpr size_t kAmounts = 8; // with the calls, what a byte can tell
static_assert(std::size(kCalls) * kAmounts <= 256);

// Streams write to the standard error stream, which is the fuzzer's. It and the sanitizers write to the
// descriptor or have taken the stream already.
void BeQuiet() {
    static FILE *sNowhere = std::fopen("/dev/null", "w");
    if (sNowhere) stderr = sNowhere;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    if (size == 0) return 0;
    BeQuiet();
    const size_t calls = std::min<size_t>(bytes[0], size - 1);
    const auto data = Adopt(ValDataCreateMutable(0));
    ValDataAppend(data.Get(), bytes + 1 + calls, size - 1 - calls);
    const Subject subject{VLDataStreamWithData(data.Get()), data.Get()};
    Check(subject.stream);
    for (size_t i = 1; i <= calls; ++i) {
        kCalls[bytes[i] / kAmounts % std::size(kCalls)](subject, bytes[i] % kAmounts);
        CheckHeader(subject, VLDataStreamCurrentReadSegment(subject.stream));
        CheckHeader(subject, VLDataStreamCurrentWriteSegment(subject.stream));
    }
    VLDataStreamFree(subject.stream);
    return 0;
}
