#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The examples do what they say. Environment: EXAMPLES, the folder of the programs; VELLUM_TOOL.
import os
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tools"))

from vellum_tool import DEADLINE, WITH_ONE_FILE, ToolCase  # noqa: E402: the line above says where it is

PROGRAMS = ("glib_main_loop", "own_loop")


class Examples(ToolCase):
    def run_example(self, program, *arguments, before=()):
        return subprocess.run([*before, os.environ["EXAMPLES"] + "/" + program, *map(str, arguments)],
                              timeout=DEADLINE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              cwd=self.scratch, env=self.environment(), text=True)

    def test_hear_of_their_own_changes_in_their_order(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("b.ttf", "Beta")
        for program in PROGRAMS:
            with self.subTest(program):
                done = self.run_example(program, a, b)
                self.assertEqual(done.returncode, 0)
                self.assertEqual(done.stdout.splitlines(),
                                 ["registered", f"added file://{a}", f"added file://{b}",
                                  f"removed file://{a}", f"removed file://{b}"])

    def test_end_where_there_is_no_font(self):
        for program in PROGRAMS:
            with self.subTest(program):
                self.assertEqual(self.run_example(program, self.folder / "absent.ttf").returncode, 1)

    def test_end_where_not_all_are_fonts(self):
        for program in PROGRAMS:
            with self.subTest(program):
                done = self.run_example(program, self.font(), self.folder / "absent.ttf")
                self.assertEqual((done.returncode, done.stdout), (1, "not all could be registered\n"))

    def test_say_how_they_are_used(self):
        for program in PROGRAMS:
            with self.subTest(program):
                done = self.run_example(program)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertRegex(done.stderr, rf"^usage: .*{program} FONT\.\.\.\n$")

    def test_take_names_that_are_no_text(self):
        path = self.font().rename(os.fsdecode(os.fsencode(self.folder) + b"/caf\xe9.ttf"))
        for program in PROGRAMS:
            with self.subTest(program):
                done = self.run_example(program, path)
                self.assertEqual((done.returncode, done.stdout.splitlines()),
                                 (0, ["registered", f"added file://{self.folder}/caf%E9.ttf",
                                      f"removed file://{self.folder}/caf%E9.ttf"]))

    def test_end_where_there_is_no_descriptor_to_wait_on(self):
        done = self.run_example("own_loop", self.font(), before=WITH_ONE_FILE)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn("no descriptor", done.stderr)


if __name__ == "__main__":
    unittest.main()
