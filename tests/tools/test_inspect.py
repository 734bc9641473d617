#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum inspect` as a user meets it: results on standard output and everything else on standard
# error, exit codes, what is refused and how that is said, the JSON document, the terminal.
import json
import os
import pathlib
import re
import socket
import subprocess
import unittest
import urllib.parse

from vellum_tool import BAD_FONT, BOUND_BY_MODES, DEADLINE, DONE, PROBLEMS, REFUSED, TOOL, USAGE, ToolCase

import made_fonts

ESCAPE = b"\x1b"
COLOUR = re.compile(rb"\x1b\[[0-9;]*m")

# A field for each property of the library's list, and what the tool tells besides.
PROPERTIES = ["postscriptName", "familyName", "fullName", "subfamilyName", "versionName", "copyrightName",
              "instanceName", "localizedNames", "traits", "url", "uuid", "bookmark", "characterSet", "axes",
              "variations", "supportedLanguages", "designLanguages", "enabled", "priority", "format",
              "stringEncoding", "ignoreScriptAnalysis", "fontRef", "directory", "scope", "flags", "unicodeRanges"]
FACE_FIELDS = {*PROPERTIES, "path", "typeIdentifier", "instance", "tableTags", "names"}


class InspectCase(ToolCase):
    def variable_font(self, name="variable.ttf"):
        path = self.folder / name
        made_fonts.make_font(*made_fonts.VARIABLE["two-axes"]).save(path)
        return path

    def document(self, *arguments, status=DONE):
        return self.document_of("inspect", *arguments, status=status)


class Help(InspectCase):
    def test_help_explains_and_has_an_example(self):
        for arguments, example in ((["--help"], b"vellum inspect"), (["inspect", "--help"], b"vellum inspect ")):
            with self.subTest(arguments=arguments):
                done = self.run_tool(*arguments)
                self.assertEqual((done.returncode, done.stderr), (DONE, b""))
                self.assertRegex(done.stdout, rb"(?i)example")
                self.assertIn(example, done.stdout)

    def test_help_of_inspect_names_its_options(self):
        self.assertIn(b"--json", self.run_tool("inspect", "--help").stdout)

    def assert_usage_error(self, *arguments, named=b""):
        done = self.run_tool(*arguments)
        self.assertEqual((done.returncode, done.stdout), (USAGE, b""), done.stderr)
        self.assertIn(named, done.stderr)
        self.assertRegex(done.stderr, rb"(?i)usage|--help")

    def test_no_verb_is_a_usage_error(self):
        self.assert_usage_error()

    def test_an_unknown_verb_is_a_usage_error(self):
        self.assert_usage_error("inspekt", str(self.font()), named=b"inspekt")

    def test_inspect_without_a_path_is_a_usage_error(self):
        self.assert_usage_error("inspect")
        self.assert_usage_error("inspect", "--json")

    def test_an_empty_path_is_a_usage_error_of_every_verb(self):
        path = str(self.font())
        for arguments in (("inspect", path, ""), ("coverage", path, ""), ("list", "--in", ""),
                          ("match", "--in", "", "bold"), ("text", "--in", "", "A"),
                          ("fontinfo", "build", "", "-o", "out"), ("fontinfo", "build", path, "-o", "")):
            with self.subTest(arguments=arguments):
                self.assert_usage_error(*arguments, named=b"an empty text is no path")

    def test_a_folder_above_a_link_is_that_of_its_target(self):
        self.font("x.ttf", "Beside the link")
        self.font("x.ttf", "Beside the target", folder=self.folder / "real")
        (self.folder / "real/sub").mkdir()
        (self.folder / "link").symlink_to("real/sub")
        face, = self.document(f"{self.folder}/link/../x.ttf")["faces"]
        self.assertEqual((face["path"], face["familyName"]),
                         (f"{self.folder}/real/x.ttf", "Beside the target"))

    def test_an_unknown_option_is_a_usage_error(self):
        self.assert_usage_error("inspect", "--frobnicate", str(self.font()), named=b"--frobnicate")


