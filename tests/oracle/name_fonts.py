# SPDX-License-Identifier: MIT
# Fonts in whose name tables stands what no font package has: names that hide a face, styles to be derived,
# every encoding and every language, tables with languages of their own, limits and one past them.
import struct

from expected_languages import MAC_LANGUAGES, WINDOWS_LANGUAGES
from font_builders import names, raw_table, without
from made_fonts import (MAC_ENGLISH, MAC_JAPANESE, UNICODE, WINDOWS_BRITISH, WINDOWS_ENGLISH, WINDOWS_GERMAN,
                        WINDOWS_JAPANESE, english, make_font, name_table)

STYLE_BY_NAMES = {  # (full name, family name): the style is what is left
    "space": ("Foo Bold", "Foo"), "dash": ("Foo-Italic", "Foo"), "equal": ("Foo", "Foo"),
    "both-ends": ("Foo Bold Foo", "Foo"), "twice": ("FooFoo Bold", "Foo"), "inside": ("Ex Foo Bold", "Foo"),
    "only-dash": ("Foo-", "Foo"), "space-dash-space": ("Foo - Bold", "Foo"), "dashes": ("Foo--Bold--", "Foo"),
    "no-family": ("Foo Bold", None), "no-full": (None, "Foo"), "another-case": ("FOO Bold", "Foo"),
    "neither": (None, None)}

LOCALIZED = [
    *english("Fount"), (WINDOWS_ENGLISH, 0, "Ours"), (WINDOWS_ENGLISH, 5, "Version 1"), (WINDOWS_ENGLISH, 8, "Maker"),
    (WINDOWS_ENGLISH, 9, "Drawer"), (WINDOWS_ENGLISH, 16, "Founts"),
    (WINDOWS_JAPANESE, 1, "書体"), (WINDOWS_JAPANESE, 2, "標準"), (WINDOWS_JAPANESE, 4, "書体 標準"),
    (WINDOWS_JAPANESE, 5, "版 1"), (WINDOWS_JAPANESE, 0, "著作権"), (WINDOWS_JAPANESE, 17, "標準体"),
    (WINDOWS_GERMAN, 1, "Schrift"), (WINDOWS_GERMAN, 2, "Normal"), (WINDOWS_GERMAN, 4, "Schrift Normal"),
    ((3, 1, 0xC07), 1, "Schriftl"), ((3, 1, 0x404), 1, "字體"), ((3, 1, 0xC04), 2, "標準"),
    ((3, 1, 0x804), 1, "字体")]

PAIRS = [*((0, encoding) for encoding in (0, 1, 2, 3, 4, 6, 10)), *((1, encoding) for encoding in range(33)),
         *((2, encoding) for encoding in range(4)), *((3, encoding) for encoding in range(11)), (4, 0), (240, 3)]
WIDE = {(2, 1), (3, 0), (3, 1), (3, 10)}

SCRIPTS = {0: ("mac_roman", "Café™"), 1: ("x_mac_japanese_ttx", "書体"), 2: ("x_mac_trad_chinese_ttx", "字體"),
           3: ("x_mac_korean_ttx", "글꼴"), 6: ("mac_greek", "Γραφή"), 7: ("mac_cyrillic", "Шрифт"),
           25: ("x_mac_simp_chinese_ttx", "字体"), 29: ("mac_latin2", "Písmo"), 35: ("mac_turkish", "Yazı")}


def pair_font(pair):
    """A font whose names stand in one encoding, and in German should that be unreadable."""
    text = "Pair".encode("utf_16_be" if pair[0] == 0 or pair in WIDE else "ascii")
    place = (*pair, 0x409 if pair[0] == 3 else 0)
    own = [(place, name_id, text) for name_id in (1, 2, 4, 6)]
    return make_font(own + [(WINDOWS_GERMAN, name_id, "Ersatz") for name_id in (1, 2, 4, 6)])


def every_pair():
    """Records in every encoding; what stands first is in none."""
    first = [((4, 0, 0), name_id, b"Custom") for name_id in (1, 2, 4, 6)]
    wide = {pair: f"Pair {pair}".encode("utf_16_be" if pair[0] == 0 or pair in WIDE else "ascii") for pair in PAIRS}
    return first + [((*pair, 0x409 if pair[0] == 3 else 0), name_id, text)
                    for pair, text in wide.items() for name_id in (1, 2, 4, 6)]


def script_font(script, codec, text):
    own = [((1, script, 0), name_id, text.encode(codec)) for name_id in (1, 2, 4, 6)]
    return make_font(own + [(WINDOWS_GERMAN, name_id, "Ersatz") for name_id in (1, 2, 4, 6)])


def tagged_name_table(records, tags):
    """A name table that has languages of its own, numbered from 0x8000."""
    plain = name_table(records).data
    count, storage_start = struct.unpack_from(">2H", plain, 2)
    storage = plain[storage_start:]
    places = b""
    for tag in tags:
        data = tag.encode("utf_16_be")
        places += struct.pack(">2H", len(data), len(storage))
        storage += data
    entries = plain[6:storage_start] + struct.pack(">H", len(tags)) + places
    return raw_table("name", struct.pack(">3H", 1, count, 6 + len(entries)) + entries + storage)


