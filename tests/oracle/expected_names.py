# SPDX-License-Identifier: MIT
# The names of a face: the one that each kind has, all of them in their order, those in other languages,
# and the flags that names set.
import struct

from fontTools.misc.encodingTools import getEncoding

from expected_languages import itself_and_parents, language_of_record
from fonttools_facts import NO_NAME, VARIATION_PREFIX, Prefix, rank

COPYRIGHT, FAMILY, SUBFAMILY, FULL, VERSION, POSTSCRIPT, MANUFACTURER, DESIGNER = 0, 1, 2, 4, 5, 6, 8, 9
PREFERRED_FAMILY, PREFERRED_SUBFAMILY = 16, 17

MOST_RECORDS = 1024
LONGEST_NAME = 4096  # bytes of UTF-8

# Key -> the nameIDs that it is read from, in the order in which they are tried.
LOCALIZED_KINDS = {
    "familyName": (PREFERRED_FAMILY, FAMILY), "subfamilyName": (PREFERRED_SUBFAMILY, SUBFAMILY), "fullName": (FULL,),
    "versionName": (VERSION,), "manufacturerName": (MANUFACTURER,), "designerName": (DESIGNER,),
    "copyrightName": (COPYRIGHT,)}

# What fontTools leaves out: the names of a Unicode platform are UTF-16 whatever their encoding says, those
# in UTF-32 that some fonts have come before the UTF-16 that there should be, and there is Macintosh Thai.
MORE_CODECS = {(3, 10): ["utf_32_be", "utf_16_be"], (1, 21): ["tis_620"]}

# How a PostScript name is read straight from the table; Macintosh records go by their script.
POSTSCRIPT_CODECS = {(2, 0): "ascii", (2, 1): "utf_16_be", (2, 2): "latin_1", (3, 0): "mac_roman",
                     (3, 1): "utf_16_be", (3, 10): "utf_32_be"}

HIDDEN, ENDSTOP, KEYBOARD = 0x40, 0x1040, 0x2040


def decoded(data, *codecs):
    """Text in the first of the encodings that it is text in; None without any, and for no text at all."""
    for codec in codecs:
        try:
            return data.decode(codec) or None
        except UnicodeDecodeError:
            continue
    return None


def codecs_of(platform, encoding, language):
    """The encodings that a record may be in, likeliest first."""
    if platform == 0:
        return ["utf_16_be"]
    known = getEncoding(platform, encoding, language)
    return MORE_CODECS.get((platform, encoding), [known] if known else [])


def unique(names):
    """The names that there are, each once, where it first stands."""
    return list(dict.fromkeys(name for name in names if name is not None))


def trimmed(text, piece):
    """A text without the pieces that it begins and ends with."""
    while piece and text.startswith(piece):
        text = text[len(piece):]
    while piece and text.endswith(piece):
        text = text[:-len(piece)]
    return text


def language_tags(data):
    """The tags that a name table has for languages of its own."""
    version, count, storage = struct.unpack_from(">3H", data)
    if version == 0:
        return []
    place = 6 + 12 * count
    tag_count = struct.unpack_from(">H", data, place)[0]
    places = (struct.unpack_from(">2H", data, place + 2 + 4 * number) for number in range(tag_count))
    return [data[storage + start:storage + start + length].decode("utf_16_be") for length, start in places]


class _Record:
    """A record of a name table, decoded: `text` is None if that cannot be."""

    def __init__(self, record, tags):
        self.name_id, self.place, self.data = record.nameID, (record.platformID, record.platEncID), record.string
        self.language = language_of_record(record, tags)
        own_tag = record.langID >= 0x8000
        self.rank = None if own_tag else rank(record)
        text = decoded(self.data, *codecs_of(*self.place, record.langID))
        self.text = text if text is None or len(text.encode("utf-8")) <= LONGEST_NAME else None


