// SPDX-License-Identifier: MIT
// A data stream shown on the standard error stream, for people who look for a fault.
#include "ipc/stream/segments.hpp"

#include <cstdio>

using namespace vellum;

namespace {

void ShowSegment(const VLDataStreamSegment &header, size_t total) noexcept {
    std::fprintf(stderr, "\tid:%ld\tcnt:%ld\t <s:%ld l:%ld/%ld p:%ld>\n", static_cast<long>(header.id),
                 static_cast<long>(header.count), static_cast<long>(header.start),
                 static_cast<long>(header.length), static_cast<long>(total),
                 static_cast<long>(header.position));
}

// A segment and its parents.
void ShowStack(const VLDataStream *stream, const char *title, size_t offset) noexcept {
    std::fputs(title, stderr);
    const size_t total = ValDataGetLength(stream->buffer.Get());
    for (auto segment = SegmentAt(stream, offset); segment; segment = SegmentAt(stream, offset)) {
        ShowSegment(segment->header, total);
        offset = ParentOf(*segment);
    }
}

} // namespace

void VLDataStreamShow(const VLDataStream *stream) noexcept {
    if (!stream) return;
    ShowStack(stream, "readStack:\n", stream->read_segment);
    ShowStack(stream, "writeStack:\n", stream->write_segment);
    std::fputs("\n", stderr);
    const auto description = Adopt(ValCopyDescription(stream->buffer.Get()));
    if (description) std::fputs(ValStringGetBytes(description.Get(), nullptr), stderr);
}
