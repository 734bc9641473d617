# SPDX-License-Identifier: MIT
# Small fonts for the tools' tests, written as data: each is a few name records, and axes and
# instances for a variable one. The name table is laid out here, so that its records may stand in
# any order and hold any bytes; fontTools writes the rest.
import struct

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTCollection
from fontTools.ttLib.tables.DefaultTable import DefaultTable

WINDOWS_ENGLISH = (3, 1, 0x409)
WINDOWS_BRITISH = (3, 1, 0x809)
WINDOWS_GERMAN = (3, 1, 0x407)
WINDOWS_JAPANESE = (3, 1, 0x411)
WINDOWS_SYMBOL = (3, 0, 0x409)
WINDOWS_FULL_ENGLISH = (3, 10, 0x409)
MAC_ENGLISH = (1, 0, 0)
MAC_FRENCH = (1, 0, 1)
MAC_JAPANESE = (1, 1, 11)
UNICODE = (0, 3, 0)


def encode(place, text):
    """Text as a record of a platform, an encoding and a language holds it; bytes stay as they are."""
    if isinstance(text, bytes):
        return text
    if place == MAC_JAPANESE:
        return text.encode("shift_jis")
    return text.encode("mac_roman" if place[0] == 1 else "utf_16_be")


def name_table(records):
    """A name table whose records ((platform, encoding, language), nameID, text) keep their order."""
    entries, storage = b"", b""
    for place, name_id, text in records:
        data = encode(place, text)
        entries += struct.pack(">6H", *place, name_id, len(data), len(storage))
        storage += data
    table = DefaultTable("name")
    table.data = struct.pack(">3H", 0, len(records), 6 + len(entries)) + entries + storage
    return table


def english(family, subfamily="Regular", place=WINDOWS_ENGLISH):
    """The records that most fonts have."""
    full = family if subfamily == "Regular" else f"{family} {subfamily}"
    postscript = "".join(c for c in f"{family}-{subfamily}" if c.isascii() and (c.isalnum() or c == "-"))
    return [(place, 1, family), (place, 2, subfamily), (place, 4, full), (place, 6, postscript)]


def make_font(records, axes=(), instances=(), characters=(0x41,), widths=(500, 600)):
    """A TTFont with a glyph for each width, of which the second is that of all characters. Axes: (tag,
    minimum, default, maximum, nameID); instances: (subfamily nameID, PostScript nameID or 0xFFFF,
    {tag: coordinate})."""
    builder = FontBuilder(1000, isTTF=True)
    glyphs = [".notdef", "A", *(f"glyph{number}" for number in range(2, len(widths)))]
    builder.setupGlyphOrder(glyphs)
    builder.setupCharacterMap(dict.fromkeys(characters, "A"))
    builder.setupGlyf({glyph: TTGlyphPen(None).glyph() for glyph in glyphs})
    builder.setupHorizontalMetrics({glyph: (width, 0) for glyph, width in zip(glyphs, widths)})
    builder.setupHorizontalHeader(ascent=800, descent=-200)
    builder.setupOS2()
    builder.setupPost()
    builder.font["name"] = name_table(records)
    if axes:
        builder.font["fvar"] = fvar_table(axes, instances)
        builder.font["gvar"] = still_gvar_table(len(axes), len(glyphs))
    return builder.font


def _fixed(value):
    return round(value * 65536)


def fvar_table(axes, instances):
    """An fvar table with the PostScript nameID in every instance."""
    data = struct.pack(">8H", 1, 0, 16, 2, len(axes), 20, len(instances), 6 + 4 * len(axes))
    for tag, minimum, default, maximum, name_id in axes:
        data += struct.pack(">4s3i2H", tag.encode(), _fixed(minimum), _fixed(default), _fixed(maximum), 0, name_id)
    for subfamily_id, postscript_id, coordinates in instances:
        data += struct.pack(">2H", subfamily_id, 0)
        data += b"".join(struct.pack(">i", _fixed(coordinates[axis[0]])) for axis in axes)
        data += struct.pack(">H", postscript_id)
    table = DefaultTable("fvar")
    table.data = data
    return table


def still_gvar_table(axis_count, glyph_count):
    """A gvar table in which no outline moves."""
    data_start = 20 + 2 * (glyph_count + 1)
    table = DefaultTable("gvar")
    table.data = struct.pack(">4HL2HL", 1, 0, axis_count, 0, data_start, glyph_count, 0, data_start) + \
        bytes(2 * (glyph_count + 1))
    return table


def _ranked(*records):
    """The usual records under names of their own, with others for the family name before them."""
    return [*records, *(r for r in english("Base") if r[1] != 1)]


