#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# `vellum index` as a user meets it, with a real service of the test's own. Environment: VELLUM_TOOL, VELLUM_BEACON.
import json
import os
import signal
import socket
import subprocess
import threading
import unittest

from vellum_tool import DEADLINE, DONE, PROBLEMS, USAGE, ToolCase

PROGRAM = os.environ["VELLUM_BEACON"]
NO_SERVER = 3


class IndexCase(ToolCase):
    def setUp(self):
        super().setUp()
        (self.home / "xdg_runtime_dir").mkdir(mode=0o700, exist_ok=True)

    def environment(self, **more):
        return super().environment(VELLUM_INDEX_ROOTS=str(self.folder), DBUS_SESSION_BUS_ADDRESS="none:", **more)

    def start_index(self):
        path = self.scratch / "ready"
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as ready:
            ready.bind(str(path))
            ready.settimeout(DEADLINE)
            process = subprocess.Popen([PROGRAM], stdin=subprocess.DEVNULL,
                                       env=self.environment(NOTIFY_SOCKET=str(path)))
            self.addCleanup(process.wait, DEADLINE)
            self.addCleanup(process.terminate)
            ready.recv(64)
        return process

    def start_and_read(self):
        process = self.start_index()
        self.assertEqual(self.run_tool("index", "rebuild").returncode, DONE)
        return process

    def say(self, status, *arguments):
        done = self.run_tool("index", *arguments)
        self.assertEqual(done.returncode, status, done.stderr + done.stdout)
        return done.stdout.decode()


class Index(IndexCase):
    def test_misses_a_service(self):
        for arguments in (["status"], ["search", "Plain"], ["rebuild"]):
            done = self.run_tool("index", *arguments)
            self.assertEqual((done.returncode, done.stdout), (NO_SERVER, b""))
            self.assertIn(b"no index of font files is kept", done.stderr)

    def test_says_what_it_knows(self):
        self.font("a.ttf", "Alpha")
        self.font("deep/b.ttf", "Beta")
        process = self.start_and_read()
        shown = self.say(DONE, "status")
        self.assertIn("2 fonts in 2 files", shown)
        self.assertIn(str(self.folder), shown)
        status = json.loads(self.say(DONE, "status", "--json"))
        self.assertEqual(status["schema"], {"name": "vellum.index.status", "version": 1})
        self.assertEqual((status["files"], status["faces"], status["state"]), (2, 2, "idle"))
        self.assertEqual((status["roots"], status["process"]), ([str(self.folder)], process.pid))

    def test_finds_a_font_by_each_of_its_names_as_it_is_spelled(self):
        path = self.font("a.ttf", "Alpha", "Bold")
        self.font("b.ttf", "Beta", "Bold")
        self.start_and_read()
        for name in ("Alpha", "Alpha Bold", "Alpha-Bold"):
            self.assertEqual(self.say(DONE, "search", name), f"{path}\n")
        for name in ("alpha", "Alp", "Bold", "Alpha\" && \"", "Alpha*"):
            self.assertEqual(self.say(PROBLEMS, "search", name), "")
        self.say(USAGE, "search", "")
        self.say(USAGE, "search")

    def test_finds_what_a_query_asks_for(self):
        path = self.font("a.ttf", "Alpha", "Bold")
        self.font("b.ttf", "Alpha", "Regular")
        self.start_and_read()
        query = 'com_orrery_fount_name_family == "Alpha" && com_orrery_fount_name_style == "Bold"'
        found = json.loads(self.say(DONE, "search", "--json", query))
        self.assertEqual(found["schema"], {"name": "vellum.index.search", "version": 1})
        (file,) = found["files"]
        self.assertEqual((file["path"], file["type"]), (str(path), "public.truetype-ttf-font"))
        self.assertAlmostEqual(file["modified"], path.stat().st_mtime, 3)
        self.assertEqual(json.loads(self.say(PROBLEMS, "search", "--json", query + "x"))["files"], [])

    def test_reads_everything_again_and_waits(self):
        path = self.font("a.ttf", "Alpha")
        self.start_and_read()
        stamp = path.stat()
        self.font("a.ttf", "Omega")  # as long, and as old: nobody sees the change
        os.utime(path, ns=(stamp.st_atime_ns, stamp.st_mtime_ns))
        self.say(DONE, "rebuild")
        self.assertEqual(self.say(DONE, "search", "Omega"), f"{path}\n")
        self.say(PROBLEMS, "search", "Alpha")

    def test_shows_progress_on_a_terminal_when_it_takes_longer_than_half_a_second(self):
        self.font("a.ttf", "Alpha")
        self.start_and_read()
        crawler = json.loads(self.say(DONE, "status", "--json"))["crawler"]
        for run in (self.run_on_terminal, lambda *arguments: (0, self.run_tool(*arguments).stderr)):
            os.kill(crawler, signal.SIGSTOP)
            threading.Timer(0.8, os.kill, (crawler, signal.SIGCONT)).start()
            status, shown = run("index", "rebuild")
            self.assertEqual((status, b"1 of 1 files" in shown), (DONE, run == self.run_on_terminal), shown)

    def test_tells_of_itself(self):
        self.assertIn("Example:", self.say(DONE, "--help"))
        self.say(USAGE, "unknown")


if __name__ == "__main__":
    unittest.main()
