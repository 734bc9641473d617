# SPDX-License-Identifier: MIT
# Runs the tool as a user would, in a folder and a home of the test's own. Environment: VELLUM_TOOL.
import json
import os
import pathlib
import pty
import select
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "oracle"))

import made_fonts  # noqa: E402: the line above says where it is

TOOL = os.environ["VELLUM_TOOL"]
DEADLINE = 60  # seconds: enough for a slow build of the tool, so what passes it hangs

# Variables of the outside that the tool's run keeps: how a sanitizer reports is not the test's business.
KEPT = ("PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "LD_PRELOAD")

DONE, PROBLEMS, USAGE, REFUSED, BAD_FONT = 0, 1, 2, 4, 5


# Starts a command that may read no file against its mode, not even as root.
BOUND_BY_MODES = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.geteuid() == 0 else ()

# Whether the tool looks after itself while it runs.
IS_SANITIZED = b"__ubsan_handle" in pathlib.Path(TOOL).read_bytes()

# Starts a command that may open one file more, which GLib's main loop takes. Looking for leaks opens files.
WITH_ONE_FILE = ("env", "ASAN_OPTIONS=" + os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0",
                 "prlimit", "--nofile=4")


class ToolCase(unittest.TestCase):
    """A test with a scratch folder, and a home in it that the tool should leave empty."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.scratch = pathlib.Path(folder.name).resolve()
        self.home = self.scratch / "home"
        self.folder = self.scratch / "fonts"
        self.home.mkdir(mode=0o700)
        self.folder.mkdir()

    def font(self, name="plain.ttf", family="Plain", subfamily="Regular", folder=None):
        path = (folder or self.folder) / name
        path.parent.mkdir(parents=True, exist_ok=True)
        made_fonts.write_plain(path, family, subfamily)
        return path

    def document_of(self, verb, *arguments, status=DONE):
        """The JSON document that a verb writes."""
        done = self.run_tool(verb, "--json", *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        return json.loads(done.stdout.decode("utf-8"))

    def environment(self, **more):
        home = {name: str(self.home / name.lower()) for name in
                ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR")}
        kept = {name: os.environ[name] for name in KEPT if name in os.environ}
        return {**kept, **home, "HOME": str(self.home), "LC_ALL": "C.UTF-8", "TERM": "xterm-256color", **more}

    def run_tool(self, *arguments, stdout=subprocess.PIPE, before=(), **environment):
        """The finished run, its output as bytes; `before` is a command that starts the tool."""
        return subprocess.run([*before, TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=stdout,
                              stderr=subprocess.PIPE, timeout=DEADLINE, cwd=self.scratch,
                              env=self.environment(**environment))

    def run_on_terminal(self, *arguments, **environment):
        """(status, everything shown) of a run whose output and errors are a terminal."""
        ours, theirs = pty.openpty()
        process = subprocess.Popen([TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=theirs, stderr=theirs,
                                   cwd=self.scratch, env=self.environment(**environment))
        os.close(theirs)
        try:
            shown = read_all(ours)
            return process.wait(DEADLINE), shown
        finally:
            process.kill()
            process.wait()
            os.close(ours)


def read_all(terminal):
    """What a terminal shows until nobody holds its other end."""
    shown, deadline = b"", time.monotonic() + DEADLINE
    while select.select([terminal], [], [], max(0, deadline - time.monotonic()))[0]:
        try:
            piece = os.read(terminal, 65536)
        except OSError:  # how Linux says that the other end is closed
            return shown
        if not piece:
            return shown
        shown += piece
    raise TimeoutError(f"the tool did not end; shown so far: {shown!r}")
