# SPDX-License-Identifier: MIT
# Clients of a server that is slow to start, and of one that says nothing at all.
# Environment: VELLUM_TOOL, VELLUM_LIBRARY.
import os
import re
import socket
import struct
import subprocess
import sys
import threading
import time
import unittest

from false_server import RENDEZVOUS, FalseServer, reply_to
from running_server import FONTS, HUB, IS_SANITIZED
from wire import flat

TOOL = os.environ["VELLUM_TOOL"]
IN_TIME = 30 if IS_SANITIZED else 8  # seconds
LONG_START = 9  # seconds: longer than a program waits for a server that says nothing
ASK_AGAIN = 14  # the code of a server that has not read all fonts yet
LIBRARY = os.environ["VELLUM_LIBRARY"]
LISTS = ("import ctypes, os, time; library = ctypes.CDLL(os.environ['VELLUM_LIBRARY']); "
         "begin = time.monotonic(); library.VLCopyAvailableFontURLs(2); print(time.monotonic() - begin)")


def loading_the_library(environment):
    """The environment for an interpreter that loads the library: a sanitizer's runtime has to be there before."""
    environment = {**environment, "VELLUM_LIBRARY": LIBRARY}
    if IS_SANITIZED:
        needed = subprocess.run(["ldd", LIBRARY], capture_output=True, check=True, text=True).stdout
        environment["LD_PRELOAD"] = " ".join(re.findall(r"=> (\S*/lib(?:asan|ubsan)\S*)", needed))
        environment["ASAN_OPTIONS"] = "detect_leaks=0"  # the interpreter keeps what it has
    return environment


class Silence(unittest.TestCase):
    """What a program pays once, in seconds, until it lists fonts without the server."""

    def seconds_of_a_program(self, environment):
        done = subprocess.run([sys.executable, "-c", LISTS], env=loading_the_library(environment),
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=60, text=True)
        self.assertEqual(done.returncode, 0, done.stderr[-2000:])
        return float(done.stdout)

    def test_of_servers_that_reply_nothing_costs_a_program_little(self):
        with FalseServer(lambda connection, identity: None) as server:
            self.assertLess(self.seconds_of_a_program(server.environment), IN_TIME)

    def test_of_servers_that_take_nobody_in_costs_a_program_little(self):
        with FalseServer(lambda connection, identity: None) as server:
            full = [full_backlog(server, service) for service in (FONTS, HUB)]
            self.assertLess(self.seconds_of_a_program(server.environment), IN_TIME)
            for ends in full:
                for end in ends:
                    end.close()

    def test_that_is_a_full_backlog_does_not_keep_the_tool_for_ever(self):
        with FalseServer(lambda connection, identity: None) as server:
            ends = full_backlog(server, FONTS)
            done = subprocess.run([TOOL, "list"], env=server.environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=IN_TIME)
            self.assertGreaterEqual(done.returncode, 0)
            for end in ends:
                end.close()


def full_backlog(server, service):
    """A listener in place of the server's, and who fills it up: nobody else fits in."""
    path = f"{server.environment['XDG_RUNTIME_DIR']}/vellum/{service}"
    os.unlink(path)
    deaf, first = (socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) for _ in range(2))
    deaf.bind(path)
    deaf.listen(0)
    first.connect(path)
    return deaf, first


class Start(unittest.TestCase):
    def test_that_takes_long_is_waited_for_as_long_as_the_server_says_so(self):
        ready = time.monotonic() + LONG_START

        def behave(connection, identity):
            if (left := ready - time.monotonic()) > 0:
                self.begun.wait(min(left, 1))
                connection.send(reply_to(identity, rest=struct.pack("<I", ASK_AGAIN)))
            else:
                connection.send(reply_to(identity, flat({} if identity == RENDEZVOUS else ["Slow To Come"])))
        self.begun = threading.Event()  # never: who waits for it is the slow server
        with FalseServer(behave) as server:
            done = subprocess.run([TOOL, "list"], env=server.environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=LONG_START + IN_TIME)
        self.assertEqual(done.stdout, b"Slow To Come\n", done.stderr[-2000:])


if __name__ == "__main__":
    unittest.main()
