#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum list` as a user meets it: what there is, by request, by any property; exit codes.
import json
import shutil
import subprocess
import unittest

import vellum_tool
from vellum_tool import BAD_FONT, DONE, PROBLEMS, USAGE, ToolCase

import made_fonts


class ListCase(ToolCase):
    def lines(self, *arguments, status=DONE):
        done = self.run_tool("list", *arguments, "--in", str(self.folder))
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout.decode().splitlines()

    def covering(self, family, characters):
        path = self.folder / f"{family}.ttf"
        made_fonts.make_font(made_fonts.english(family), characters=tuple(characters)).save(path)


class Everything(ListCase):
    def test_is_families_unless_another_kind_is_named(self):
        self.font("b.ttf", "Beta")
        self.font("a.ttf", "alpha")
        self.font("a2.ttf", "alpha", "Bold")
        self.assertEqual(self.lines(), ["alpha", "Beta"])
        self.assertEqual(self.lines("families"), ["alpha", "Beta"])

    def test_names_are_sorted_by_their_letters(self):
        self.font("b.ttf", "Beta")
        self.font("a.ttf", "alpha")
        self.assertEqual(self.lines("names"), ["Beta-Regular", "alpha-Regular"])

    def test_files_are_sorted_by_their_paths(self):
        paths = [str(self.font(name, name[0])) for name in ("b.ttf", "a.ttf")]
        self.assertEqual(self.lines("files"), sorted(paths))

    def test_of_no_font_is_an_answer(self):
        done = self.run_tool("list", "--in", str(self.folder))
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b""))
        self.assertIn(b"no font fits", done.stderr)

    def test_has_the_fonts_that_the_program_ships_in_its_bundle(self):
        program = self.scratch / "App/bin/vellum"
        program.parent.mkdir(parents=True)
        shutil.copy(vellum_tool.TOOL, program)
        self.font(folder=self.scratch / "App/Resources/Fonts", family="Shipped")
        self.font(folder=self.scratch / "App/Resources/Other", family="Not Asked For")
        (self.scratch / "App/Info.vlist").write_text(
            '<vlist version="1.0"><dict><key>LDRegisterBundleFonts</key><true/></dict></vlist>')
        machine = self.scratch / "machine"
        machine.mkdir()
        environment = self.environment(VELLUM_FONTS_ROOT=str(machine))
        done = subprocess.run([program, "list"], capture_output=True, env=environment, timeout=vellum_tool.DEADLINE)
        self.assertEqual((done.returncode, done.stdout), (DONE, b"Shipped\n"), done.stderr)

    def test_without_named_files_is_of_the_machines_fonts(self):
        root = self.scratch / "root"
        self.font(folder=root / "usr/share/fonts", family="Of The System")
        self.font(folder=root / "usr/local/share/fonts", family="Of The Machine")
        done = self.run_tool("list", VELLUM_FONTS_ROOT=str(root))
        self.assertEqual((done.returncode, done.stdout), (DONE, b"Of The Machine\nOf The System\n"))

    def test_has_documents_and_lines_for_programs(self):
        self.font(family="Plain")
        document = self.document_of("list", "--in", str(self.folder))
        self.assertEqual(document, {"schema": {"name": "vellum.list", "version": 1},
                                    "families": ["Plain"], "refused": []})
        self.assertEqual([json.loads(line) for line in self.lines("names", "--jsonl")], ["Plain-Regular"])


class Some(ListCase):
    def test_fit_a_request(self):
        self.font("a.ttf", "Alpha")
        self.font("b.ttf", "Beta")
        self.assertEqual(self.lines("names", "family=beta"), ["Beta-Regular"])
        self.assertEqual(self.lines("names", "family=gamma", status=PROBLEMS), [])

    def test_have_a_character(self):
        self.covering("Latin", range(0x61, 0x7B))
        self.covering("Greek", range(0x3B1, 0x3CA))
        self.assertEqual(self.lines("--char", "\u03b1"), ["Greek"])
        self.assertEqual(self.lines("--char", "U+0061"), ["Latin"])
        self.assertEqual(self.lines("--char", "U+10FFFD", status=PROBLEMS), [])

    def test_fit_a_request_without_saying_what_is_listed(self):
        self.font("a.ttf", "Alpha")
        self.font("b.ttf", "Beta", "Bold")
        self.assertEqual(self.lines("style=Bold"), ["Beta"])

    def test_are_for_all_characters_that_are_named(self):
        self.covering("Latin", range(0x61, 0x7B))
        self.covering("Both", (*range(0x61, 0x7B), *range(0x3B1, 0x3CA)))
        self.assertEqual(self.lines("names", "--char", "a", "--char", "U+03B1"), ["Both-Regular"])
        self.assertEqual(self.lines("--lang", "en", "--char", "U+03B1"), ["Both"])

    def test_are_for_a_language(self):
        self.covering("Latin", range(0x61, 0x7B))
        self.covering("Greek", range(0x3B1, 0x3CA))
        self.assertEqual(self.lines("--lang", "en"), ["Latin"])

    def test_show_a_value_of_any_property(self):
        self.font("a.ttf", "Alpha")
        self.font("b.ttf", "Beta", "Bold")
        self.assertEqual(self.lines("--where", "subfamilyName=Bold"), ["Beta"])
        self.assertEqual(self.lines("--where", "subfamilyName=Light", status=PROBLEMS), [])

    def test_have_a_value_in_a_list(self):
        self.covering("Latin", range(0x61, 0x7B))
        self.covering("Greek", range(0x3B1, 0x3CA))
        self.assertEqual(self.lines("--where", "supportedLanguages=en"), ["Latin"])


class Mistakes(ListCase):
    def test_in_a_property_are_wrong_usage(self):
        for condition in ("format", "=x", "nothing=x"):
            with self.subTest(condition):
                done = self.run_tool("list", "--where", condition)
                self.assertEqual((done.returncode, done.stdout), (USAGE, b""))

    def test_in_a_character_are_wrong_usage(self):
        for character in ("", "ab", "U+", "U+D800", "U+110000", "U+12x", "U+-1"):
            with self.subTest(character):
                done = self.run_tool("list", "--char", character)
                self.assertEqual((done.returncode, done.stdout), (USAGE, b""))

    def test_naming_what_is_no_font_is_told(self):
        path = self.folder / "no.ttf"
        path.write_bytes(b"this is no font")
        done = self.run_tool("list", "--in", str(path))
        self.assertEqual((done.returncode, done.stdout), (BAD_FONT, b""))
        self.assertIn(b"no.ttf", done.stderr)

    def test_beside_good_fonts_are_told_and_the_good_ones_listed(self):
        self.font(family="Plain")
        (self.folder / "no.ttf").write_bytes(b"this is no font")
        done = self.run_tool("list", "--in", str(self.folder))
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b"Plain\n"))


if __name__ == "__main__":
    unittest.main()
