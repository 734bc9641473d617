// SPDX-License-Identifier: MIT
// What the parser believes of a font file. A file can claim anything; these bounds keep the time
// and memory that one file costs small, and stand well above what real fonts use.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vellum::limits {

// The largest collections in use are some 120 MB; anything larger is refused unread.
constexpr uint64_t kFileSize = 256u << 20;

// A collection that claims more is refused whole: its faces could not all be listed.
constexpr size_t kFaces = 1024;

// Named instances of one file, all faces together; further ones are not listed.
constexpr size_t kInstances = 1024;

// A variable face that claims more axes is taken as not variable. OpenType registers five, and the
// largest fonts in use have seventeen.
constexpr size_t kAxes = 64;

// Entries of a table directory that are read; real fonts have about twenty.
constexpr size_t kTables = 512;

// Records of a name table that are read, in their order.
constexpr size_t kNameRecords = 1024;

// The longest name, in bytes of UTF-8; longer ones are licences, or traps.
constexpr size_t kNameLength = 4096;

// What is kept of one name table. Records may overlap, so that the table's size bounds nothing.
constexpr size_t kKeptNameBytes = 32u << 10;

// The part of a name table that can matter: records, then 64 KiB of text behind a 64 KiB offset.
constexpr size_t kNameTableBytes = 256u << 10;

// The largest table that the two bounds above allow, and what is read of such tables in one file.
constexpr size_t kFvarBytes = 512u << 10;
constexpr size_t kFvarBytesOfFile = 16u << 20;

// The largest character map in use is about 1 MB.
constexpr size_t kCmapBytes = 16u << 20;
constexpr size_t kCmapRecords = 128;

// Code points that one subtable of a character map may name, repetitions counted: four times all
// there are. And groups that are looked at to find out, all subtables together.
constexpr uint64_t kCmapCodePoints = 4u * 0x110000;
constexpr size_t kCmapGroups = 4u << 20;

// What a compressed bitmap font may become.
constexpr size_t kInflatedBytes = 32u << 20;

// What a WOFF file may become, and how many times its own size that may be. Each face of a
// collection is unpacked for itself, so that all of them together have a bound as well.
constexpr uint64_t kWoffBytes = 64u << 20;
constexpr uint64_t kWoffRatio = 100;
constexpr uint64_t kWoffBytesOfFile = 256u << 20;

// What FreeType may hold at any moment, in bytes.
constexpr size_t kFreeTypeMemory = 192u << 20;

// Files whose faces the parser's cache keeps.
constexpr size_t kCachedFiles = 64;

} // namespace vellum::limits