def tagged_font():
    tags = ["fr-CA", "zh-TW", "de_at", "", "ja-JP"]
    font = make_font(english("Tagged"))
    own = [((3, 1, 0x8000 + number), 1, f"Language {number}") for number in range(len(tags) + 1)]
    own.append(((1, 0, 0x8000), 4, "French of Canada"))
    font["name"] = tagged_name_table(english("Tagged") + own, tags)
    return font


def every_language():
    windows = [((3, 1, number), 1, f"Windows {number:x}") for number in sorted(WINDOWS_LANGUAGES)]
    return [*windows, *(((1, 0, number), 4, f"Macintosh {number}") for number in sorted(MAC_LANGUAGES)),
            ((3, 1, 0x7FFF), 1, "Nobody's"), ((1, 0, 0x7FFF), 1, "Nobody's")]


def name_fonts():
    fonts = {
        "hidden-family": make_font(names(".Hidden", "Hidden Face", "Regular", "Hidden")),
        "hidden-full": make_font(names("Shown", ".Shown Face", "Regular", "Shown")),
        "dot-in-postscript-alone": make_font(names("Shown", "Shown", "Regular", ".Shown")),
        "endstop": make_font(names(".End", ".End", "Regular", "Endstop")),
        "keyboard": make_font(names(".Key", ".Key Black", "Bold", ".Keyboard")),
        "endstop-in-another-case": make_font(names("End", "End", "Regular", "EndStop")),
        "endstop-by-full-name": make_font(names("Family", "Endstop", "Regular")),
        "no-postscript-name": make_font(names("Family", "Family Full", "Regular")),
        "family-alone": make_font(names("Family")),
        "typographic-family-alone": make_font(names(None, more=[(16, "Family")])),
        "no-names": make_font([]),
        "no-name-table": without(make_font([]), "name"),
        "localized": make_font(LOCALIZED),
        "localized-reversed": make_font(LOCALIZED[::-1]),
        "mac-and-windows": make_font([*english("Mac", place=MAC_ENGLISH), (MAC_JAPANESE, 1, "書体"),
                                      *english("Windows"), (WINDOWS_JAPANESE, 1, "ウィンドウズ")]),
        "windows-before-mac": make_font(english("Windows") + english("Mac", place=MAC_ENGLISH)),
        "british-and-american": make_font([(WINDOWS_BRITISH, 1, "Colour"), *english("Color")]),
        "unreadable-before-readable": make_font([(MAC_JAPANESE, 1, b"\x81"), (WINDOWS_JAPANESE, 1, "書体"),
                                                 *english("Base")]),
        "platform-0-alone": make_font(english("Unicode", place=UNICODE)),
        "every-language": make_font(every_language()),
        "own-languages": tagged_font(),
        "every-pair": make_font(every_pair()),
        "every-pair-reversed": make_font(every_pair()[::-1]),
        "full-of-records": make_font([*english("Full"), *[(WINDOWS_GERMAN, 300 + n, "x") for n in range(1019)],
                                      (WINDOWS_ENGLISH, 5, "Version 1")]),
        "too-many-records": make_font([*english("Full"), *[(WINDOWS_GERMAN, 300 + n, "x") for n in range(1020)],
                                       (WINDOWS_ENGLISH, 5, "Version 1")]),
        "long-names": make_font([*english("Long"), (WINDOWS_ENGLISH, 0, "x" * 4096), (WINDOWS_ENGLISH, 5, "x" * 4097),
                                 (WINDOWS_ENGLISH, 8, "書" * 1366), (WINDOWS_ENGLISH, 9, "書" * 1365)]),
        "long-name-before-short": make_font([*english("Long"), (WINDOWS_ENGLISH, 5, "x" * 4097),
                                             (WINDOWS_GERMAN, 5, "Version 1")]),
        "empty-names": make_font([*((WINDOWS_ENGLISH, name_id, "") for name_id in (0, 1, 2, 4, 5, 6)),
                                  *((WINDOWS_GERMAN, name_id, "Ersatz") for name_id in (0, 1, 4))]),
        "postscript-names-differ": make_font([((4, 0, 0), 6, b"Custom"), (MAC_ENGLISH, 6, "FirstInTable"),
                                              *english("Best")]),
        "postscript-name-in-utf-32": make_font([((3, 10, 0x409), 6, "Wide".encode("utf_32_be")),
                                                *english("Narrow")]),
    }
    fonts.update({f"style-{kind}": make_font(names(family, full, None, "Foo-PS"))
                  for kind, (full, family) in STYLE_BY_NAMES.items()})
    fonts.update({"pair-{}-{}".format(*pair): pair_font(pair) for pair in PAIRS})
    fonts.update({f"script-{script}": script_font(script, codec, text) for script, (codec, text) in SCRIPTS.items()})
    return fonts
