#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# An independent reader agrees with `vellum inspect --json` about every property of a face: fontTools and
# PyICU on every sfnt face that is installed and on the fonts in property_fonts.py and made_fonts.py, under
# several settings of the user's language. properties_oracle.py VELLUM-TOOL
import logging
import os
import pathlib
import sys
import tempfile

try:
    import fontTools  # noqa: F401: whether it is there is what matters
    import icu  # noqa: F401
except ImportError as missing:
    sys.exit(f"{sys.executable} has no module {missing.name}: the comparison of properties needs fontTools and "
             "PyICU (the packages python3-fonttools and python3-icu)")

import made_fonts
import property_fonts
from disagreements import unexcused
from expected_faces import Any, faces_of
from expected_languages import system_language, user_language
from expected_tables import unicode_range_rows
from expected_traits import float32
from fonttools_facts import Prefix
from inspect_oracle import FEWEST_FACES, FOLDERS, SUFFIXES, Disagreement, files_under, inspect

LANGUAGE_SETTINGS = ("LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE")

# Every property is compared once, and those that the user's language has a part in under each setting:
# of the installed faces under these two, of the made ones under more.
SETTINGS = [{"LC_ALL": "C.UTF-8"}, {"LC_ALL": "ja_JP.UTF-8"}]
MORE_SETTINGS = [{"LC_ALL": "de_AT.UTF-8"}, {"LC_ALL": "zh_HK.UTF-8"}, {"LC_ALL": "zh_SG"},
                 {"LC_ALL": "", "LC_MESSAGES": "fr_CA@euro", "LANG": "ja_JP.UTF-8"}, {"LANG": "ja_JP.UTF-8"}, {}]

ABSENT = "(no such key)"


def agree(expected, found):
    """Objects agree in the order of their keys too, numbers in single precision, constructed names by what
    is known of them."""
    if isinstance(expected, Any):
        return expected == found
    if isinstance(expected, Prefix):
        return isinstance(found, str) and found.startswith(expected) and len(found) > len(expected)
    if isinstance(expected, float) and isinstance(found, float):
        return float32(expected) == float32(found)
    if isinstance(expected, list) and isinstance(found, list):
        return len(expected) == len(found) and all(map(agree, expected, found))
    if isinstance(expected, dict) and isinstance(found, dict):
        return agree(list(expected), list(found)) and agree(list(expected.values()), list(found.values()))
    return type(expected) is type(found) and expected == found


def found_value(face, field):
    """The tool's value of a property, or of a list within its names."""
    holder, _, key = field.rpartition(".")
    values = face.get(holder) if holder else face
    return values.get(key, ABSENT) if isinstance(values, dict) else ABSENT


def told(field, expected, found):
    """What to print of two values that differ: of character sets, the ranges that only one of them has."""
    if field != "characterSet" or not isinstance(found, dict) or "count" not in found:
        return expected, found
    ours, theirs = (str(value.get("ranges")).split() for value in (expected, found))
    return tuple(f"{value['count']} characters, with {[piece for piece in own if piece not in set(other)][:8]}"
                 for value, own, other in ((expected, ours, theirs), (found, theirs, ours)))


def compare_face(path, expected, face):
    for field, value in expected.items():
        found = found_value(face, field)
        if not agree(value, found):
            yield Disagreement(path, str(expected["postscriptName"]), field, *told(field, value, found))


def compare_file(path, expected, found):
    """Every disagreement about the faces of one file; `expected` is a list of their properties."""
    if len(expected) != len(found):
        yield Disagreement(path, "all faces", "count", len(expected), len(found))
        return
    for properties, face in zip(expected, found):
        yield from compare_face(path, properties, face)


def environment_of(setting):
    kept = {name: value for name, value in os.environ.items() if name not in LANGUAGE_SETTINGS}
    return {**kept, **setting}


def compare(tool, faces, setting, whole):
    """The disagreements about the faces ({path: Faces}) under one setting of the user's language."""
    found = inspect(tool, list(faces), environment_of(setting))
    locales = [user_language(setting), system_language()]
    for path, expected in faces.items():
        properties = [{**face.in_locales(locales), **(face.properties if whole else {})} for face in expected]
        yield from compare_file(path, properties, found.get(path, []))


def compare_all(tool, installed, made):
    """The disagreements about installed and made faces under every setting."""
    everything = {**installed, **made}
    for number, setting in enumerate(SETTINGS):
        yield from compare(tool, everything, setting, whole=number == 0)
    for setting in MORE_SETTINGS:
        yield from compare(tool, made, setting, whole=False)


def faces_under(folders):
    paths = (path for path in files_under(folders) if pathlib.Path(path).suffix.lower() in SUFFIXES)
    return {path: faces_of(path) for path in paths}


def write_made_fonts(folder):
    property_fonts.write_all(folder)
    (folder / "inspect").mkdir()
    made_fonts.write_all(folder / "inspect")


def check_range_rows():
    """The facts of the table of ranges that the tool and the oracle were both written from."""
    rows = unicode_range_rows()
    ends = rows[:3] == [(0, 0, 0x7F), (1, 0x80, 0xFF), (2, 0x100, 0x17F)] and \
        [row[0] for row in rows[-6:]] == [59, 61, 92, 91, 90, 90]
    if len(rows) != 169 or not ends or (9, 0x500, 0x52F) not in rows:
        sys.exit("fontTools has other rows of Unicode ranges than those that are compared with")


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: properties_oracle.py VELLUM-TOOL")
    logging.getLogger("fontTools").setLevel(logging.CRITICAL)  # it tells of what some fonts are made to have
    check_range_rows()
    with tempfile.TemporaryDirectory() as made:
        made = pathlib.Path(made).resolve()
        write_made_fonts(made)
        installed, own = faces_under(filter(os.path.isdir, FOLDERS)), faces_under([made])
        found = list(compare_all(sys.argv[1], installed, own))
    disagreements, idle = unexcused(found)
    for disagreement in disagreements:
        print(disagreement)
    for excuse in idle:
        print(f"excuses nothing: {excuse}")
    faces = [sum(map(len, some.values())) for some in (installed, own)]
    print(f"{faces[0]} installed faces and {faces[1]} made ones compared, {len(found)} disagreements, "
          f"{len(disagreements)} of them without an excuse")
    if faces[0] < FEWEST_FACES:
        sys.exit("too few fonts are installed for the comparison to mean anything; ./check names the packages")
    sys.exit(1 if disagreements or idle else 0)


if __name__ == "__main__":
    main()
