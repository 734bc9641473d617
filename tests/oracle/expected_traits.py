# SPDX-License-Identifier: MIT
# The traits of a face, worked out a second time: from its name, the words in its names, its tables, and
# for an instance from its place on the axes. What settles a trait first wins.
import math
import struct

from expected_tables import Table

ITALIC, BOLD, EXPANDED, CONDENSED, MONOSPACED = 0x1, 0x2, 0x20, 0x40, 0x400
ITALIC_SLANT = 0.0694444
STEEP_SLANT = 0.138889

# Word -> value; the first word of these that a name contains counts. Some words stand twice, and the
# second never counts.
WEIGHT_WORDS = [
    ("Ultra Light", -0.8), ("Ultra Black", 0.75), ("Extra Light", -0.5), ("UltraLight", -0.8), ("UltraBlack", 0.75),
    ("ExtraBlack", 0.8), ("UltraLight", -0.8), ("ExtraLight", -0.5), ("Ultra Thin", -0.8), ("Extra Thin", -0.8),
    ("Heavy Face", 0.56), ("Semi Light", -0.2), ("Extra Bold", 0.5), ("Ultra Bold", 0.7), ("HeavyFace", 0.56),
    ("ExtraBold", 0.5), ("UltraBold", 0.7), ("Ext Black", 0.8), ("SemiLight", -0.2), ("Demi Bold", 0.25),
    ("Semi Bold", 0.3), ("Ext Light", -0.5), ("Ext Bold", 0.5), ("DemiBold", 0.25), ("SemiBold", 0.3),
    ("HairLine", -0.8), ("Ext Thin", -0.8), ("Medium", 0.23), ("Poster", 0.8), ("Light", -0.4), ("Ultra", 0.5),
    ("Heavy", 0.56), ("Extra", 0.5), ("Black", 0.62), ("Super", 0.62), ("Obese", 0.85), ("Lite", -0.4),
    ("Book", -0.23), ("Demi", 0.25), ("Semi", 0.3), ("Thin", -0.5), ("Bold", 0.4), ("Nord", 0.8), ("Fat", 0.75),
    ("W1", -0.23), ("W2", -0.5), ("W3", -0.23), ("W4", 0.0), ("W5", 0.23), ("W6", 0.3), ("W7", 0.44), ("W8", 0.54),
    ("W9", 0.62)]
WIDTH_WORDS = [
    ("Extra Compressed", -0.7), ("Ultra Compressed", -0.7), ("Ultra Condensed", -0.7), ("Extra Condensed", -0.5),
    ("Extra Extended", 0.4), ("Ext Compressed", -0.7), ("Ultra Expanded", 0.8), ("Ultra Extended", 0.8),
    ("Extra Expanded", 0.4), ("Semi Condensed", -0.7), ("Semi Condensed", -0.1), ("Ext Condensed", -0.5),
    ("SemiCondensed", -0.1), ("ExtraExpanded", 0.4), ("Semi Expanded", 0.1), ("Semi Extended", 0.1),
    ("Ext Expanded", 0.4), ("Ext Extended", 0.4), ("SemiExpanded", 0.1), ("Extra Narrow", -0.5),
    ("ExtraNarrow", -0.5), ("Extra Wide", 0.8), ("Ultra Cond", -0.7), ("Compressed", -0.5), ("Extra Cond", -0.5),
    ("Semi Cond", -0.1), ("Condensed", -0.2), ("ExtraWide", 0.8), ("Extended", 0.2), ("Expanded", 0.2),
    ("Ext Cond", -0.5), ("Narrow", -0.4), ("Compact", -0.4), ("Cond", -0.2), ("Wide", 0.6), ("Thin", -0.7)]
SLANT_WORDS = [
    ("BackSlanted", -ITALIC_SLANT), ("Extra Slant", STEEP_SLANT), ("Back Slant", -ITALIC_SLANT),
    ("ExtraSlant", STEEP_SLANT), ("BackSlant", -ITALIC_SLANT), ("Inclined", ITALIC_SLANT),
    ("Oblique", ITALIC_SLANT), ("Slanted", ITALIC_SLANT), ("Upright", 0.0), ("Cursive", ITALIC_SLANT),
    ("Kursiv", ITALIC_SLANT), ("BookIt", ITALIC_SLANT), ("Italic", ITALIC_SLANT), ("Slant", ITALIC_SLANT),
    ("Ital", ITALIC_SLANT), ("Ita", ITALIC_SLANT)]
ABBREVIATED_WEIGHTS = [("EL", -0.2), ("EB", 0.5), ("SB", 0.3), ("UH", 0.8), ("U", 0.7), ("L", -0.4), ("H", 0.56),
                       ("B", 0.4), ("M", 0.23), ("R", 0.0)]

NAMED_WEIGHTS = {".Keyboard": 0.0, "URWBookman-Light": 0.0, "URWBookman-LightItalic": 0.0, "URWGothic-Demi": 0.24,
                 "URWGothic-Book": -0.1}
NAMED_CLASSES = {"C059-Roman": 1}

# The last weight class that a weight is for, and the weights and widths of PANOSE.
WEIGHT_CLASSES = [(100, -0.8), (200, -0.5), (300, -0.4), (400, 0.0), (500, 0.23), (600, 0.25), (700, 0.4), (800, 0.5),
                  (900, 0.62), (950, 0.75), (999, 0.8)]
