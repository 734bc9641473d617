#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum match` as a user meets it: the best font, all of them, why, why not, substitutes; exit codes.
import json
import unittest

from vellum_tool import BAD_FONT, DONE, PROBLEMS, USAGE, ToolCase

import made_fonts


class MatchCase(ToolCase):
    def match(self, *arguments, status=DONE):
        """The finished run over the fonts of the test's folder."""
        done = self.run_tool("match", *arguments, "--in", str(self.folder))
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def names(self, *arguments):
        document = self.document_of("match", *arguments, "--all", "--in", str(self.folder))
        return [font["postscriptName"] for font in document["fonts"]]

    def lines(self, *arguments, status=DONE):
        return self.match(*arguments, status=status).stdout.decode().splitlines()


class TheBest(MatchCase):
    def test_is_shown_with_its_file(self):
        path = self.font("a.ttf", "Alpha")
        self.font("b.ttf", "Beta")
        self.assertEqual(self.lines("family=alpha"), [f"Alpha  {path}"])

    def test_is_found_by_a_bare_name_of_any_kind(self):
        self.font("a.ttf", "Alpha", "Bold")
        for name in ("Alpha-Bold", "alpha", "Alpha Bold", "Bold"):
            with self.subTest(name):
                self.assertEqual(self.names(name), ["Alpha-Bold"])

    def test_stands_before_the_others_that_fit(self):
        for family in ("Gamma", "Alpha", "Beta"):
            self.font(family + ".ttf", family)
        self.assertEqual(self.names("style=Regular"), ["Alpha-Regular", "Beta-Regular", "Gamma-Regular"])

    def test_of_nothing_is_an_answer_and_no_other_font(self):
        self.font("a.ttf", "Alpha")
        done = self.match("family=Beta", status=PROBLEMS)
        self.assertEqual(done.stdout, b"")
        self.assertEqual(done.stderr, b"vellum: no font fits family=Beta\n")

    def test_is_the_same_in_every_process(self):
        for number in range(60):
            self.font(f"{number}.ttf", f"Family {number % 7}", f"Style {number % 5}")
        first, second = (self.match("char=A", "--all").stdout for _ in range(2))
        self.assertEqual(len(first.splitlines()), 60)
        self.assertEqual(first, second)

    def test_has_a_document_for_programs(self):
        path = self.font("a.ttf", "Alpha")
        document = self.document_of("match", "Alpha", "--in", str(self.folder))
        self.assertEqual(document, {
            "schema": {"name": "vellum.match", "version": 1}, "request": ["Alpha"], "substitute": False,
            "givenUp": [], "refused": [],
            "fonts": [{"path": str(path), "url": path.as_uri(), "postscriptName": "Alpha-Regular",
                       "familyName": "Alpha", "subfamilyName": "Regular", "fullName": "Alpha"}]})


class Requests(MatchCase):
    def test_of_a_file_or_a_folder_are_for_the_fonts_in_it(self):
        path = self.font("a.ttf", "Alpha")
        self.font("sub/b.ttf", "Beta")
        self.assertEqual(self.names(f"file={path}"), ["Alpha-Regular"])
        self.assertEqual(self.names(f"file={self.folder}/sub"), ["Beta-Regular"])

    def test_of_characters_add_up(self):
        made_fonts.make_font(made_fonts.english("One"), characters=(0x61,)).save(self.folder / "1.ttf")
        made_fonts.make_font(made_fonts.english("Two"), characters=(0x61, 0xE9)).save(self.folder / "2.ttf")
        self.assertEqual(self.names("char=a", "text=\u00e9a"), ["Two-Regular"])
        self.assertEqual(self.names("char=U+0061"), ["One-Regular", "Two-Regular"])

    def test_that_make_no_sense_are_wrong_usage(self):
        for word in ("weight=heavy", "weight=5", "weight=", "weight=nan", "slant=inf", "colour=red", "char=ab", "=x"):
            with self.subTest(word):
                done = self.run_tool("match", word)
                self.assertEqual((done.returncode, done.stdout), (USAGE, b""))
                self.assertIn(word.split("=")[1].encode(), done.stderr)

    def test_that_are_no_text_are_wrong_usage(self):
        for word in (b"family=\xff", b"char=\xff", b"text=a\xff", b"\xff"):
            with self.subTest(word):
                done = self.run_tool("match", word)
                self.assertEqual((done.returncode, done.stdout), (USAGE, b""))

    def test_are_needed(self):
        self.assertEqual(self.run_tool("match").returncode, USAGE)


class Why(MatchCase):
    def test_tells_which_index_had_how_many_and_what_put_them_in_order(self):
        self.font("a.ttf", "Alpha", "Bold")
        self.font("b.ttf", "Alpha", "Light")
        lines = self.lines("family=Alpha", "--explain")
        self.assertEqual(lines[1], "among the fonts of this process:")
        self.assertEqual(lines[2], '  2 fonts with the family name "Alpha"')
        self.assertIn("Alpha Bold", lines[3])
        self.assertIn("Alpha Light", lines[3])

    def test_tells_what_fonts_were_dropped_by(self):
        self.font("a.ttf", "Alpha")
        lines = self.lines("family=Alpha", "bold", "--explain", status=PROBLEMS)
        self.assertEqual(lines[1:], ['  1 font with the family name "Alpha"', "  1 font dropped by the traits"])

    def test_tells_that_all_fonts_were_looked_through(self):
        self.font("a.ttf", "Alpha")
        lines = self.lines("char=U+10FFFD", "--explain", status=PROBLEMS)
        self.assertEqual(lines[1:], ["  no name is asked for: 1 font to look through",
                                     "  1 font dropped by the characters"])


