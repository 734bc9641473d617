#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum text` as a user meets it: which font draws which part of a text; exit codes.
import unittest

from vellum_tool import BAD_FONT, DONE, PROBLEMS, USAGE, ToolCase

import made_fonts

LATIN = (*range(0x61, 0x7B), 0x20, 0x2E)
GREEK = (*range(0x3B1, 0x3CA), 0x20)


class TextCase(ToolCase):
    def setUp(self):
        super().setUp()
        for family, characters in (("Latin", LATIN), ("Romaic", GREEK)):
            path = self.folder / f"{family}.ttf"
            made_fonts.make_font(made_fonts.english(family), characters=characters).save(path)

    def runs(self, text, *arguments, status=DONE):
        """(text, the family that draws it, or None) of each run."""
        document = self.document_of("text", text, *arguments, "--in", str(self.folder), status=status)
        return [(run["text"], run["font"] and run["font"]["familyName"]) for run in document["runs"]]


class Runs(TextCase):
    def test_change_where_another_font_is_needed(self):
        self.assertEqual(self.runs("abc\u03b1\u03b2x"),
                         [("abc", "Latin"), ("\u03b1\u03b2", "Romaic"), ("x", "Latin")])

    def test_keep_the_blanks_that_their_font_has(self):
        self.assertEqual(self.runs("a \u03b1 \u03b2"), [("a ", "Latin"), ("\u03b1 \u03b2", "Romaic")])

    def test_give_what_their_font_lacks_to_another(self):
        self.assertEqual(self.runs("\u03b1."), [("\u03b1", "Romaic"), (".", "Latin")])

    def test_that_no_font_draws_are_told(self):
        self.assertEqual(self.runs("a\u0416\u0417b", status=PROBLEMS),
                         [("a", "Latin"), ("\u0416\u0417", None), ("b", "Latin")])
        done = self.run_tool("text", "\u0416", "--in", str(self.folder))
        self.assertEqual((done.returncode, done.stderr), (PROBLEMS, b""))
        self.assertIn("no font draws U+0416", done.stdout.decode())

    def test_keep_what_is_not_drawn_at_all(self):
        self.assertEqual(self.runs("a\u200db\n"), [("a\u200db\n", "Latin")])

    def test_count_their_characters(self):
        document = self.document_of("text", "a\u03b1\u03b2", "--in", str(self.folder))
        self.assertEqual([(run["first"], run["characters"]) for run in document["runs"]], [(0, 1), (1, 2)])

    def test_of_no_text_are_none(self):
        self.assertEqual(self.runs(""), [])

    def test_of_what_is_no_text_are_wrong_usage(self):
        done = self.run_tool("text", b"a\xff", "--in", str(self.folder))
        self.assertEqual((done.returncode, done.stdout), (USAGE, b""))

    def test_begin_with_what_can_not_be_seen(self):
        self.assertEqual(self.runs("\ufeff\u03b1"), [("\ufeff\u03b1", "Romaic")])
        self.assertEqual(self.runs("\n"), [("\n", None)])


class ThePreferredFont(TextCase):
    def test_draws_whatever_it_has(self):
        both = self.folder / "Both.ttf"
        made_fonts.make_font(made_fonts.english("Whole"), characters=LATIN + GREEK).save(both)
        self.assertEqual(self.runs("a\u03b1", "--font", "Whole"), [("a\u03b1", "Whole")])

    def test_leaves_the_rest_to_others(self):
        self.assertEqual(self.runs("a\u03b1", "--font", "romaic"), [("a", "Latin"), ("\u03b1", "Romaic")])

    def test_that_there_is_not_is_told(self):
        done = self.run_tool("text", "a", "--font", "Nobody", "--in", str(self.folder))
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b""))
        self.assertIn(b"'Nobody'", done.stderr)


class Files(TextCase):
    def test_that_are_no_fonts_are_told(self):
        path = self.folder / "no.ttf"
        path.write_bytes(b"this is no font")
        done = self.run_tool("text", "a", "--in", str(path))
        self.assertEqual(done.returncode, BAD_FONT)
        self.assertIn(b"no.ttf", done.stderr)


if __name__ == "__main__":
    unittest.main()
