#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The verbs about the font server as a user meets them, with a real server of the test's own: `vellum server`,
# `status`, `doctor`, `provider`, and what other verbs do where one runs.
import json
import os
import pathlib
import subprocess
import time
import unittest

from vellum_tool import BAD_FONT, DEADLINE, DONE, PROBLEMS, TOOL, ToolCase

NO_SERVER = 3


def runs(process):
    """Not one that has ended and that nobody has asked about since."""
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False


class ServerCase(ToolCase):
    def setUp(self):
        super().setUp()
        self.machine = self.scratch / "machine"
        self.font(folder=self.machine / "usr/share/fonts", name="m.ttf", family="Of The Machine")
        (self.home / "xdg_runtime_dir").mkdir(mode=0o700)

    def environment(self, **more):
        return super().environment(VELLUM_FONTS_ROOT=str(self.machine), **more)

    def start(self):
        self.say(DONE, "server", "start")
        self.addCleanup(self.run_tool, "server", "stop")

    def say(self, status, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual(done.returncode, status, done.stderr + done.stdout)
        return done.stdout.decode()

    def begin(self, *arguments):
        process = subprocess.Popen([TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                                   cwd=self.scratch, env=self.environment())
        self.addCleanup(process.wait, DEADLINE)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.kill)
        return process


class Server(ServerCase):
    def test_is_started_once_and_stopped(self):
        self.assertIn("no font server runs", self.say(DONE, "server", "stop"))
        self.start()
        self.assertIn("runs already", self.say(DONE, "server", "start"))
        self.assertIn("1 font in 1 family", self.say(DONE, "server", "status"))
        self.assertIn("has ended", self.say(DONE, "server", "stop"))
        self.say(NO_SERVER, "server", "status")

    def test_leaves_nothing_running_and_no_socket_when_it_is_stopped(self):
        self.start()
        process = json.loads(self.say(DONE, "status", "--json"))["server"]["process"]
        self.say(DONE, "server", "stop")
        self.assertFalse(runs(process))
        left = {path.name for path in (self.home / "xdg_runtime_dir/vellum").iterdir() if path.is_socket()}
        self.assertEqual(left, set())

    def test_says_why_it_cannot_start(self):
        done = self.run_tool("server", "start", VL_SERVICE_NAME_SUFFIX="/elsewhere")
        self.assertEqual(done.returncode, PROBLEMS)
        self.assertIn(b"VL_SERVICE_NAME_SUFFIX makes no name", done.stderr)
        self.assertIn(b"the font server did not start", done.stderr)

    def test_holds_what_one_run_registers_for_the_next(self):
        self.start()
        path = self.font("a.ttf", "Alpha")
        self.say(DONE, "register", str(path))
        self.assertEqual(self.say(DONE, "list"), "Alpha\nOf The Machine\n")
        self.say(DONE, "server", "stop")
        self.start()
        self.assertEqual(self.say(DONE, "list"), "Alpha\nOf The Machine\n")
        self.say(DONE, "unregister", str(path))
        self.assertEqual(self.say(DONE, "list"), "Of The Machine\n")

    def test_keeps_what_is_disabled_hidden_when_it_starts_anew(self):
        self.font(folder=self.machine / "usr/share/fonts", name="n.ttf", family="Another")
        self.start()
        self.say(DONE, "disable", str(self.machine / "usr/share/fonts/m.ttf"))
        self.assertEqual(self.say(DONE, "list"), "Another\n")
        self.say(DONE, "server", "stop")
        self.start()
        self.assertEqual(self.say(DONE, "list"), "Another\n")

    def test_is_missed_aloud_and_not_waited_for(self):
        begin = time.monotonic()
        done = self.run_tool("list")
        self.assertLess(time.monotonic() - begin, 5)
        self.assertEqual((done.returncode, done.stdout), (DONE, b"Of The Machine\n"))
        self.assertIn(b"no font server runs; these are the machine's fonts", done.stderr)
        self.assertEqual(self.run_tool("list", "--no-server").stderr, b"")

    def test_is_not_asked_where_it_is_not_wanted(self):
        self.start()
        self.say(DONE, "register", str(self.font("a.ttf", "Alpha")))
        self.assertEqual(self.say(DONE, "--no-server", "list"), "Of The Machine\n")
        self.say(NO_SERVER, "--no-server", "register", str(self.font("b.ttf", "Beta")))

    def test_tells_a_monitor_what_other_programs_change(self):
        self.start()
        path = self.font("a.ttf", "Alpha")
        monitor = self.begin("monitor", "--count", "2", "--jsonl")
        while monitor.poll() is None:  # it says nothing before it hears of something
            self.run_tool("register", str(path))
            self.run_tool("unregister", str(path))
        changes = [json.loads(line) for line in monitor.stdout]
        self.assertEqual({change["change"] for change in changes}, {"added", "removed"})
        self.assertEqual({change["url"] for change in changes}, {f"file://{path}"})

    def test_leaves_the_fonts_of_this_program_alone_to_it(self):
        self.start()
        self.assertEqual(self.say(PROBLEMS, "list", "--scope", "process"), "")
        self.assertEqual(self.say(DONE, "list", "--scope", "user"), "Of The Machine\n")


class Status(ServerCase):
    def test_says_whether_a_server_runs(self):
        self.assertIn("does not run", self.say(DONE, "status"))
        self.start()
        status = json.loads(self.say(DONE, "status", "--json"))
        self.assertEqual(status["schema"], {"name": "vellum.status", "version": 1})
        self.assertTrue(status["server"]["runs"])
        self.assertGreater(status["server"]["process"], 1)
        self.assertEqual((status["fonts"], status["families"], status["providers"]), (1, 1, 0))


class Doctor(ServerCase):
    def findings(self, status):
        return json.loads(self.say(status, "doctor", "--json"))["findings"]

    def problems(self):
        return [finding["what"] for finding in self.findings(PROBLEMS) if finding["grade"] == "problem"]

    def test_finds_nothing_where_all_is_well(self):
        self.start()
        self.assertEqual({finding["grade"] for finding in self.findings(DONE)}, {"good"})

    def test_misses_a_server(self):
        self.assertEqual(len(self.problems()), 1)

    def test_finds_broken_fonts_among_the_users(self):
        self.start()
        broken = self.home / "xdg_data_home/fonts/broken.ttf"
        broken.parent.mkdir(parents=True)
        broken.write_bytes(b"no font")
        (problem,) = self.problems()
        self.assertIn(str(broken), problem)

    def problem_with(self, text):
        return next((problem for problem in self.problems() if text in problem), None)

    def test_accepts_a_folder_for_sockets_that_others_may_only_read(self):
        self.runtime().chmod(0o755)
        self.assertIsNone(self.problem_with(str(self.runtime())))

    def test_finds_a_folder_for_sockets_that_others_may_write_to(self):
        for mode in (0o720, 0o702, 0o777):
            self.runtime().chmod(mode)
            self.assertIsNotNone(self.problem_with(f"{self.runtime()} may be written to by others"), oct(mode))

    def test_finds_a_folder_for_sockets_that_is_reached_by_a_symbolic_link(self):
        self.runtime().rename(self.home / "elsewhere")
        self.runtime().symlink_to(self.home / "elsewhere")
        self.assertIsNotNone(self.problem_with(f"{self.runtime()} is a symbolic link"))

    def test_finds_a_folder_for_sockets_that_is_missing_or_no_folder(self):
        self.runtime().rmdir()
        self.assertIsNotNone(self.problem_with(f"{self.runtime()}: No such file or directory"))
        self.runtime().write_bytes(b"")
        self.assertIsNotNone(self.problem_with(f"{self.runtime()} is no folder"))

    @unittest.skipUnless(os.geteuid() == 0, "only root can give a folder away")
    def test_finds_a_folder_for_sockets_that_belongs_to_somebody_else(self):
        os.chown(self.runtime(), 65534, 65534)
        self.assertIsNotNone(self.problem_with(f"{self.runtime()} belongs to somebody else"))

    def test_finds_sockets_in_a_folder_that_others_may_enter(self):
        folder = self.runtime() / "vellum"
        folder.mkdir(mode=0o700)
        self.assertIsNone(self.problem_with(str(folder)))
        folder.chmod(0o750)
        self.assertIsNotNone(self.problem_with(f"{folder} has another mode than 700"))
        folder.rmdir()
        folder.symlink_to(self.home)
        self.assertIsNotNone(self.problem_with(f"{folder} is a symbolic link"))

    def runtime(self):
        return self.home / "xdg_runtime_dir"

    def test_notes_names_that_several_fonts_have(self):
        self.start()
        for name in ("a.ttf", "b.ttf"):
            self.say(DONE, "register", str(self.font(name, "Same")))
        self.assertTrue(any(finding["grade"] == "note" and "Same-Regular" in finding["what"]
                            for finding in self.findings(DONE)))


class Provider(ServerCase):
    def list(self):
        done = self.run_tool("provider", "list", "--json")
        return [provider["process"] for provider in json.loads(done.stdout)["providers"]]

    def run_provider(self):
        self.font("a.ttf", "Alpha")
        provider = self.begin("provider", "run", str(self.folder))
        self.assertEqual(provider.stdout.readline(), "offering 1 font, until interrupted\n")
        return provider

    def test_needs_a_server(self):
        self.say(NO_SERVER, "provider", "run", str(self.font("a.ttf", "Alpha")))
        self.say(NO_SERVER, "provider", "list")

    def test_needs_fonts(self):
        self.start()
        path = self.folder / "a.ttf"
        path.write_bytes(b"no font")
        self.say(BAD_FONT, "provider", "run", str(path))

    def test_is_listed_while_it_runs(self):
        self.start()
        self.say(PROBLEMS, "provider", "list")
        provider = self.run_provider()
        self.assertEqual(self.list(), [provider.pid])
        provider.kill()
        provider.wait(DEADLINE)
        self.assertEqual(self.list(), [])

    def test_announces_itself_to_a_server_that_has_been_away(self):
        self.start()
        provider = self.run_provider()
        self.say(DONE, "server", "stop")
        self.start()
        deadline = time.monotonic() + DEADLINE
        while self.list() != [provider.pid]:  # it hears of the server by and by
            self.assertLess(time.monotonic(), deadline)


if __name__ == "__main__":
    unittest.main()
