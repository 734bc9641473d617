# SPDX-License-Identifier: MIT
# Small fonts whose tables say only what they are asked to: what made_fonts.py leaves as a builder sets it
# can be chosen here, cut short or left out.
import io
import struct

from fontTools.ttLib import TTFont, newTable
from fontTools.ttLib.tables._c_m_a_p import CmapSubtable
from fontTools.ttLib.tables.DefaultTable import DefaultTable

from made_fonts import WINDOWS_ENGLISH, english, make_font

NO_POSTSCRIPT_NAME = 0xFFFF
STYLELESS = "Zq"  # holds no style word


def raw_table(tag, data):
    table = DefaultTable(tag)
    table.data = data
    return table


def names(family, full=None, style=None, postscript=None, more=()):
    """Records in English of those names that are given."""
    given = ((1, family), (2, style), (4, full), (6, postscript), *more)
    return [(WINDOWS_ENGLISH, name_id, text) for name_id, text in given if text is not None]


def os2(version=3, weight=0, width=0, family_class=0, panose=(0,) * 10, ranges=(0,) * 4, pages=(0, 0), length=96):
    """An OS/2 table of a length, in which nothing is said that is not asked for."""
    data = struct.pack(">HhHH22xh10B4L", version, 500, weight, width, family_class, *panose, *ranges)
    return raw_table("OS/2", (data.ljust(78, b"\0") + struct.pack(">2L", *pages)).ljust(96, b"\0")[:length])


def panose(weight=0, proportion=0):
    return (2, 0, weight, proportion, 0, 0, 0, 0, 0, 0)


def bits(numbers, words):
    values = [0] * words
    for number in numbers:
        values[number // 32] |= 1 << number % 32
    return values


def open_font(records=None, os2_table=None, slope=(1, 0), mac_style=0, post=None, **more):
    """A font whose traits are open until one of the arguments settles them."""
    font = make_font(names(STYLELESS, STYLELESS, "Plain", STYLELESS) if records is None else records, **more)
    font["OS/2"] = os2_table or os2()
    font["hhea"].caretSlopeRise, font["hhea"].caretSlopeRun = slope
    font["head"].macStyle = mac_style
    if post is not None:
        font["post"].italicAngle, font["post"].isFixedPitch = post
    return font


def without(font, *tags):
    """A font as it lies in a file, with tables left out that its others were computed from."""
    file = io.BytesIO()
    font.save(file)
    font = TTFont(file, recalcBBoxes=False, recalcTimestamp=False)
    for tag in tags:
        del font[tag]
    return font


def cmap_table(*subtables):
    """A cmap of subtables (platform, encoding, format, {code: glyph})."""
    table = newTable("cmap")
    table.tableVersion, table.tables = 0, []
    for platform, encoding, form, mapping in subtables:
        subtable = CmapSubtable.newSubtable(form)
        subtable.platformID, subtable.platEncID, subtable.language, subtable.cmap = platform, encoding, 0, mapping
        table.tables.append(subtable)
    return table


def with_cmap(*subtables, records=None):
    font = make_font(english("Mapped") if records is None else records)
    font["cmap"] = cmap_table(*subtables)
    return font
