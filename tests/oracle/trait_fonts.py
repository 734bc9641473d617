# SPDX-License-Identifier: MIT
# Fonts that have their traits from one source each: a word, a value of a table, a place on the axes.
import expected_traits
from font_builders import NO_POSTSCRIPT_NAME, STYLELESS, names, open_font, os2, panose, raw_table, without
from made_fonts import WINDOWS_ENGLISH, WINDOWS_GERMAN, WINDOWS_JAPANESE
from name_fonts import LOCALIZED

WEIGHT_CLASSES = sorted({0, 1, 4, 5, 9, 10, 1000, 0xFFFF, *(last + step for last, _ in expected_traits.WEIGHT_CLASSES
                                                             for step in (0, 1))})
WORDS_OF_IDS = [(17, "Light Narrow Oblique"), (2, "Bold Wide Backslant"), (4, "Black Cond Upright"),
                (16, "Heavy Compact Extra Slant"), (1, "Poster Extended Kursiv")]


def style_font(style, **more):
    return open_font(names(STYLELESS, STYLELESS, style, STYLELESS), **more)


def named_font(postscript):
    return open_font(names(STYLELESS, STYLELESS, "Bold", postscript), os2(weight=700))


def named_fonts():
    named = (*expected_traits.NAMED_WEIGHTS, *expected_traits.NAMED_CLASSES, "C059-Bold", ".keyboard")
    return {f"named-{name}": named_font(name) for name in named}


def words_fonts():
    """A font for every style word; one for each name that words are looked for in, from the first on."""
    words = expected_traits.WEIGHT_WORDS + expected_traits.WIDTH_WORDS + expected_traits.SLANT_WORDS
    fonts = {f"word-{number}": style_font(f"Q{word}") for number, (word, _) in enumerate(words)}
    for start in range(len(WORDS_OF_IDS)):
        records = [(WINDOWS_ENGLISH, name_id, text) for name_id, text in WORDS_OF_IDS[start:]]
        fonts[f"words-from-{WORDS_OF_IDS[start][0]}"] = open_font(records)
    for word, _ in expected_traits.ABBREVIATED_WEIGHTS:
        fonts[f"abbreviated-{word}"] = style_font(word)
        fonts[f"abbreviated-small-{word}"] = style_font(word.lower())
        fonts[f"abbreviated-inside-{word}"] = style_font(f"Z{word}Z")
    fonts["abbreviated-17-before-2"] = open_font(names(STYLELESS, STYLELESS, "EB", more=[(17, "EL")]))
    fonts["abbreviated-2-after-17"] = open_font(names(STYLELESS, STYLELESS, "EB", more=[(17, "Plain")]))
    return fonts


def full_name_font(full, **more):
    return open_font(names(STYLELESS, full, "Plain", STYLELESS), widths=(500, 600, 700), **more)


def os2_fonts():
    """A font for each value that OS/2 settles a trait by, and for lengths at which it is believed or not."""
    fonts = {f"weight-{number}": open_font(os2_table=os2(weight=number)) for number in WEIGHT_CLASSES}
    for number in range(13):
        fonts[f"panose-weight-{number}"] = open_font(os2_table=os2(panose=panose(weight=number)))
        fonts[f"panose-weight-{number}-bold-head"] = open_font(os2_table=os2(panose=panose(weight=number)), mac_style=1)
        fonts[f"panose-weight-{number}-of-1000"] = open_font(os2_table=os2(weight=1000, panose=panose(weight=number)))
        fonts[f"panose-proportion-{number}"] = open_font(os2_table=os2(panose=panose(proportion=number)))
    fonts.update({f"width-{number}": open_font(os2_table=os2(width=number, panose=panose(proportion=7)))
                  for number in range(12)})
    fonts.update({f"class-{number:x}": open_font(os2_table=os2(family_class=number - 0x10000 * (number >> 15)))
                  for number in (0x0001, 0x0102, 0x0801, 0x0C00, 0x0F00, 0x1000, 0x2A05, 0xFF01)})
    everything = dict(weight=700, width=3, family_class=0x0801, panose=panose(8, 9), ranges=(0xFFFFFFFF,) * 4,
                      pages=(0xFFFFFFFF,) * 2)
    for length in (0, 10, 34, 77, 78, 82, 85, 86, 96):
        fonts[f"os2-of-{length}"] = open_font(os2_table=os2(length=length, **everything))
    fonts["os2-version-0"] = open_font(os2_table=os2(version=0, **everything))
    fonts["os2-version-1"] = open_font(os2_table=os2(version=1, length=86, **everything))
    fonts["no-os2"] = without(style_font("Q Semi Condensed"), "OS/2")
    return fonts