class Names:
    """The names of a face; with an instance of its `fvar` table, those of that instance."""

    def __init__(self, font, instance=None):
        self.has_table = "name" in font
        self.records = []
        if self.has_table:
            tags = language_tags(font.reader["name"])
            self.records = [_Record(record, tags) for record in font["name"].names[:MOST_RECORDS]]
        self.instance = instance

    def _best(self, name_id):
        readable = [record for record in self.records if record.name_id == name_id and record.text is not None]
        english = [record for record in readable if record.rank is not None]
        best = min(english, key=lambda record: record.rank, default=readable[0] if readable else None)
        return best and best.text

    def _file_id(self, name_id):
        """An instance's style stands under a nameID of its own."""
        style = self.instance is not None and name_id in (SUBFAMILY, PREFERRED_SUBFAMILY)
        return self.instance.subfamilyNameID if style else name_id

    def name(self, name_id):
        """The name that the parser gives for a nameID."""
        if self.instance is not None and name_id == FULL:
            return f"{self.family()} {self.name(SUBFAMILY)}"
        if self.instance is not None and name_id == POSTSCRIPT:
            return self._instance_postscript_name()
        return self._best(self._file_id(name_id))

    def _first(self, *name_ids):
        return next((text for text in map(self.name, name_ids) if text is not None), None)

    def _instance_postscript_name(self):
        given = self._best(self.instance.postscriptNameID) if self.instance.postscriptNameID != NO_NAME else None
        if given is not None:
            return given
        prefix = self._best(VARIATION_PREFIX) or self.family()
        return Prefix("".join(c for c in prefix if c.isascii() and c.isalnum()) + "-")

    def _in_language(self, name_id, language):
        if self.instance is not None and name_id == FULL:
            family = self._first_in_language((PREFERRED_FAMILY, FAMILY), language)
            style = self._in_language(SUBFAMILY, language)
            return f"{family} {style}" if family is not None and style is not None else None
        name_id = self._file_id(name_id)
        return next((record.text for record in self.records if record.name_id == name_id
                     and record.language == language and record.text is not None), None)

    def _first_in_language(self, name_ids, language):
        texts = (self._in_language(name_id, language) for name_id in name_ids)
        return next((text for text in texts if text is not None), None)

    def _localized(self, locales, *name_ids):
        """For each locale each of the names, from the locale itself or from its parents."""
        for locale in locales:
            for name_id in name_ids:
                names = (self._in_language(name_id, language) for language in itself_and_parents(locale))
                yield next((name for name in names if name is not None), None)

    def table_postscript_name(self):
        """The first PostScript name of the table that is in an encoding understood there."""
        for record in self.records:
            platform, encoding = record.place
            if record.name_id == POSTSCRIPT and (platform in (0, 1) or record.place in POSTSCRIPT_CODECS):
                codec = POSTSCRIPT_CODECS.get(record.place)
                return decoded(record.data, *([codec] if codec else codecs_of(platform, encoding, None)))
        return None

    def family(self):
        return self._first(PREFERRED_FAMILY, FAMILY)

    def derived_style(self):
        """What the full name says besides the family name; None when nothing."""
        full, family = self.name(FULL), self.family()
        if family is None:
            return full
        if full == family:
            return "Regular"
        if full is None:
            return self.name(POSTSCRIPT)
        return trimmed(trimmed(full, family), "-").strip() or None

    def preferred(self):
        """The one name of each kind."""
        style = self._first(PREFERRED_SUBFAMILY, SUBFAMILY)
        return {"postscriptName": self.name(POSTSCRIPT), "familyName": self.family(), "fullName": self.name(FULL),
                "subfamilyName": self.derived_style() if style is None else style,
                "versionName": self.name(VERSION), "copyrightName": self.name(COPYRIGHT)}

    def lists(self, locales):
        """All names of each kind; `locales` are those of the user and of the system."""
        families, styles = (PREFERRED_FAMILY, FAMILY), (PREFERRED_SUBFAMILY, SUBFAMILY)
        all_styles = unique([*map(self.name, styles), *self._localized(locales, *styles)])
        return {
            "postscriptName": unique([self.name(POSTSCRIPT), self.table_postscript_name()]),
            "familyName": unique([*map(self.name, families), self.family(), *self._localized(locales, *families)]),
            "subfamilyName": all_styles or unique([self.derived_style()]),
            **{key: unique([self.name(name_id), *self._localized(locales, name_id)])
               for key, name_id in (("fullName", FULL), ("versionName", VERSION), ("copyrightName", COPYRIGHT))}}

    def localized(self):
        """The names in each language that the table has names in, in its order; None without a table."""
        if not self.has_table:
            return None
        languages = unique(record.language for record in self.records)
        names = {language: {key: self._first_in_language(name_ids, language)
                            for key, name_ids in LOCALIZED_KINDS.items()} for language in languages}
        found = {}
        for language, kinds in names.items():
            given = {key: name for key, name in kinds.items() if name is not None}
            if given:
                found.setdefault(language or "en", given)
        return found

    def flags(self):
        named = {"Endstop": ENDSTOP, ".Keyboard": KEYBOARD}.get(self.name(POSTSCRIPT))
        if named is not None:
            return named
        hidden = any((name or "").startswith(".") for name in (self.family(), self.name(FULL)))
        return HIDDEN if hidden else 0
