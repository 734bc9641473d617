# SPDX-License-Identifier: MIT
# What the tables of a face say without its names: its characters, the OS/2 ranges that they lie in, the
# string encoding of its character maps, its format. Tables are read as bytes, so that they may be cut short.
import functools
import struct

from fontTools.ttLib import newTable
from fontTools.ttLib.tables.O_S_2f_2 import OS2_UNICODE_RANGES

UNICODE = 0x100

# The Unicode subtables, best first, as text is shaped: a font that has symbols is a font of symbols.
BEST_SUBTABLES = [(3, 0), (3, 10), (0, 6), (0, 4), (3, 1), (0, 3), (0, 2), (0, 1), (0, 0)]

# What fontTools keeps as it is printed and where the ranges are wider: bit 57 stands for everything
# beyond plane 0 and not for surrogates, and a private plane is private to its end.
WIDER_RANGES = {(57, 0xD800, 0xDFFF): (57, 0x10000, 0x10FFFF), (90, 0xF0000, 0xFFFFD): (90, 0xF0000, 0xFFFFF),
                (90, 0x100000, 0x10FFFD): (90, 0x100000, 0x10FFFF)}


class Table:
    """The bytes of a table. What lies beyond the end is zero, and so is everything of an absent table."""

    def __init__(self, font, tag):
        self.present = tag in font
        self.data = font.reader[tag] if self.present else b""
        self.length = len(self.data)

    def _number(self, form, offset):
        size = struct.calcsize(form)
        return struct.unpack(form, self.data[offset:offset + size].ljust(size, b"\0"))[0]

    def u8(self, offset):
        return self._number(">B", offset)

    def u16(self, offset):
        return self._number(">H", offset)

    def i16(self, offset):
        return self._number(">h", offset)

    def u32(self, offset):
        return self._number(">L", offset)


def _mapped(data, glyph_count):
    """The characters that a cmap maps to another glyph than 0."""
    table = newTable("cmap")
    table.decompile(data, _NumberedGlyphs())
    subtables = (table.getcmap(*place) for place in BEST_SUBTABLES)
    best = next((subtable for subtable in subtables if subtable is not None), None)
    if best is None:
        return frozenset()
    return frozenset(code for code, glyph in best.cmap.items() if 0 < glyph < glyph_count)


class _NumberedGlyphs:
    """A font whose glyphs have their numbers for names: those in the file take long to read."""

    lazy = True

    def getGlyphName(self, number):
        return number

    def getGlyphNameMany(self, numbers):
        return numbers

    def getGlyphOrder(self):
        return range(0x10000)


_remembered_characters = {}


def characters(font):
    """The characters of a face. Faces of a collection have the same map many times."""
    if "cmap" not in font:
        return frozenset()
    data, glyph_count = font.reader["cmap"], Table(font, "maxp").u16(4)
    if (data, glyph_count) not in _remembered_characters:
        _remembered_characters[data, glyph_count] = _mapped(data, glyph_count)
    return _remembered_characters[data, glyph_count]


def ranges_of(numbers):
    """Ascending (first, last) pairs of what stands together."""
    ranges = []
    for number in sorted(numbers):
        if ranges and ranges[-1][1] == number - 1:
            ranges[-1][1] = number
        else:
            ranges.append([number, number])
    return ranges


@functools.lru_cache(maxsize=None)
def character_set(numbers):
    """A character set as the tool writes one."""
    pieces = (f"{first:x}" if first == last else f"{first:x}-{last:x}" for first, last in ranges_of(numbers))
    return {"count": len(numbers), "ranges": " ".join(pieces)}


@functools.lru_cache(maxsize=None)
def unicode_range_rows():
    """(bit, first, last) of every block that has a bit, ascending by its first character."""
    rows = [(bit, *block) for bit, blocks in enumerate(OS2_UNICODE_RANGES) for _, block in blocks]
    return sorted((WIDER_RANGES.get(row, row) for row in rows), key=lambda row: row[1])


@functools.lru_cache(maxsize=None)
def unicode_ranges(numbers):
    """The four words of the bits whose blocks a character lies in."""
    words = [0, 0, 0, 0]
    ranges = ranges_of(numbers)
    for bit, first, last in unicode_range_rows():
        if any(start <= last and end >= first for start, end in ranges):
            words[bit // 32] |= 1 << bit % 32
    return words


def string_encoding(font):
    """The lowest script of Macintosh character maps other than Roman, then Roman, then Unicode."""
    cmap = Table(font, "cmap")
    records = range(4, 4 + 8 * cmap.u16(2), 8)
    scripts = {cmap.u16(place + 2) % 32 for place in records if cmap.u16(place) == 1}
    return min(scripts - {0}, default=0 if scripts else UNICODE)


# Type of the file -> the format that the tables then decide about.
FORMATS_OF_TYPES = {"public.opentype-font": 1, "public.opentype-collection-font": 1,
                    "public.truetype-ttf-font": 3, "public.truetype-collection-font": 3}
FORMATS = ["unrecognized", "opentype-postscript", "opentype-truetype", "truetype", "postscript", "bitmap"]


def type_of_file(fonts, is_collection):
    outlines = "opentype" if fonts[0].sfntVersion == "OTTO" else "truetype"
    if is_collection:
        return f"public.{outlines}-collection-font"
    return "public.opentype-font" if outlines == "opentype" else "public.truetype-ttf-font"


def format_number(file_type, tags):
    number = FORMATS_OF_TYPES[file_type]
    for tag in tags:
        number = {"TYP1": 4, "CFF ": 4, "glyf": 3}.get(tag, number)
    if {"DSIG", "GPOS", "GSUB"} & set(tags):
        return 1 if "CFF " in tags else 2
    if number != 3:
        return number
    bitmaps = {"bdat", "bloc"} <= set(tags)
    if "glyf" in tags:
        return 3 if "loca" in tags else 5 if bitmaps else 0
    return 5 if bitmaps else 4


def format_name(file_type, tags):
    return FORMATS[format_number(file_type, tags)]