class Results(InspectCase):
    def test_a_font_is_shown_with_its_names_and_nothing_is_said_besides(self):
        path = self.font(family="Some Family", subfamily="Bold")
        done = self.run_tool("inspect", str(path))
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        for text in (b"SomeFamily-Bold", b"Some Family", b"Bold"):
            self.assertIn(text, done.stdout)

    def test_a_folder_is_read_to_its_depths(self):
        self.font("top.ttf", "Top")
        self.font("deep.ttf", "Deep", folder=self.folder / "a/b c/d")
        done = self.run_tool("inspect", str(self.folder))
        self.assertEqual(done.returncode, DONE, done.stderr)
        self.assertIn(b"Top-Regular", done.stdout)
        self.assertIn(b"Deep-Regular", done.stdout)

    def test_several_paths_are_all_read(self):
        first, second = self.font("a.ttf", "First"), self.font("b.ttf", "Second")
        names = [face["postscriptName"] for face in self.document(str(second), str(first))["faces"]]
        self.assertEqual(sorted(names), ["First-Regular", "Second-Regular"])

    def test_the_same_question_gets_the_same_answer(self):
        for number in range(20):
            self.font(f"{number}.ttf", f"Font {number}")
        answers = {self.run_tool("inspect", "--json", str(self.folder)).stdout for _ in range(3)}
        self.assertEqual(len(answers), 1)

    def test_a_relative_path_gives_an_absolute_one(self):
        path = self.font()
        face, = self.document(os.path.relpath(path, self.scratch))["faces"]
        self.assertEqual(face["path"], str(path))

    def test_a_folder_that_links_to_itself_ends(self):
        self.font()
        (self.folder / "loop").symlink_to(self.folder)
        done = self.run_tool("inspect", "--json", str(self.folder))
        self.assertIn(b"Plain-Regular", done.stdout)

    def test_inspecting_leaves_nothing_behind(self):
        self.run_tool("inspect", str(self.font()))
        self.assertEqual(list(self.home.rglob("*")), [])

    def test_a_result_that_cannot_be_written_is_no_success(self):
        path = self.font()
        with open("/dev/full", "wb") as full:
            done = self.run_tool("inspect", "--json", str(path), stdout=full)
        self.assertNotEqual(done.returncode, DONE)
        self.assertNotEqual(done.stderr, b"")


