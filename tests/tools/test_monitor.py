#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum monitor` as a user meets it: lines, ends, exit codes.
import json
import unittest

from vellum_tool import DONE, PROBLEMS, USAGE, ToolCase

NO_SERVER, TIME_OUT = 3, 6


class Monitor(ToolCase):
    def monitor(self, *arguments, status=DONE):
        done = self.run_tool("monitor", *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def test_needs_a_server_to_hear_of_others(self):
        self.assertEqual(self.monitor(status=NO_SERVER).stderr,
                         b"vellum: no font server runs; what other programs change is not heard\n")

    def test_shows_what_is_added(self):
        a, b = self.font("a.ttf", "Alpha"), self.font("b.ttf", "Beta")
        done = self.monitor("--in", str(a), "--in", str(b), "--count", "2")
        self.assertEqual(done.stdout.decode(), f"added  file://{a}\nadded  file://{b}\n")

    def test_has_an_object_a_line_for_programs(self):
        path = self.font("a.ttf", "Alpha")
        done = self.monitor("--in", str(path), "--count", "1", "--jsonl")
        self.assertEqual(json.loads(done.stdout), {"change": "added", "url": f"file://{path}"})

    def test_ends_after_so_many_fonts(self):
        for number in range(3):
            self.font(f"{number}.ttf", f"Family {number}")
        self.assertEqual(self.monitor("--in", str(self.folder), "--count", "2").stdout.count(b"\n"), 2)

    def test_ends_when_the_time_is_over(self):
        path = self.font()
        done = self.monitor("--in", str(path), "--count", "5", "--timeout", "0.2", status=TIME_OUT)
        self.assertEqual(done.stdout.decode(), f"added  file://{path}\n")

    def test_tells_of_files_that_are_no_fonts(self):
        self.font("a.ttf", "Alpha")
        (self.folder / "bad.ttf").write_bytes(b"no font")
        done = self.monitor("--in", str(self.folder), "--count", "1", status=PROBLEMS)
        self.assertIn(b"bad.ttf", done.stderr)

    def test_is_told_how_to_be_used(self):
        self.monitor("--timeout", "-1", status=USAGE)
        self.monitor("--count", "many", status=USAGE)
        self.assertIn(b"Example:", self.monitor("--help").stdout)


if __name__ == "__main__":
    unittest.main()