class WhyNot(MatchCase):
    def reason(self, font, *request, status=DONE):
        """What is said of a font behind its name."""
        line = self.lines(*request, "--why-not", font, status=status)[-1]
        return line.split(": ", 1)[1]

    def test_of_the_answer_is_that_it_is_one(self):
        self.font("a.ttf", "Alpha")
        self.assertEqual(self.reason("Alpha", "family=Alpha"), "it is the answer")

    def test_of_another_that_fits_is_what_came_before_it(self):
        self.font("a.ttf", "Alpha")
        path = self.font("b.ttf", "Beta")
        self.assertEqual(self.reason(str(path), "style=Regular"),
                         "it fits, and is number 2: it comes after Alpha by the family name")

    def test_of_another_family_is_its_name(self):
        self.font("a.ttf", "Alpha")
        self.font("b.ttf", "Beta")
        self.assertEqual(self.reason("Beta", "family=Alpha"),
                         'it is not among the fonts with the family name "Alpha": its own is "Beta"')

    def test_of_what_is_dropped_is_what_it_lacks(self):
        made_fonts.make_font(made_fonts.english("One"), characters=(0x61,)).save(self.folder / "1.ttf")
        for word, reason in (("bold", "it is not bold"), ("weight=bold", "its weight is 0, not 0.4"),
                             ("char=\u00e9", "it has no U+E9"), ("lang=ja", 'it does not support "ja"'),
                             ("copyright=x", "it has no copyright notice")):
            with self.subTest(word):
                self.assertEqual(self.reason("One", word, status=PROBLEMS), reason)

    def test_of_what_is_not_there_is_that(self):
        self.font("a.ttf", "Alpha")
        self.assertEqual(self.reason("Beta", "family=Alpha"), "there is no such font here")

    def test_is_in_the_document(self):
        self.font("a.ttf", "Alpha")
        document = self.document_of("match", "Alpha", "--why-not", "Alpha", "--in", str(self.folder))
        self.assertEqual([entry["whyNot"] for entry in document["whyNot"]], ["it is the answer"])


class Substitutes(MatchCase):
    def test_are_marked_and_say_what_they_do_not_fit(self):
        path = self.font("a.ttf", "Alpha")
        self.assertEqual(self.lines("family=Alpha", "bold", "--substitute"),
                         [f"substitute: Alpha  {path}", "  it does not fit: bold"])

    def test_are_marked_for_programs(self):
        self.font("a.ttf", "Alpha")
        document = self.document_of("match", "family=Alpha", "bold", "--substitute", "--in", str(self.folder))
        self.assertEqual((document["substitute"], document["givenUp"]), (True, ["bold"]))

    def test_are_none_when_there_is_a_font_that_fits(self):
        path = self.font("a.ttf", "Alpha")
        self.assertEqual(self.lines("family=Alpha", "--substitute"), [f"Alpha  {path}"])

    def test_give_up_the_look_before_the_name_and_the_name_before_the_characters(self):
        made_fonts.make_font(made_fonts.english("One"), characters=(0x61,)).save(self.folder / "1.ttf")
        document = self.document_of("match", "char=a", "family=Two", "bold", "--substitute",
                                    "--in", str(self.folder))
        self.assertEqual(document["givenUp"], ["bold", "family=Two"])

    def test_of_nothing_at_all_are_none(self):
        (self.folder / "no.ttf").write_bytes(b"this is no font")
        done = self.run_tool("match", "family=Alpha", "--substitute", "--in", str(self.folder / "no.ttf"))
        self.assertEqual((done.returncode, done.stdout), (BAD_FONT, b""))


class Traces(MatchCase):
    def test_of_any_process_go_to_the_file_that_is_named(self):
        self.font("a.ttf", "Alpha")
        trace = self.scratch / "trace.jsonl"
        done = self.run_tool("match", "Alpha", "--in", str(self.folder), VELLUM_TRACE=f"json:{trace}")
        self.assertEqual(done.returncode, DONE)
        lookups = [json.loads(line) for line in trace.read_text().splitlines()]
        self.assertEqual([lookup["question"] for lookup in lookups], ["fontsWithProperties"])
        self.assertEqual([stage["stage"] for stage in lookups[0]["stages"]], ["register", "index", "index"])

    def test_that_have_nowhere_to_go_change_nothing(self):
        path = self.font("a.ttf", "Alpha")
        for place in ("json:/nowhere/trace", "json:", f"json:{self.folder}", "xml:/tmp/x", ""):
            with self.subTest(place):
                done = self.run_tool("match", "Alpha", "--in", str(self.folder), VELLUM_TRACE=place)
                self.assertEqual((done.returncode, done.stdout.decode()), (DONE, f"Alpha  {path}\n"))


if __name__ == "__main__":
    unittest.main()