PANOSE_WEIGHTS = {2: -0.5, 3: -0.4, 5: -0.23, 6: 0.23, 7: 0.25, 8: 0.4, 9: 0.56, 10: 0.62, 11: 0.8}
WIDTH_CLASSES = dict(enumerate((-0.7, -0.5, -0.2, -0.1, 0.0, 0.1, 0.4, 0.6, 0.8), 1))
PANOSE_WIDTHS = {2: 0.0, 3: 0.0, 4: 0.0, 5: 0.2, 6: -0.2, 7: 0.4, 8: -0.4}
WIDTHS_OF_CLASSES = dict(enumerate((50, 62.5, 75, 87.5, 100, 112.5, 125, 150, 200), 1))


def float32(number):
    return struct.unpack("f", struct.pack("f", number))[0]


def first_word(name, words):
    """The value of the first word that a name contains; None without any."""
    folded = name.casefold()
    return next((value for word, value in words if word.casefold() in folded), None)


class _Traits:
    """What is settled so far; None is open."""

    def __init__(self, font, names, place):
        self.font, self.names, self.place = font, names, place
        self.weight = self.width = self.slant = self.fixed = self.kind = None

    def settle(self, **values):
        for trait, value in values.items():
            if getattr(self, trait) is None:
                setattr(self, trait, value)

    def read_name(self):
        name = self.names.table_postscript_name()
        self.settle(weight=NAMED_WEIGHTS.get(name), kind=NAMED_CLASSES.get(name))

    def read_words(self):
        for name_id in (17, 2, 4, 16, 1):
            name = self.names.name(name_id) or ""
            self.settle(weight=first_word(name, WEIGHT_WORDS), width=first_word(name, WIDTH_WORDS),
                        slant=first_word(name, SLANT_WORDS))

    def read_full_name(self):
        full = (self.names.name(4) or "").casefold()
        mono = full.rfind("mono")
        if mono >= 0 and not full.startswith("monotype", mono):
            self.settle(fixed=True)

    def read_os2(self):
        """The place on the axes stands for what the table says of the default, and for a missing table."""
        os2 = Table(self.font, "OS/2")
        believed = os2.length >= 78
        if believed or "wght" in self.place:
            self.settle(weight=self.weight_of_os2(os2))
        if believed or "wdth" in self.place:
            self.settle(width=self.width_of_os2(os2))
        if believed and os2.u8(35) == 9:
            self.settle(fixed=True)
        if believed and os2.i16(30) != 0:
            self.settle(kind=os2.u8(30))
        self.settle(slant=self.slant_of_place())

    def weight_of_os2(self, os2):
        weight = self.place.get("wght", os2.u16(4))
        weight = weight * 100 if 1 <= weight <= 9 else weight
        if 0 < weight < 1000:
            return next(value for last, value in WEIGHT_CLASSES if weight <= last)
        return PANOSE_WEIGHTS.get(os2.u8(34))

    def width_of_os2(self, os2):
        width = os2.u16(6)
        if "wdth" in self.place:
            width = min(WIDTHS_OF_CLASSES, key=lambda number: abs(WIDTHS_OF_CLASSES[number] - self.place["wdth"]))
        return WIDTH_CLASSES.get(width, PANOSE_WIDTHS.get(os2.u8(35)))

    def slant_of_place(self):
        if self.place.get("slnt"):
            return -self.place["slnt"] / 180
        if self.place.get("ital"):
            return ITALIC_SLANT
        return 0.0 if {"slnt", "ital"} & set(self.place) else None

    def read_hhea(self):
        hhea, hmtx = Table(self.font, "hhea"), Table(self.font, "hmtx")
        if not hhea.present:
            return
        rise, run = hhea.i16(18), hhea.i16(20)
        self.settle(slant=math.atan(rise / run) / 180 if run else 0.0)
        count = hhea.u16(34)
        if count <= 1:
            self.settle(fixed=True)
        elif hmtx.present:
            self.settle(fixed=len({hmtx.u16(4 * number) for number in range(count)} - {0}) <= 1)

    def read_post(self):
        post = Table(self.font, "post")
        if post.present:
            # The angle is read without its sign: an angle to the left of 0 comes out as a large one.
            self.settle(slant=float32(float32(post.u32(4)) / 65536) / 180, fixed=post.u32(12) != 0)

    def read_head(self):
        style = Table(self.font, "head").u16(44)
        self.settle(weight=0.4 if style & 0x1 else None, slant=ITALIC_SLANT if style & 0x2 else None,
                    width=-0.2 if style & 0x60 else None)  # extended narrows too

    def read_abbreviations(self):
        for name in (self.names.name(17), self.names.name(2)):
            words = dict((word.casefold(), value) for word, value in ABBREVIATED_WEIGHTS)
            self.settle(weight=words.get((name or "").casefold()))

    def symbolic(self):
        return ((ITALIC if abs(self.slant or 0) > 0.005 else 0)
                | (BOLD if (self.weight or 0) > 0.239 else 0)
                | (EXPANDED if (self.width or 0) > 0.15 else 0)
                | (CONDENSED if (self.width or 0) < -0.15 else 0)
                | (MONOSPACED if self.fixed else 0)
                | ((self.kind or 0) << 28 & 0xFFFFFFFF))


def traits(font, names, place):
    """The traits of a face: `names` are its Names, `place` an instance's {axis tag: coordinate}, else {}."""
    found = _Traits(font, names, place)
    for step in (found.read_name, found.read_words, found.read_full_name, found.read_os2, found.read_hhea,
                 found.read_post, found.read_head, found.read_abbreviations):
        step()
    slant = float32(found.slant or 0.0)
    return {"symbolic": found.symbolic(), "weight": float32(found.weight or 0.0),
            "width": float32(found.width or 0.0), "slant": 0.0 if abs(slant) < 0.000001 else slant}
