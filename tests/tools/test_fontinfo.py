#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum fontinfo build` as a user meets it: what is written, under which name, and what is refused. That
# the library reads the files back to the same properties, tests/frame tells.
import pathlib
import subprocess
import unittest

from vellum_tool import (BAD_FONT, BOUND_BY_MODES, DEADLINE, DONE, PROBLEMS, REFUSED, TOOL, USAGE,
                         ToolCase)


class FontInfoCase(ToolCase):
    def setUp(self):
        super().setUp()
        self.output = self.scratch / "made" / "FontInfo"

    def build(self, *arguments, **more):
        return self.run_tool("fontinfo", "build", *map(str, arguments), "-o", str(self.output), **more)

    def written(self):
        return sorted(path.name for path in self.output.iterdir())


class Build(FontInfoCase):
    def test_writes_a_file_a_font_that_is_named_by_name_and_sizes(self):
        paths = [self.font("one.ttf", "One"), self.font("deep/two.ttf", "Two")]
        done = self.build(self.folder)
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        names = sorted(f"{path.name}.{path.stat().st_size:X}_0.fontinfo" for path in paths)
        self.assertEqual(self.written(), names)
        self.assertEqual(sorted(done.stdout.decode().splitlines()), [str(self.output / name) for name in names])

    def test_makes_a_file_again_when_there_is_one(self):
        self.build(self.font())
        before = {path: path.read_bytes() for path in self.output.iterdir()}
        self.assertEqual(self.build(self.folder).returncode, DONE)
        self.assertEqual({path: path.read_bytes() for path in self.output.iterdir()}, before)

    def test_writes_nothing_in_a_dry_run_but_says_what_it_would(self):
        path = self.font()
        done = self.build(path, "--dry-run")
        self.assertEqual((done.returncode, done.stderr), (DONE, b""))
        self.assertIn(f"plain.ttf.{path.stat().st_size:X}_0.fontinfo", done.stdout.decode())
        self.assertFalse(self.output.parent.exists())

    def test_refuses_what_is_no_font_and_goes_on(self):
        self.font("good.ttf")
        (self.folder / "bad.ttf").write_bytes(b"no font")
        done = self.build(self.folder)
        self.assertEqual(done.returncode, PROBLEMS)
        self.assertIn(b"bad.ttf", done.stderr)
        self.assertEqual(len(self.written()), 1)

    def test_of_nothing_but_what_is_no_font_fails(self):
        path = self.folder / "bad.ttf"
        path.write_bytes(b"no font")
        self.assertEqual(self.build(path).returncode, BAD_FONT)

    def test_keeps_the_first_of_two_fonts_that_would_share_a_file(self):
        first, second = self.font("a/same.ttf", "Aaaa"), self.font("b/same.ttf", "Bbbb")
        self.assertEqual(first.stat().st_size, second.stat().st_size)
        done = self.build(first, second)
        self.assertEqual(done.returncode, PROBLEMS)
        self.assertIn(str(second).encode(), done.stderr)
        self.assertIn(b"Aaaa".decode().encode("utf-8"), (self.output / self.written()[0]).read_bytes())

    def test_says_when_it_cannot_write_and_leaves_no_half_file(self):
        path = self.font()
        self.output.mkdir(parents=True)
        self.output.chmod(0o500)
        done = self.build(path, before=BOUND_BY_MODES)
        self.assertEqual((done.returncode, done.stdout), (REFUSED, b""))
        self.assertIn(str(self.output).encode(), done.stderr)
        self.assertIn(b"Permission denied", done.stderr)
        self.assertEqual(self.written(), [])

    def test_goes_on_after_a_file_that_cannot_be_written(self):
        self.font("a.ttf")
        self.font("m" * 248 + ".ttf", "Long")  # the name of its font info would be longer than names may be
        self.font("z.ttf")
        done = self.build(self.folder)
        self.assertEqual(done.returncode, PROBLEMS)
        self.assertIn(b"File name too long", done.stderr)
        self.assertEqual([name[0] for name in self.written()], ["a", "z"])

    def test_says_that_the_folder_cannot_be_made(self):
        self.output = self.font() / "FontInfo"
        done = self.build(self.folder)
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b""))
        self.assertRegex(done.stderr, rb"vellum: .*plain\.ttf/FontInfo: this folder cannot be made")

    def test_gives_the_same_bytes_wherever_the_font_lies(self):
        contents = []
        for folder in ("here", "there"):
            self.build(self.font(f"{folder}/same.ttf"))
            contents.append((self.output / self.written()[0]).read_bytes())
        self.assertEqual(contents[0], contents[1])

    def test_may_be_done_by_several_at_once(self):
        for number in range(20):
            self.font(f"{number}.ttf", f"Font {number}")
        runs = [subprocess.Popen([TOOL, "fontinfo", "build", str(self.folder), "-o", str(self.output)],
                                 env=self.environment(), stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
                for _ in range(4)]
        for run in runs:
            _, said = run.communicate(timeout=DEADLINE)
            self.assertEqual((run.returncode, said), (DONE, b""))
        self.assertEqual(len(self.written()), 20)

    def test_without_a_place_to_write_is_a_usage_error(self):
        done = self.run_tool("fontinfo", "build", str(self.font()))
        self.assertEqual((done.returncode, done.stdout), (USAGE, b""))
        self.assertIn(b"--output", done.stderr)

    def test_has_help_with_an_example(self):
        for arguments in (["fontinfo", "--help"], ["fontinfo", "build", "--help"]):
            done = self.run_tool(*arguments)
            self.assertEqual((done.returncode, done.stderr), (DONE, b""))
            self.assertIn(b"vellum fontinfo build", done.stdout)

    def test_takes_names_of_any_bytes(self):
        name = b"no-\xfftext.ttf".decode("utf-8", "surrogateescape")
        self.font(name)
        self.assertEqual(self.build(self.folder).returncode, DONE)
        self.assertTrue(self.written()[0].startswith(pathlib.Path(name).name))


if __name__ == "__main__":
    unittest.main()
