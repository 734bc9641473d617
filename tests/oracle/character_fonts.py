# SPDX-License-Identifier: MIT
# Fonts for what characters and table tags tell: which character map counts, the first and last character of
# every Unicode range, languages covered to the last character but one, the bits of OS/2, the formats.
from expected_languages import CODE_PAGE_LANGUAGES, exemplars
from expected_tables import unicode_range_rows
from font_builders import bits, open_font, os2, raw_table, with_cmap, without
from made_fonts import english, make_font

EXACT_LANGUAGES = ("en", "vi", "el", "hy", "chr", "ja", "zh-Hans", "zh-Hant", "no", "he", "ko", "ff")


def character_fonts():
    fonts = {
        "roman-and-japanese": with_cmap((1, 0, 0, {0x41: "A"}), (1, 1, 6, {0x42: "A"}), (3, 1, 4, {0x43: "A"})),
        "roman-alone": with_cmap((1, 0, 0, {0x41: "A"})),
        "scripts-0-and-25": with_cmap((1, 0, 6, {0x41: "A"}), (1, 25, 6, {0x42: "A"})),
        "scripts-3-and-2": with_cmap((1, 2, 6, {0x41: "A"}), (1, 3, 6, {0x41: "A"}), (3, 1, 4, {0x43: "A"})),
        "script-32": with_cmap((1, 32, 6, {0x41: "A"}), (3, 1, 4, {0x43: "A"})),
        "script-33": with_cmap((1, 33, 6, {0x41: "A"}), (3, 1, 4, {0x43: "A"})),
        "symbol-alone": with_cmap((3, 0, 4, {0xF041: "A", 0xF042: "A"})),
        "symbol-and-roman": with_cmap((1, 0, 0, {0x41: "A"}), (3, 0, 4, {0xF041: "A"})),
        "symbol-and-unicode": with_cmap((0, 3, 4, {0x43: "A"}), (3, 0, 4, {0xF041: "A"})),
        "symbol-and-windows": with_cmap((3, 0, 4, {0xF041: "A"}), (3, 1, 4, {0x43: "A"})),
        "full-before-windows": with_cmap((3, 1, 4, {0x41: "A"}), (3, 10, 12, {0x41: "A", 0x1F600: "A"})),
        "full-of-platform-0": with_cmap((0, 3, 4, {0x41: "A"}), (0, 4, 12, {0x42: "A", 0x10FFFD: "A"}),
                                        (3, 1, 4, {0x43: "A"})),
        "last-resort": with_cmap((0, 6, 13, {0x41: "A", 0x42: "A", 0x20000: "A"}), (3, 1, 4, {0x43: "A"})),
        "windows-before-platform-0": with_cmap((0, 3, 4, {0x41: "A"}), (3, 1, 4, {0x43: "A"})),
        "oldest-unicode": with_cmap((0, 0, 4, {0x41: "A"}), (0, 1, 4, {0x42: "A"})),
        "unmapped": with_cmap((3, 1, 4, {0x41: "A", 0x42: ".notdef", 0x43: "A"})),
        "unmapped-beyond": with_cmap((3, 10, 12, {0x41: "A", 0x10000: ".notdef", 0x10001: "A"})),
        "nothing-mapped": with_cmap((3, 1, 4, {})),
        "surrogates": with_cmap((3, 10, 12, {0x41: "A", 0xD800: "A", 0xDFFF: "A"})),
        "no-cmap": without(make_font(english("Unmapped")), "cmap"),
        "last-character": make_font(english("Last"), characters=(0x41, 0x10FFFD)),
        "byte-encodings": with_cmap((3, 1, 6, {0x41: "A", 0x42: "A"})),
    }
    for edge, place in (("first", 1), ("last", 2)):
        for number, row in enumerate(unicode_range_rows()):
            fonts[f"range-{number}-{edge}"] = make_font(english("Range"), characters=(row[place],))
    for language in EXACT_LANGUAGES:
        needed = sorted(exemplars()[language])
        fonts[f"language-{language}"] = open_font(english("Language"), characters=needed)
        fonts[f"language-{language}-but-one"] = open_font(english("Language"), characters=needed[:-1])
    return fonts


def bit_fonts():
    """A font for each bit of OS/2 that might stand for a language, and those cut or too old to."""
    fonts = {f"code-page-{bit}": open_font(os2_table=os2(pages=bits([bit], 2))) for bit in range(64)}
    fonts.update({f"range-bit-{bit}": open_font(os2_table=os2(ranges=bits([bit], 4))) for bit in range(128)})
    every_page = dict(pages=bits(CODE_PAGE_LANGUAGES, 2), ranges=bits([7], 4))
    fonts["pages-of-85-bytes"] = open_font(os2_table=os2(length=85, **every_page))
    fonts["pages-of-86-bytes"] = open_font(os2_table=os2(length=86, **every_page))
    fonts["pages-of-version-0"] = open_font(os2_table=os2(version=0, **every_page))
    fonts["ranges-of-77-bytes"] = open_font(os2_table=os2(length=77, **every_page))
    return fonts


def tagged(*tags):
    font = make_font(english("Tagged"))
    for tag in tags:
        font[tag] = raw_table(tag, bytes(4))
    return font


def format_fonts():
    return {
        "signed": tagged("DSIG"), "plain-outlines": tagged(), "embedded-bitmaps": tagged("EBDT", "EBLC"),
        "bitmaps-beside-outlines": tagged("bdat", "bloc"),
        "bitmaps-alone": without(tagged("bdat", "bloc"), "glyf", "loca"),
        "windows-bitmaps-alone": without(tagged("EBDT", "EBLC"), "glyf", "loca"),
        "half-of-bitmaps": without(tagged("bdat"), "glyf", "loca"),
    }