def other_table_fonts():
    fonts = {
        "caret-1-0": open_font(slope=(1, 0)), "caret-1000-200": open_font(slope=(1000, 200)),
        "caret-1000--200": open_font(slope=(1000, -200)), "caret-0-1": open_font(slope=(0, 1)),
        "caret--3-2": open_font(slope=(-3, 2)), "caret-1-1": open_font(slope=(1, 1)),
        "caret-of-italic": style_font("Italic", slope=(1, 1)),
        "one-width": open_font(widths=(600, 600, 600)), "widths-0-500-0-500": open_font(widths=(0, 500, 0, 500)),
        "widths-500-0-600": open_font(widths=(500, 0, 600)), "widths-500-600": open_font(widths=(500, 600)),
        "widths-0-0-7": open_font(widths=(0, 0, 7)), "no-widths": open_font(),
        "proportional-of-post": open_font(widths=(500, 0, 600), post=(0, 1)),
        "mono": full_name_font("Zq Mono"), "small-mono": full_name_font("Zqmonospace"),
        "monotype": full_name_font("Zq Monotype"), "mono-monotype": full_name_font("Zq Mono Monotype"),
        "monotype-mono": full_name_font("Monotype Zq Mono"), "large-monotype": full_name_font("ZQ MONOTYPE"),
        "mono-in-the-family": open_font(names("Mono", STYLELESS), widths=(500, 600)),
    }
    fonts["no-widths"]["hmtx"] = raw_table("hmtx", bytes(8))
    fonts["no-widths"]["hhea"].numberOfHMetrics = 2
    fonts["no-widths"].recalcBBoxes = False
    fonts.update({f"mac-style-{bit}": open_font(mac_style=1 << bit) for bit in range(8)})
    fonts["mac-style-extended-in-a-wide-font"] = open_font(os2_table=os2(width=9), mac_style=0x40)
    for angle in (0, 12, -12, 0.5):
        fonts[f"post-angle-{angle}"] = without(open_font(post=(angle, 1)), "hhea", "hmtx")
    return fonts


AXES = [("wght", 1, 400, 1000, 256), ("wdth", 25, 100, 250, 257), ("slnt", -20, 0, 20, 258), ("ital", 0, 0, 1, 259)]
PLACES = {
    "wght": [{"wght": value} for value in (1, 9, 10, 100, 101, 200, 201, 300, 301, 450, 501, 600, 601, 750, 801, 901,
                                           951, 999, 1000)],
    "wdth": [{"wdth": value} for value in (25, 50, 56, 57, 62.5, 75, 80, 87.5, 90, 93, 110, 112.5, 125, 137, 138, 150,
                                           180, 200, 250)],
    "slnt": [{"slnt": value} for value in (-20, -12, -9.5, -0.5, 8, 20)],
    "ital": [{"ital": 1}],
    "all": [{"wght": 700, "wdth": 75, "slnt": -10}, {"wght": 300, "ital": 1}, {"slnt": -10, "ital": 1},
            {"wght": 450, "wdth": 125, "slnt": -10, "ital": 1}, {"wght": 500}]}


def instances_font(places, axes, records, **more):
    default = {axis[0]: axis[2] for axis in axes}
    instances = [(260 + number, NO_POSTSCRIPT_NAME, {**default, **place}) for number, place in enumerate(places)]
    own = [(WINDOWS_ENGLISH, 260 + number, f"Place {number}") for number in range(len(places))]
    return open_font([*records, *own], axes=axes, instances=instances, **more)


def instance_fonts():
    fonts = {}
    for tag, places in PLACES.items():
        axes = [axis for axis in AXES if tag in (axis[0], "all")]
        records = names(STYLELESS, STYLELESS, "Plain", STYLELESS)
        fonts[f"instances-{tag}"] = instances_font(places, axes, records)
        fonts[f"instances-{tag}-of-another-default"] = instances_font(
            places, axes, records, os2_table=os2(weight=700, width=3, family_class=0x0801, panose=panose(8, 9)),
            slope=(5, 1), mac_style=0x23)
        fonts[f"instances-{tag}-with-short-os2"] = instances_font(places, axes, records, os2_table=os2(length=77))
        fonts[f"instances-{tag}-without-os2"] = without(instances_font(places, axes, records), "OS/2")
    localized = [*LOCALIZED, (WINDOWS_JAPANESE, 258, "太字"), (WINDOWS_GERMAN, 258, "Fett"),
                 (WINDOWS_ENGLISH, 258, "Bold Italic"), (WINDOWS_ENGLISH, 259, "Fount-Strong"),
                 (WINDOWS_ENGLISH, 261, "Light")]
    fonts["instances-localized"] = open_font(
        localized, axes=[("wght", 100, 400, 900, 256)],
        instances=[(258, 259, {"wght": 300}), (261, NO_POSTSCRIPT_NAME, {"wght": 300})])
    return fonts
