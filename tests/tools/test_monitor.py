#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum monitor` as a user meets it: lines, ends, exit codes.
import json
import os
import pty
import subprocess
import unittest

from vellum_tool import (BAD_FONT, DEADLINE, DONE, IS_SANITIZED, PROBLEMS, TOOL, USAGE, WITH_ONE_FILE,
                         ToolCase)

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

    def test_shows_what_is_there_before_the_time_is_over(self):
        path = self.font()
        for moment in ("0.000000001", "1e-300"):
            with self.subTest(moment):
                done = self.monitor("--in", str(path), "--count", "5", "--timeout", moment, status=TIME_OUT)
                self.assertEqual(done.stdout.decode(), f"added  file://{path}\n")

    def test_ends_without_a_server_when_its_own_fonts_were_shown(self):
        path = self.font()
        for count in ((), ("--count", "2")):
            with self.subTest(count):
                done = self.monitor("--in", str(path), *count, status=NO_SERVER)
                self.assertEqual(done.stdout.decode(), f"added  file://{path}\n")

    def test_ends_without_a_server_when_it_has_no_fonts(self):
        bad = self.folder / "bad.ttf"
        bad.write_bytes(b"no font")
        for more in ((), ("--count", "2"), ("--timeout", "1000")):
            with self.subTest(more):
                self.monitor("--in", "/nonexistent", *more, status=PROBLEMS)
                self.monitor("--in", str(bad), *more, status=BAD_FONT)

    def waiting(self, stdout, timeout="1000"):
        """A run that shows the font of its own, and waits for others."""
        process = subprocess.Popen([TOOL, "monitor", "--in", str(self.font()), "--timeout", timeout],
                                   stdin=subprocess.DEVNULL, stdout=stdout, stderr=subprocess.DEVNULL,
                                   cwd=self.scratch, env=self.environment())
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def test_waits_however_long_the_time_is_and_ends_when_nobody_reads_any_more(self):
        for timeout in ("1000", "1e300"):
            with self.subTest(timeout):
                process = self.waiting(subprocess.PIPE, timeout)
                self.assertIn(b"added", process.stdout.readline())
                process.stdout.close()
                self.assertEqual(process.wait(DEADLINE), DONE)

    def test_ends_when_its_terminal_is_gone(self):
        ours, theirs = pty.openpty()
        process = self.waiting(theirs)
        os.close(theirs)
        self.assertIn(b"added", os.read(ours, 1000))
        os.close(ours)
        self.assertEqual(process.wait(DEADLINE), DONE)

    @unittest.skipIf(IS_SANITIZED, "the sanitizer itself needs files to look at objects")
    def test_says_when_it_cannot_hear(self):
        done = self.run_tool("monitor", "--in", str(self.font()), before=WITH_ONE_FILE)
        self.assertEqual((done.returncode, done.stdout), (PROBLEMS, b""))
        self.assertIn(b"changes cannot be heard", done.stderr)

    def test_tells_of_files_that_are_no_fonts(self):
        self.font("a.ttf", "Alpha")
        (self.folder / "bad.ttf").write_bytes(b"no font")
        done = self.monitor("--in", str(self.folder), "--count", "1", status=PROBLEMS)
        self.assertIn(b"bad.ttf", done.stderr)

    def test_is_told_how_to_be_used(self):
        for timeout in ("-1", "0", "nan", "inf", "soon", "1s", ""):
            with self.subTest(timeout=timeout):
                self.assertIn(b"no number of seconds", self.monitor("--timeout", timeout, status=USAGE).stderr)
        for count in ("-1", "0", "many", "1.5", "99999999999999999999", ""):
            with self.subTest(count=count):
                self.assertIn(b"no whole number", self.monitor("--count", count, status=USAGE).stderr)
        self.assertIn(b"no path", self.monitor("--in", "", status=USAGE).stderr)
        self.assertIn(b"Example:", self.monitor("--help").stdout)


if __name__ == "__main__":
    unittest.main()
