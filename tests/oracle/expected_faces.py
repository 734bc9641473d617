# SPDX-License-Identifier: MIT
# Everything that is expected of the faces of a file, in the fields of `vellum inspect --json`. What does
# not depend on the user's language is worked out once.
import base64
import binascii

import expected_tables
from expected_languages import languages_of_characters, languages_of_os2
from expected_names import Names, unique
from expected_traits import traits
from fonttools_facts import Prefix, fonts_of_file, named_instances

# What no face says of itself: these are the register's to know, or nothing tells them.
ALWAYS_NULL = ("designLanguages", "ignoreScriptAnalysis", "uuid", "instanceName", "enabled", "priority", "fontRef",
               "directory", "scope")


class Any:
    """A value of which only a rule is known, with a value that keeps it."""

    def __init__(self, rule, words, example):
        self.rule, self.words, self.example = rule, words, example

    def __eq__(self, other):
        return self.rule(other)

    def __repr__(self):
        return self.words


def is_bookmark(value):
    """Null, or some bytes in base64."""
    try:
        return value is None or bool(base64.b64decode(value, validate=True))
    except (TypeError, ValueError, binascii.Error):
        return False


def languages(expected):
    """The languages stand in no order, and each once."""
    def same(found):
        if not expected or not found:
            return not expected and found is None
        return sorted(found) == sorted(expected)
    listed = sorted(expected) or None
    return Any(same, f"{listed} in any order", listed and listed[::-1])


def postscript_names(expected):
    """A name constructed for an instance may be the file's own, which then stands there once."""
    if not expected or not isinstance(expected[0], Prefix):
        return expected

    def same(found):
        constructed = isinstance(found, list) and found and str(found[0])
        return constructed and constructed.startswith(expected[0]) and len(constructed) > len(expected[0]) \
            and found == unique([constructed, *expected[1:]])
    return Any(same, f"{expected} with the rest of the first, each once", [expected[0] + "Rest", *expected[1:]])


class Face:
    """What is expected of a face, or of a named instance of it."""

    def __init__(self, font, tags, file_type, instance=None):
        self.names = Names(font, instance)
        place = instance.coordinates if instance is not None else {}
        characters = expected_tables.characters(font)
        self.properties = {
            "typeIdentifier": file_type,
            "format": expected_tables.format_name(file_type, tags),
            "localizedNames": self.names.localized(),
            "traits": traits(font, self.names, place),
            "characterSet": expected_tables.character_set(characters),
            "supportedLanguages": languages(languages_of_characters(characters) | languages_of_os2(font)),
            "stringEncoding": expected_tables.string_encoding(font),
            "flags": self.names.flags(),
            "unicodeRanges": expected_tables.unicode_ranges(characters),
            "bookmark": Any(is_bookmark, "null or some bytes in base64", "Vk0="),
            **dict.fromkeys(ALWAYS_NULL),
        }

    def in_locales(self, locales):
        """The properties that names in the languages of the user and of the system have a part in."""
        lists = {f"names.{kind}": names for kind, names in self.names.lists(locales).items()}
        lists["names.postscriptName"] = postscript_names(lists["names.postscriptName"])
        return {**self.names.preferred(), **lists}


def faces_of(path):
    """The Faces of a file in the order in which they are listed: instances come after all faces."""
    fonts = fonts_of_file(path)
    with open(path, "rb") as file:
        file_type = expected_tables.type_of_file([font for font, _ in fonts], file.read(4) == b"ttcf")
    faces = [Face(font, tags, file_type) for font, tags in fonts]
    return faces + [Face(font, tags, file_type, instance) for font, tags in fonts if "fvar" in font
                    for instance in named_instances(font)]
