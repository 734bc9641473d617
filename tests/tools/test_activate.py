#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum activate` as a user meets it, with real services of the test's own: what it finds, where, and what it does
# about it. Environment: VELLUM_TOOL, VELLUM_BEACON.
import json
import os
import pty
import subprocess
import unittest
import zipfile

from test_index import IndexCase
from test_server import NO_SERVER, ServerCase
from vellum_tool import BAD_FONT, BOUND_BY_MODES, DEADLINE, DONE, PROBLEMS, REFUSED, TOOL, USAGE, ToolCase, read_all

FLAT_ODF = """<?xml version="1.0"?><office:document xmlns:office="o" xmlns:style="s" xmlns:svg="v">
<style:font-face style:name="A" svg:font-family="'Alpha'" style:font-family-generic="roman"/>
<style:font-face style:name="B" svg:font-family="&apos;Beta Two&apos;"/></office:document>"""

HTML = """<!doctype html><style>body { font-family: "Alpha", 'Beta Two', sans-serif }
p { FONT-FAMILY : Gamma !important; color: red }</style>
<p style='font-family: "Delta"; margin: 0'>font-family<br><font face="x">"""

SVG = """<svg xmlns="http://www.w3.org/2000/svg"><style>text { font-family: Alpha, serif; }</style>
<text font-family="'Beta Two', monospace" style="fill:red;font-family:Gamma">font-family: none</text></svg>"""

FONT_TABLE = """<w:fonts xmlns:w="w"><w:font w:name="Alpha"><w:family w:val="roman"/></w:font>
<w:font w:name="Beta Two"/></w:fonts>"""

SLIDE = '<p:sld xmlns:p="p" xmlns:a="a"><a:latin typeface="Alpha"/><a:latin typeface="+mn-lt"/></p:sld>'


