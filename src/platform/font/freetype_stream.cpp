// SPDX-License-Identifier: MIT
// FreeType's stream callbacks over a round of reading.
#include "platform/font/freetype_stream.hpp"

namespace vellum {

TFreeTypeStream::TFreeTypeStream(const TReading &reading) noexcept {
    const TBytes memory = reading.Memory();
    stream_.size = reading.Size();
    if (memory.empty()) {
        stream_.descriptor.pointer = const_cast<TReading *>(&reading);
        stream_.read = Read;
    } else {
        stream_.base = const_cast<unsigned char *>(memory.data());
    }
}

// Memory is handed over as such: FreeType 2.12 loses the stream that it puts in the place of one of
// ours when it fails to open a packed font.
FT_Open_Args TFreeTypeStream::Arguments() noexcept {
    FT_Open_Args arguments = {};
    if (stream_.base) {
        arguments.flags = FT_OPEN_MEMORY;
        arguments.memory_base = stream_.base;
        arguments.memory_size = static_cast<FT_Long>(stream_.size);
    } else {
        arguments.flags = FT_OPEN_STREAM;
        arguments.stream = &stream_;
    }
    return arguments;
}

// A count of 0 asks whether one may read at an offset: then 0 means yes.
unsigned long TFreeTypeStream::Read(FT_Stream stream, unsigned long offset, unsigned char *buffer,
                                    unsigned long count) noexcept {
    if (count == 0) return offset > stream->size ? 1 : 0;
    return static_cast<const TReading *>(stream->descriptor.pointer)->Read(offset, {buffer, count});
}

TFreeTypeFaceHandle OpenFreeTypeFace(FT_Library library, TFreeTypeStream &stream, uint32_t index,
                                     const char *driver) noexcept {
    FT_Open_Args arguments = stream.Arguments();
    if (driver) {
        arguments.flags |= FT_OPEN_DRIVER;
        arguments.driver = FT_Get_Module(library, driver);
        if (!arguments.driver) return nullptr;
    }
    FT_Face face = nullptr;
    if (FT_Open_Face(library, &arguments, static_cast<FT_Long>(index), &face) != 0) return nullptr;
    return TFreeTypeFaceHandle(face);
}

} // namespace vellum
