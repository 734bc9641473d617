#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The oracle must know the right answer and miss no wrong one: its rules are held against names written
# out here, and every field of a right answer is spoiled once. A stand-in for the tool answers.
import copy
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import inspect_oracle
import made_fonts
from fonttools_facts import Prefix, faces_of_file

# The family that each made font's rule gives.
FAMILIES = {
    "plain": "Plain",
    "preferred-names": "Short",
    "preferred-family-alone": "Typographic",
    "preferred-in-german-alone": "Deutsch",
    "mac-first-in-file": "New",
    "unicode-alone": "Unicode",
    "unicode-before-mac": "Mac Wins",
    "unicode-before-german": "Unicode",
    "american-after-british": "Color",
    "british-after-german": "Colour",
    "british-before-mac": "Colour",
    "no-english-german-first": "Schrift",
    "no-english-japanese-first": "書体",
    "mac-french-alone": "Français",
    "mac-japanese-alone": "書体",
    "undecodable-is-passed-over": "Schrift",
}

# A tool that prints the document given as a file and ends with the status given.
STAND_IN = "#!/bin/sh\ncat '{document}'\nexit {status}\n"


class Oracle(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.scratch = pathlib.Path(folder.name).resolve()
        cls.fonts = cls.scratch / "fonts"
        cls.fonts.mkdir()
        made_fonts.write_all(cls.fonts)
        cls.right = [face for path in sorted(cls.fonts.iterdir()) for face in cls.right_faces(path)]

    @staticmethod
    def right_faces(path):
        for facts in faces_of_file(str(path)):
            if isinstance(facts["postscriptName"], Prefix):
                facts["postscriptName"] = str(facts["postscriptName"]) + "Bold"
            yield dict(facts, path=str(path))

    def disagreements(self, faces, status=0):
        document, tool = self.scratch / "document.json", self.scratch / "tool"
        document.write_text(json.dumps({"faces": faces, "refused": []}))
        tool.write_text(STAND_IN.format(document=document, status=status))
        tool.chmod(0o755)
        return inspect_oracle.compare_all(str(tool), [str(self.fonts)])[2]

    def test_the_rules_give_the_names_written_out_here(self):
        for file, family in FAMILIES.items():
            with self.subTest(file=file):
                self.assertEqual(faces_of_file(str(self.fonts / f"{file}.ttf"))[0]["familyName"], family)

    def test_instances_at_the_default_are_left_out_and_the_others_stand_behind_all_faces(self):
        faces = faces_of_file(str(self.fonts / "variable-collection.ttc"))
        self.assertEqual([(f["fullName"], f["instance"]) for f in faces], [
            ("One Axis", False), ("Two Axes", False), ("One Axis Bold", True), ("One Axis Black Narrow", True),
            ("Two Axes Bold", True), ("Two Axes Black Narrow", True), ("Two Axes Regular", True)])
        self.assertEqual(faces[5]["variations"], {"Weight": 900.0, "Width": 62.5})

    def test_table_tags_stand_in_the_order_of_the_directory(self):
        tags = faces_of_file(str(self.fonts / "plain.ttf"))[0]["tableTags"]
        self.assertEqual(tags, sorted(tags))
        self.assertIn("name", tags)

    def test_right_answers_agree(self):
        self.assertEqual(self.disagreements(self.right), [])
        self.assertEqual(self.disagreements(self.right, status=1), [])

    def test_every_spoiled_field_is_found(self):
        spoiled = {"postscriptName": "Else", "familyName": None, "fullName": "Else", "subfamilyName": "Else",
                   "tableTags": ["name"], "instance": None, "variations": {"Weight": 1.0}}
        for path in sorted({face["path"] for face in self.right}):
            expected = faces_of_file(path)
            faces = [face for face in self.right if face["path"] == path]
            self.assertEqual(list(inspect_oracle.compare_file(path, expected, faces)), [])
            for number, face in enumerate(faces):
                for field, value in [*spoiled.items(), ("axes", face["axes"][:-1] or [{}])]:
                    wrong = copy.deepcopy(faces)
                    wrong[number][field] = value
                    found = inspect_oracle.compare_file(path, expected, wrong)
                    self.assertEqual([(d.path, d.field) for d in found], [(path, field)])

    def test_a_missing_face_and_a_face_too_many_are_found(self):
        fewer = self.disagreements(self.right[:-1])
        self.assertEqual({(d.path, d.field) for d in fewer},
                         {(self.right[-1]["path"], "count")})
        more = self.disagreements(self.right + [dict(self.right[0])])
        self.assertEqual([d.path for d in more], [self.right[0]["path"]])

    def test_a_file_that_only_freetype_was_asked_for_is_found(self):
        path = self.right[0]["path"]
        faces = [face for face in self.right if face["path"] != path]
        self.assertIn("count by FreeType", [d.field for d in self.disagreements(faces)])

    def test_a_tool_that_fails_is_no_agreement(self):
        with self.assertRaises(SystemExit):
            self.disagreements(self.right, status=3)

    def test_no_fonts_is_no_agreement(self):
        document = self.scratch / "empty.json"
        document.write_text('{"faces": [], "refused": []}')
        tool = self.scratch / "empty-tool"
        tool.write_text(STAND_IN.format(document=document, status=0))
        tool.chmod(0o755)
        done = subprocess.run([sys.executable, inspect_oracle.__file__, tool], capture_output=True, text=True)
        self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    unittest.main()
