#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum coverage` as a user meets it: which languages a font can write, what it lacks, exit codes.
import unittest

from vellum_tool import BAD_FONT, DONE, PROBLEMS, USAGE, ToolCase

import made_fonts

LATIN_LETTERS = range(0x61, 0x7B)


class CoverageCase(ToolCase):
    def covering(self, characters, name="some.ttf"):
        path = self.folder / name
        made_fonts.make_font(made_fonts.english("Some"), characters=tuple(characters)).save(path)
        return str(path)

    def shares(self, *arguments, status=DONE):
        """language -> its entry, of the one face that is asked about."""
        face, = self.document_of("coverage", *arguments, status=status)["faces"]
        return {share["language"]: share for share in face["languages"]}


class OneLanguage(CoverageCase):
    def test_that_a_font_can_write_is_done(self):
        share = self.shares("--lang", "en", self.covering(LATIN_LETTERS))["en"]
        self.assertEqual(share, {"language": "en", "characters": 26, "covered": 26, "missing": ""})

    def test_that_lacks_a_letter_is_a_problem_and_the_letter_is_named(self):
        path = self.covering(c for c in LATIN_LETTERS if c != ord("q"))
        done = self.run_tool("coverage", "--lang", "en", "--missing", path)
        self.assertEqual((done.returncode, done.stderr), (PROBLEMS, b""))
        self.assertIn("25 of 26 characters (96.2 %)", done.stdout.decode())
        self.assertIn("U+0071\u00a0q", done.stdout.decode())
        self.assertEqual(self.shares("--lang", "en", path, status=PROBLEMS)["en"]["missing"], "71")

    def test_is_not_spelled_out_unless_asked(self):
        path = self.covering(c for c in LATIN_LETTERS if c != ord("q"))
        self.assertNotIn(b"U+0071", self.run_tool("coverage", "--lang", "en", path).stdout)

    def test_may_be_spelled_as_the_environment_spells_it(self):
        path = self.covering(LATIN_LETTERS)
        self.assertEqual(self.shares("--lang", "en_US.UTF-8", path)["en_US.UTF-8"]["covered"], 26)

    def test_of_which_nothing_is_known_is_a_usage_error(self):
        done = self.run_tool("coverage", "--lang", "xx", self.covering([0x41]))
        self.assertEqual((done.returncode, done.stdout), (USAGE, b""))
        self.assertIn(b"'xx'", done.stderr)

    def test_of_the_far_planes_shows_its_characters(self):
        shown = self.run_tool("coverage", "--lang", "ff-Adlm", "--missing", self.covering([0x41])).stdout.decode()
        self.assertIn("U+1E922\u00a0\U0001e922", shown)


class AllLanguages(CoverageCase):
    def test_are_in_the_document_each_with_what_is_missing(self):
        shares = self.shares(self.covering(LATIN_LETTERS))
        self.assertEqual(shares["en"]["missing"], "")
        self.assertEqual(shares["ja"]["covered"], 0)
        self.assertIn("e4", shares["de"]["missing"].split())
        self.assertGreater(len(shares), 150)

    def test_that_a_font_can_write_stand_before_those_that_it_nearly_can(self):
        shown = self.run_tool("coverage", self.covering(LATIN_LETTERS)).stdout.decode()
        writes = shown.index("writes")
        self.assertLess(writes, shown.index(" en ", writes))
        self.assertLess(shown.index(" en ", writes), shown.index("\n  de "))
        self.assertNotIn("\n  ja ", shown, "half of it is lacking at least")

    def test_leave_the_exit_code_alone(self):
        self.assertEqual(self.run_tool("coverage", self.covering([0x41])).returncode, DONE)


class Files(CoverageCase):
    def test_each_face_is_shown_by_its_name(self):
        self.covering([0x41], "a.ttf")
        self.covering([0x42], "b.ttf")
        shown = self.run_tool("coverage", str(self.folder)).stdout.decode()
        self.assertEqual(shown.count("Some: 1 characters"), 2)

    def test_what_is_no_font_is_said(self):
        path = self.folder / "bad.ttf"
        path.write_bytes(b"no font")
        done = self.run_tool("coverage", str(path))
        self.assertEqual((done.returncode, done.stdout), (BAD_FONT, b""))
        self.assertIn(b"bad.ttf", done.stderr)

    def test_help_has_an_example(self):
        done = self.run_tool("coverage", "--help")
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        self.assertIn(b"vellum coverage --lang", done.stdout)


if __name__ == "__main__":
    unittest.main()
