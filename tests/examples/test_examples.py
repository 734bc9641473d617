#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The examples do what they say. Environment: EXAMPLES, the folder of the programs; VELLUM_TOOL.
import os
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tools"))

from vellum_tool import DEADLINE, ToolCase  # noqa: E402: the line above says where it is

PROGRAMS = ("glib_main_loop", "own_loop")


class Examples(ToolCase):
    def run_example(self, program, *arguments):
        return subprocess.run([os.environ["EXAMPLES"] + "/" + program, *map(str, arguments)], timeout=DEADLINE,
                              stdout=subprocess.PIPE, cwd=self.scratch, env=self.environment(), text=True)

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


if __name__ == "__main__":
    unittest.main()