class Activate(IndexCase, ServerCase):
    def setUp(self):
        super().setUp()
        self.start()

    def say(self, status, *arguments):
        return ServerCase.say(self, status, *arguments)

    def answer(self, answer, *arguments):
        """(status, what is shown) of a run on a terminal at which somebody types an answer."""
        ours, theirs = pty.openpty()
        process = subprocess.Popen([TOOL, *arguments], stdin=theirs, stdout=theirs, stderr=theirs, cwd=self.scratch,
                                   env=self.environment())
        os.close(theirs)
        os.write(ours, answer)
        try:
            shown = read_all(ours)
            return process.wait(DEADLINE), shown.decode()
        finally:
            process.kill()
            process.wait()
            os.close(ours)

    def test_finds_a_font_by_each_of_its_names_and_makes_it_known_for_good(self):
        for number, name in enumerate(("Alpha", "Alpha Bold", "Alpha-Bold")):
            path = self.font("a.ttf", "Alpha", "Bold")
            if number == 0:
                self.start_and_read()
            shown = self.say(DONE, "activate", "--yes", name)
            self.assertEqual(shown, f"{name}  is found:\n  {path}\nactivated  {path}  Alpha Bold\n")
            self.assertIn("Alpha\n", self.say(DONE, "list"))
            self.assertEqual(self.say(DONE, "activate", name), f"{name}  is there already: {path}\n")
            self.say(DONE, "unregister", str(path))

    def test_says_which_fonts_are_nowhere_and_activates_the_others(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        shown = self.say(PROBLEMS, "activate", "--yes", "Nobody", "Alpha", "Of The Machine")
        self.assertIn("Nobody  is nowhere to be found\n", shown)
        self.assertIn("Of The Machine  is there already: ", shown)
        self.assertIn(f"activated  {path}", shown)

    def test_does_nothing_unless_somebody_says_yes(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        done = self.run_tool("activate", "Alpha")
        self.assertEqual(done.returncode, REFUSED)
        self.assertIn(b"nobody is there to be asked; --yes", done.stderr)
        for answer in (b"n\n", b"\n", b"\x04", b"yeah\n"):
            status, shown = self.answer(answer, "activate", "Alpha")
            self.assertEqual(status, REFUSED, shown)
            self.assertIn("Activate 1 file for good? [y/N] ", shown)
            self.assertIn("nothing was activated", shown)
        self.assertNotIn("Alpha", self.say(DONE, "list"))
        status, shown = self.answer(b"y\n", "activate", "Alpha", "--scope", "session")
        self.assertEqual(status, DONE, shown)
        self.assertIn("Activate 1 file for this session? [y/N] ", shown)
        self.assertIn(f"activated  {path}", shown)
        self.assertIn("Alpha", self.say(DONE, "list"))

    def test_shows_what_it_would_do_and_does_nothing(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        self.assertEqual(self.say(DONE, "activate", "--dry-run", "Alpha"), f"Alpha  is found:\n  {path}\n")
        self.assertNotIn("Alpha", self.say(DONE, "list"))

    def test_tells_programs_what_it_found_and_did(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        done = json.loads(self.say(PROBLEMS, "activate", "--json", "--yes", "Alpha", "Nobody"))
        self.assertEqual(done["schema"], {"name": "vellum.activate", "version": 1})
        self.assertEqual(done["fonts"], [
            {"name": "Alpha", "state": "found", "offered": False, "files": [{"path": str(path), "downloaded": False}]},
            {"name": "Nobody", "state": "missing", "offered": False, "files": []}])
        (item,) = done["items"]
        self.assertEqual((item["path"], item["done"], item["faces"]), (str(path), True, ["Alpha"]))

    def test_takes_what_a_program_offers_before_what_lies_about(self):
        self.font("a.ttf", "Alpha")
        offered = self.font("offered.ttf", "Alpha", folder=self.scratch / "offered")
        self.start_and_read()
        provider = self.begin("provider", "run", str(offered.parent))
        self.assertIn("offer", provider.stdout.readline())
        self.assertEqual(self.say(DONE, "activate", "--dry-run", "Alpha"),
                         f"Alpha  is offered by a program:\n  {offered}\n")

    def test_shows_that_a_file_was_downloaded(self):
        path = self.font("a.ttf", "Alpha")
        try:
            os.setxattr(path, "user.xdg.origin.url", b"https://example.org/a.ttf")
        except OSError:
            self.skipTest("files have no attributes here")
        self.start_and_read()
        self.assertIn(f"  {path}  (downloaded)\n", self.say(DONE, "activate", "--dry-run", "Alpha"))

    def test_leaves_alone_what_is_marked(self):
        self.font("a.ttf", "Alpha")
        self.start_and_read()
        (self.folder / ".FountDoNotAutoActivate").touch()
        self.assertEqual(self.say(PROBLEMS, "activate", "--yes", "Alpha"), "Alpha  is nowhere to be found\n")

    def test_says_that_no_index_is_kept(self):
        done = self.run_tool("activate", "--yes", "Alpha")
        self.assertEqual(done.returncode, PROBLEMS)
        self.assertIn(b"no index of font files is kept", done.stderr)

    def test_needs_a_server_for_what_lasts(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        self.say(DONE, "server", "stop")
        done = self.run_tool("activate", "--yes", "Alpha")
        self.assertEqual(done.returncode, NO_SERVER)
        self.assertIn(b"--dry-run shows what would be activated", done.stderr)
        self.assertIn(f"activated  {path}", self.say(DONE, "activate", "--yes", "--scope", "process", "Alpha"))


class Document(ToolCase):
    """Names alone: nothing is found where no index is kept."""

    def names(self, name, contents, status=PROBLEMS):
        path = self.scratch / name
        if isinstance(contents, dict):
            with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
                for part, text in contents.items():
                    archive.writestr(part, text)
        else:
            path.write_bytes(contents if isinstance(contents, bytes) else contents.encode())
        done = self.run_tool("activate", "--dry-run", "--json", "--document", str(path))
        self.assertEqual(done.returncode, status, done.stderr)
        if status != PROBLEMS or not done.stdout:
            return done.stderr.decode()
        return [font["name"] for font in json.loads(done.stdout)["fonts"]]

    def test_of_office_names_its_fonts(self):
        self.assertEqual(self.names("a.odt", {"content.xml": FLAT_ODF, "meta.xml": "<font-family/>"}),
                         ["Alpha", "Beta Two"])
        self.assertEqual(self.names("a.fodt", FLAT_ODF), ["Alpha", "Beta Two"])
        self.assertEqual(self.names("a.docx", {"word/fontTable.xml": FONT_TABLE}), ["Alpha", "Beta Two"])
        self.assertEqual(self.names("a.pptx", {"ppt/slides/slide1.xml": SLIDE}), ["Alpha"])
        self.assertEqual(self.names("a.xlsx", {"xl/styles.xml": '<s><font><name val="Alpha"/></font></s>'}), ["Alpha"])

    def test_of_the_web_names_its_fonts(self):
        self.assertEqual(self.names("a.html", HTML), ["Alpha", "Beta Two", "Gamma", "Delta"])
        self.assertEqual(self.names("a.css", "p{font-family:Alpha,'Beta, Two',serif}"), ["Alpha", "Beta, Two"])
        self.assertEqual(self.names("a.svg", SVG), ["Alpha", "Beta Two", "Gamma"])

    def test_of_text_has_a_name_a_line(self):
        self.assertEqual(self.names("a.txt", "# mine\nAlpha\r\n  Beta Two  # the other\n\nAlpha\n"),
                         ["Alpha", "Beta Two"])

    def test_that_names_no_font_is_said_to(self):
        self.assertIn("names no font", self.names("a.txt", "# nothing\n"))
        self.assertIn("names no font", self.names("a.svg", "<svg/>"))

    def test_that_is_not_understood_is_said_to_be_so(self):
        for name, contents, reason in (
                ("a.pdf", "%PDF-1.7\n", "is a PDF"), ("a.bin", b"\0\1", "is no document"),
                ("b.bin", b"\xff\xfe", "is no document"), ("a.zip", {"readme": "x"}, "no document that is understood"),
                ("a.odt", b"PK\3\4 cut off", "is damaged"), ("b.odt", {"content.xml": "<a>"}, "is damaged")):
            self.assertIn(reason, self.names(name, contents, BAD_FONT), name)

    def test_that_unpacks_to_more_than_a_document_is_refused(self):
        self.assertIn("is damaged", self.names("a.odt", {"content.xml": b" " * (300 << 20)}, BAD_FONT))

    def test_whose_entities_grow_without_end_is_refused(self):
        laughs = "".join(f'<!ENTITY l{i} "{f"&l{i - 1};" * 10}">' for i in range(1, 12))
        bomb = f'<!DOCTYPE a [<!ENTITY l0 "ha">{laughs}]><a font-family="&l11;"/>'
        self.assertIn("is damaged", self.names("a.odt", {"content.xml": bomb}, BAD_FONT))

    def test_that_is_not_there_or_may_not_be_read_is_said_to_be_so(self):
        self.assertIn(b"No such file", self.run_tool("activate", "--document", "absent").stderr)
        self.assertIn(b"is no file", self.run_tool("activate", "--document", str(self.folder)).stderr)
        path = self.scratch / "secret.txt"
        path.write_text("Alpha\n")
        path.chmod(0)
        done = self.run_tool("activate", "--document", str(path), before=BOUND_BY_MODES)
        self.assertEqual(done.returncode, REFUSED, done.stderr)

    def test_or_names_are_wanted_and_not_both(self):
        for arguments in ((), ("",), ("Alpha", "--document", "a.txt"), ("--document", ""), ("--scope", "world", "A")):
            self.assertEqual(self.run_tool("activate", *arguments).returncode, USAGE, arguments)
        self.assertIn(b"Example:", self.run_tool("activate", "--help").stdout)


if __name__ == "__main__":
    unittest.main()