class Refusals(InspectCase):
    """What is no font is refused at once, by name, with a reason; it never hangs or crashes the tool."""

    def cut_short(self):
        path = self.font("cut-short.ttf")
        path.write_bytes(path.read_bytes()[:100])
        return path

    def fifo(self):
        path = self.folder / "a-fifo.ttf"
        os.mkfifo(path)
        return path

    def socket(self):
        path = self.folder / "a-socket.ttf"
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(path))
        return path

    def text(self):
        path = self.folder / "text.ttf"
        path.write_text("no font at all\n" * 20)
        return path

    def empty_file(self):
        path = self.folder / "empty.ttf"
        path.touch()
        return path

    def dangling_link(self):
        path = self.folder / "dangling.ttf"
        path.symlink_to("nowhere.ttf")
        return path

    def refused_things(self):
        """(what it is, its path, the exit code when nothing else is named)."""
        return [
            ("a font cut short", self.cut_short(), BAD_FONT),
            ("a FIFO", self.fifo(), BAD_FONT),
            ("a socket", self.socket(), BAD_FONT),
            ("a text", self.text(), BAD_FONT),
            ("an empty file", self.empty_file(), BAD_FONT),
            ("an endless device", pathlib.Path("/dev/zero"), BAD_FONT),
            ("the empty device", pathlib.Path("/dev/null"), BAD_FONT),
            ("a missing path", self.scratch / "missing.ttf", PROBLEMS),
            ("a dangling link", self.dangling_link(), PROBLEMS),
        ]

    def assert_named_with_reason(self, path, errors):
        """Some line names the path and says more than that."""
        lines = [line for line in errors.decode().splitlines() if str(path) in line]
        self.assertTrue(lines, f"{path} is not named in {errors!r}")
        self.assertRegex(lines[0].replace(str(path), ""), r"[a-z]{3}.*[a-z]{3}")

    def test_each_is_refused_alone(self):
        for kind, path, status in self.refused_things():
            with self.subTest(kind):
                done = self.run_tool("inspect", str(path))
                self.assertEqual((done.returncode, done.stdout), (status, b""), done.stderr)
                self.assert_named_with_reason(path, done.stderr)

    def test_each_is_refused_beside_a_font_that_is_shown(self):
        good = self.font("good.ttf", "Good")
        for kind, path, _ in self.refused_things():
            with self.subTest(kind):
                done = self.run_tool("inspect", str(path), str(good))
                self.assertEqual(done.returncode, PROBLEMS, done.stderr)
                self.assertIn(b"Good-Regular", done.stdout)
                self.assert_named_with_reason(path, done.stderr)

    def test_each_stands_in_the_document_with_its_reason(self):
        good = self.font("good.ttf", "Good")
        for kind, path, _ in self.refused_things():
            with self.subTest(kind):
                document = self.document(str(good), str(path), status=PROBLEMS)
                self.assertEqual([face["postscriptName"] for face in document["faces"]], ["Good-Regular"])
                refused, = document["refused"]
                self.assertEqual(set(refused), {"path", "reason"})
                self.assertEqual(refused["path"], str(path))
                self.assertRegex(refused["reason"], "[a-z]{3}")

    def test_an_empty_folder_holds_nothing_and_that_is_said(self):
        done = self.run_tool("inspect", str(self.folder))
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b""), done.stderr)
        self.assertIn(str(self.folder).encode(), done.stderr)

    def test_an_empty_folder_still_gives_a_document(self):
        document = self.document(str(self.folder), status=PROBLEMS)
        self.assertEqual(document["faces"], [])

    def test_a_fifo_in_a_folder_does_not_stop_the_reading(self):
        self.font("good.ttf", "Good")
        self.fifo()
        self.assertIn(b"Good-Regular", self.run_tool("inspect", str(self.folder)).stdout)

    def test_every_cut_of_a_font_is_shown_or_refused(self):
        whole = self.font("whole.ttf").read_bytes()
        for length in range(0, len(whole), max(1, len(whole) // 25)):
            path = self.folder / f"cut-{length}.ttf"
            path.write_bytes(whole[:length])
            done = self.run_tool("inspect", str(path))
            self.assertIn(done.returncode, (DONE, BAD_FONT), (length, done.stderr))
            self.assertEqual(done.returncode == DONE, bool(done.stdout), length)

    def test_a_file_that_may_not_be_read_is_refused(self):
        path = self.font()
        path.chmod(0)
        done = self.run_tool("inspect", str(path), before=BOUND_BY_MODES)
        self.assertEqual((done.returncode, done.stdout), (REFUSED, b""), done.stderr)
        self.assert_named_with_reason(path, done.stderr)


class Json(InspectCase):
    def test_the_document_says_what_it_is(self):
        self.assertEqual(self.document(str(self.font()))["schema"], {"name": "vellum.inspect", "version": 1})

    def test_a_plain_face_has_every_field(self):
        path = self.font(family="Some Family", subfamily="Bold")
        document = self.document(str(path))
        self.assertEqual(set(document), {"schema", "faces", "refused"})
        self.assertEqual(document["refused"], [])
        face, = document["faces"]
        self.assertEqual(set(face), FACE_FIELDS)
        self.assertEqual({field: face[field] for field in
                          ("path", "postscriptName", "familyName", "fullName", "subfamilyName", "typeIdentifier",
                           "instance", "axes", "variations")},
                         {"path": str(path), "postscriptName": "SomeFamily-Bold", "familyName": "Some Family",
                          "fullName": "Some Family Bold", "subfamilyName": "Bold",
                          "typeIdentifier": "public.truetype-ttf-font", "instance": False, "axes": [],
                          "variations": None})
        self.assertIn("glyf", face["tableTags"])

    def test_the_instances_of_a_variable_font_follow_it(self):
        faces = self.document(str(self.variable_font()))["faces"]
        self.assertEqual([face["instance"] for face in faces], [False, True, True, True])
        self.assertEqual(faces[0]["axes"][1], {"tag": "wdth", "name": "Width", "minimum": 62.5, "default": 100.0,
                                               "maximum": 125.25})
        self.assertEqual(faces[2]["variations"], {"Weight": 900.0, "Width": 62.5})
        self.assertEqual(len({face["url"] for face in faces}), 4, "each face has a URL of its own")

    def test_a_url_leads_to_its_file_whatever_its_name(self):
        names = ["plain.ttf", "two words.ttf", "50% #1?.ttf", "Größe.ttf", "new\nline.ttf", 'quote".ttf',
                 b"no-\xfftext.ttf".decode("utf-8", "surrogateescape")]
        for name in names:
            with self.subTest(name=name):
                path = self.font(name)
                face, = self.document(str(path))["faces"]
                url = urllib.parse.urlsplit(face["url"])
                self.assertEqual((url.scheme, url.netloc, url.query), ("file", "", ""))
                self.assertEqual(urllib.parse.unquote_to_bytes(url.path), os.fsencode(path))

    def test_output_is_the_document_alone_even_when_something_is_refused(self):
        missing = self.scratch / "missing.ttf"
        done = self.run_tool("inspect", "--json", str(self.font()), str(missing))
        self.assertEqual(json.loads(done.stdout)["refused"][0]["path"], str(missing))

    def test_a_face_without_names_has_null_for_them(self):
        path = self.folder / "nameless.ttf"
        made_fonts.make_font([]).save(path)
        face, = self.document(str(path))["faces"]
        self.assertEqual((face["postscriptName"], face["familyName"]), (None, None))


    def test_a_face_tells_what_it_covers_and_how_it_looks(self):
        face, = self.document(str(self.font(subfamily="Bold Italic")))["faces"]
        self.assertEqual(face["characterSet"], {"count": 1, "ranges": "41"})
        self.assertEqual(face["traits"], {"symbolic": 3, "weight": 0.4, "width": 0.0, "slant": 0.0694444})
        self.assertEqual(face["unicodeRanges"], [1, 0, 0, 0])
        self.assertEqual(face["localizedNames"]["en"]["subfamilyName"], "Bold Italic")
        self.assertEqual(face["names"]["familyName"], ["Plain"])

    def test_what_only_a_register_knows_is_null(self):
        face, = self.document(str(self.font()))["faces"]
        for field in ("instanceName", "enabled", "priority", "fontRef", "directory", "scope", "uuid"):
            self.assertIsNone(face[field], field)


class Property(InspectCase):
    def lines(self, *arguments):
        done = self.run_tool("inspect", "--property", *arguments)
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        return done.stdout.decode().splitlines()

    def test_is_a_line_a_face(self):
        self.assertEqual(self.lines("familyName", str(self.font())), ["Plain"])
        path = str(self.variable_font())
        self.assertEqual(len(self.lines("postscriptName", path)), 4)

    def test_is_found_by_its_key_too(self):
        self.assertEqual(self.lines("KSFontFamilyAttribute", str(self.font())), ["Plain"])

    def test_is_an_empty_line_where_a_face_has_none(self):
        self.assertEqual(self.lines("copyrightName", str(self.font())), [""])

    def test_of_several_texts_has_blanks_between_them_and_of_parts_is_json(self):
        path = str(self.font(subfamily="Bold"))
        self.assertIn("glyf", self.lines("tableTags", path)[0].split())
        self.assertEqual(self.lines("unicodeRanges", path), ["1 0 0 0"])
        self.assertEqual(json.loads(self.lines("traits", path)[0])["weight"], 0.4)

    def test_is_the_only_field_of_the_document_beside_the_path(self):
        face, = self.document("--property", "flags", str(self.font()))["faces"]
        self.assertEqual(face, {"path": str(self.font()), "flags": 0})

    def test_every_one_can_be_asked_for_alone_and_says_the_same(self):
        path = str(self.variable_font())
        everything = self.document(path)["faces"]
        for field in sorted(FACE_FIELDS):
            with self.subTest(field=field):
                alone = self.document("--property", field, path)["faces"]
                self.assertEqual([face[field] for face in alone], [face[field] for face in everything])

    def test_that_there_is_not_is_a_usage_error_that_names_those_that_there_are(self):
        done = self.run_tool("inspect", "--property", "colour", str(self.font()))
        self.assertEqual((done.returncode, done.stdout), (USAGE, b""))
        self.assertIn(b"'colour'", done.stderr)
        self.assertIn(b"supportedLanguages", done.stderr)


class Terminal(InspectCase):
    def test_a_pipe_gets_no_escape_codes(self):
        path = self.font()
        done = self.run_tool("inspect", str(path), str(self.scratch / "missing.ttf"))
        self.assertNotIn(ESCAPE, done.stdout + done.stderr)

    def test_a_terminal_gets_no_colour_with_no_color_set(self):
        status, shown = self.run_on_terminal("inspect", str(self.font()), NO_COLOR="1")
        self.assertEqual(status, DONE)
        self.assertIn(b"Plain-Regular", shown)
        self.assertIsNone(COLOUR.search(shown))

    def test_a_terminal_gets_the_same_words(self):
        status, shown = self.run_on_terminal("inspect", str(self.font()))
        self.assertEqual(status, DONE)
        self.assertIn(b"Plain", shown)

    def test_names_out_of_a_font_cannot_drive_the_terminal(self):
        path = self.font("evil\x1b[2J.ttf", family="Evil\x1b]0;title\x07\u202etxt\u2066\r\n")
        cut = self.folder / "bad\x1b[31m.ttf"
        cut.write_bytes(b"no font")
        status, shown = self.run_on_terminal("inspect", str(path), str(cut), NO_COLOR="1")
        self.assertEqual(status, PROBLEMS)
        for sequence in (b"\x1b[2J", b"\x1b]0", b"\x07", b"\x1b[31m", "\u202e".encode(), "\u2066".encode()):
            self.assertNotIn(sequence, shown)

    def test_a_reader_that_stops_reading_ends_the_tool_quietly(self):
        for number in range(30):
            self.font(f"{number}.ttf", f"Font {number}")
        done = subprocess.run(["sh", "-c", '"$0" inspect --json "$1" | head -c 1 >/dev/null', TOOL, self.folder],
                              env=self.environment(), stderr=subprocess.PIPE, timeout=DEADLINE)
        self.assertNotIn(b"terminate", done.stderr)
        self.assertNotIn(b"Aborted", done.stderr)


if __name__ == "__main__":
    unittest.main()