# File name -> name records. Each holds one rule of which record a name is read from.
STATIC = {
    "plain": english("Plain"),
    "bold": english("Plain", "Bold"),
    "preferred-names": english("Short Cond") + [(WINDOWS_ENGLISH, 16, "Short"), (WINDOWS_ENGLISH, 17, "Cond")],
    "preferred-family-alone": english("Legacy", "Italic") + [(WINDOWS_ENGLISH, 16, "Typographic")],
    "preferred-in-german-alone": english("Legacy") + [(WINDOWS_GERMAN, 16, "Deutsch")],
    "mac-alone": english("Mac", place=MAC_ENGLISH),
    "mac-first-in-file": english("Old Mac", place=MAC_ENGLISH) + english("New"),
    "unicode-alone": english("Unicode", place=UNICODE),
    "unicode-before-mac": english("Unicode", place=UNICODE) + english("Mac Wins", place=MAC_ENGLISH),
    "unicode-before-german": _ranked((WINDOWS_GERMAN, 1, "Deutsch"), (UNICODE, 1, "Unicode")),
    "american-after-british": _ranked((WINDOWS_BRITISH, 1, "Colour"), (WINDOWS_ENGLISH, 1, "Color")),
    "british-after-german": _ranked((WINDOWS_GERMAN, 1, "Farbe"), (WINDOWS_BRITISH, 1, "Colour")),
    "british-before-mac": _ranked((MAC_ENGLISH, 1, "Mac"), (WINDOWS_BRITISH, 1, "Colour")),
    "symbol-encoding": [(WINDOWS_SYMBOL, key, text) for _, key, text in english("Dingbats")],
    "full-encoding": [(WINDOWS_FULL_ENGLISH, key, text) for _, key, text in english("Full")],
    "no-english-german-first": _ranked((WINDOWS_GERMAN, 1, "Schrift"), (WINDOWS_JAPANESE, 1, "書体")),
    "no-english-japanese-first": _ranked((WINDOWS_JAPANESE, 1, "書体"), (WINDOWS_GERMAN, 1, "Schrift")),
    "mac-french-alone": _ranked((MAC_FRENCH, 1, "Français")),
    "mac-japanese-alone": _ranked((MAC_JAPANESE, 1, "書体")),
    "undecodable-is-passed-over": _ranked((MAC_JAPANESE, 1, b"\x81"), (WINDOWS_GERMAN, 1, "Schrift")),
    "mac-roman-letters": [(MAC_ENGLISH, key, text) for key, text in
                          ((1, "Café™"), (2, "Regular"), (4, "Café™"), (6, "Cafe-Regular"))],
    "beyond-the-basic-plane": english("Music \U0001D11E"),
}

WEIGHT = ("wght", 100, 400, 900, 256)
WIDTH = ("wdth", 62.5, 100, 125.25, 257)
AXIS_NAMES = [(WINDOWS_ENGLISH, 256, "Weight"), (WINDOWS_ENGLISH, 257, "Width")]
STYLES = [(WINDOWS_ENGLISH, 258, "Regular"), (WINDOWS_ENGLISH, 259, "Bold"), (WINDOWS_ENGLISH, 260, "Black Narrow"),
          (WINDOWS_ENGLISH, 261, "Chosen-Boldest")]

# File name -> (name records, axes, instances).
VARIABLE = {
    "one-axis": (english("One Axis") + AXIS_NAMES + STYLES, [WEIGHT],
                 [(258, 0xFFFF, {"wght": 400}), (259, 0xFFFF, {"wght": 700}), (260, 0xFFFF, {"wght": 900})]),
    "two-axes": (english("Two Axes") + AXIS_NAMES + STYLES, [WEIGHT, WIDTH],
                 [(259, 0xFFFF, {"wght": 700, "wdth": 100}), (258, 0xFFFF, {"wght": 400, "wdth": 100}),
                  (260, 0xFFFF, {"wght": 900, "wdth": 62.5}), (258, 0xFFFF, {"wght": 400, "wdth": 87.75})]),
    "named-instances": (english("Named") + AXIS_NAMES + STYLES, [WEIGHT],
                        [(259, 261, {"wght": 700}), (260, 0xFFFF, {"wght": 900})]),
    "preferred-family": (english("Var Thin", "Regular") + [(WINDOWS_ENGLISH, 16, "Var"), (WINDOWS_ENGLISH, 17, "Thin")]
                         + AXIS_NAMES + STYLES, [WEIGHT], [(259, 0xFFFF, {"wght": 700})]),
    "variation-prefix": (english("Prefixed") + [(WINDOWS_ENGLISH, 25, "OtherPrefix")] + AXIS_NAMES + STYLES,
                         [WEIGHT], [(259, 0xFFFF, {"wght": 700})]),
    "nameless-axis": (english("Nameless Axis") + STYLES, [("wght", 100, 400, 900, 299)],
                      [(259, 0xFFFF, {"wght": 650.5})]),
    "no-instances": (english("No Instances") + AXIS_NAMES, [WEIGHT, WIDTH], []),
}

# File name -> the fonts above that it collects.
COLLECTIONS = {"static-collection": ["plain", "bold", "mac-alone"]}


def write_all(folder):
    """Writes every font of the tables above into a folder (a pathlib.Path)."""
    for name, records in STATIC.items():
        make_font(records).save(folder / f"{name}.ttf")
    for name, (records, axes, instances) in VARIABLE.items():
        make_font(records, axes, instances).save(folder / f"{name}.ttf")
    for name, members in COLLECTIONS.items():
        collection = TTCollection()
        collection.fonts = [make_font(STATIC[member]) for member in members]
        collection.save(str(folder / f"{name}.ttc"))
    # A collection of variable faces: their instances come after both of them.
    collection = TTCollection()
    collection.fonts = [make_font(*VARIABLE[member]) for member in ("one-axis", "two-axes")]
    collection.save(str(folder / "variable-collection.ttc"))


def write_plain(path, family="Plain", subfamily="Regular"):
    """Writes one small font."""
    make_font(english(family, subfamily)).save(path)


def write_plain_collection(path, families):
    """Writes a collection of small fonts."""
    collection = TTCollection()
    collection.fonts = [make_font(english(family)) for family in families]
    collection.save(str(path))
