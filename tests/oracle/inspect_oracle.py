#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# An independent reader agrees with `vellum inspect --json`: fontTools on the names, table tags, axes
# and instances of every sfnt face that is installed and of the fonts in made_fonts.py; FreeType on
# which files are fonts. inspect_oracle.py VELLUM-TOOL
import ctypes
import json
import os
import pathlib
import subprocess
import sys
import tempfile
from typing import NamedTuple

import made_fonts
from fonttools_facts import Prefix, faces_of_file

FOLDERS = ["/usr/share/fonts", "/usr/share/texmf/fonts"]
SUFFIXES = {".ttf", ".otf", ".ttc", ".otc"}

# What the installed packages hold at least; with less, the oracle would agree about nothing.
FEWEST_FACES = 500
FEWEST_FREETYPE_FILES = 800

# (PostScript name, field) -> why the two may disagree there.
KNOWN_DISAGREEMENTS = {}


class Disagreement(NamedTuple):
    path: str
    face: str
    field: str
    expected: object
    found: object

    def __str__(self):
        return (f"{self.path} ({self.face}): {self.field}\n"
                f"    expected {self.expected!r}\n    vellum   {self.found!r}")


def agree(expected, found):
    if isinstance(expected, Prefix):
        return isinstance(found, str) and found.startswith(expected) and len(found) > len(expected)
    return expected == found


def compare_file(path, expected, found):
    """Every disagreement about the faces of one file."""
    if len(expected) != len(found):
        yield Disagreement(path, "all faces", "count", len(expected), len(found))
        return
    for facts, face in zip(expected, found):
        for field, value in facts.items():
            known = (facts["postscriptName"], field) in KNOWN_DISAGREEMENTS
            if not known and not agree(value, face.get(field)):
                yield Disagreement(path, str(facts["postscriptName"]), field, value, face.get(field))


def compare_with_fonttools(files, found):
    """(faces compared, disagreements) over those files that are sfnt fonts by their suffix."""
    count, disagreements = 0, []
    for path in files:
        if pathlib.Path(path).suffix.lower() in SUFFIXES:
            expected = faces_of_file(path)
            count += len(expected)
            disagreements += compare_file(path, expected, found.get(path, []))
    return count, disagreements


class FreeType:
    """Counts the faces of a file; num_faces is the first field of FT_FaceRec, a long."""

    def __init__(self):
        self.library = ctypes.CDLL("libfreetype.so.6")
        self.handle = ctypes.c_void_p()
        if self.library.FT_Init_FreeType(ctypes.byref(self.handle)):
            raise OSError("FreeType does not start")

    def face_count(self, path):
        """How many faces a file has, 0 when FreeType cannot open it."""
        face = ctypes.c_void_p()
        if self.library.FT_New_Face(self.handle, os.fsencode(path), ctypes.c_long(0), ctypes.byref(face)):
            return 0
        count = ctypes.cast(face, ctypes.POINTER(ctypes.c_long)).contents.value
        self.library.FT_Done_Face(face)
        return count


def compare_with_freetype(files, found):
    """(files that FreeType opens, disagreements): inspect lists at least as many faces of each."""
    freetype = FreeType()
    counts = {path: freetype.face_count(path) for path in files}
    disagreements = [Disagreement(path, "all faces", "count by FreeType", count, len(found.get(path, [])))
                     for path, count in counts.items() if count > len(found.get(path, []))]
    return sum(count > 0 for count in counts.values()), disagreements


def inspect(tool, paths, environment=None):
    """The faces that `vellum inspect` lists, by the file that they are in, in its order."""
    done = subprocess.run([tool, "inspect", "--json", *paths], stdout=subprocess.PIPE, env=environment, timeout=240)
    if done.returncode not in (0, 1):  # 1: it refused some file
        sys.exit(f"vellum inspect ended with {done.returncode}")
    found = {}
    for face in json.loads(done.stdout)["faces"]:
        found.setdefault(os.path.realpath(face["path"]), []).append(face)
    return found


def files_under(folders):
    """Every regular file under the folders, once each, whatever symbolic links lead to it."""
    paths = (os.path.join(folder, file)
             for top in folders for folder, _, files in os.walk(top) for file in files)
    return sorted({os.path.realpath(path) for path in paths if os.path.isfile(path)})


def compare_all(tool, folders):
    """(sfnt faces compared, files that FreeType opens, disagreements) of everything under the folders."""
    found, files = inspect(tool, folders), files_under(folders)
    faces, disagreements = compare_with_fonttools(files, found)
    opened, more = compare_with_freetype(files, found)
    return faces, opened, disagreements + more


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: inspect_oracle.py VELLUM-TOOL")
    with tempfile.TemporaryDirectory() as made:
        made_fonts.write_all(pathlib.Path(made))
        installed = [folder for folder in FOLDERS if os.path.isdir(folder)]
        faces, opened, disagreements = compare_all(sys.argv[1], [*installed, made])
    for disagreement in disagreements:
        print(disagreement)
    print(f"{faces} faces compared with fontTools, {opened} files with FreeType, "
          f"{len(disagreements)} disagreements")
    if faces < FEWEST_FACES or opened < FEWEST_FREETYPE_FILES:
        sys.exit("too few fonts are installed for the comparison to mean anything; ./check names the packages")
    sys.exit(1 if disagreements else 0)


if __name__ == "__main__":
    main()
