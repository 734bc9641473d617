# SPDX-License-Identifier: MIT
# Clients of a server that answers nonsense, or half of it, or not at all: they end in time, by themselves.
# Environment: VELLUM_TOOL.
import concurrent.futures
import os
import socket
import struct
import subprocess
import time
import unittest

import wire
from false_server import FalseServer, reply_to, reply_with_files
from running_server import IS_SANITIZED, stopped
from test_packets import lingering_socket
from test_values import BROKEN, FAMILY, FILE, NULL, ODD
from wire import URL, Set, flat

TOOL = os.environ["VELLUM_TOOL"]
IN_TIME = 30 if IS_SANITIZED else 8  # seconds: two meetings of a second each, twice, and what a machine is slow
DONE, NOTHING_FITS = 0, 1
PROPERTIES, PROPERTY = 13022, 13023
QUESTIONS = (("list",), ("match", "Foo"))


def sends(make):
    """A behaviour: to send something, and wait."""
    return lambda connection, identity: connection.send(make(identity)) and None


def sends_file(seals=wire.ALL_SEALS, stated=4096, size=4096, files=1, content=b""):
    def behave(connection, identity):
        descriptor = wire.memory_file(content, seals, size)
        wire.send(connection, reply_with_files(identity, stated), [descriptor] * files)
        if not seals & wire.SHRINK:
            os.ftruncate(descriptor, 0)  # after it has been sent
        os.close(descriptor)
    return behave


REPLIES = {
    "rubbish": sends(lambda identity: os.urandom(100)), "no bytes": sends(lambda identity: b""),
    "half a reply": sends(lambda identity: reply_to(identity, flat([]))[:30]),
    "half a message": sends(lambda identity: wire.packet(reply_to(identity, flat([]))[24:50])),
    "another's reply": sends(lambda identity: reply_to(identity, flat([]), answers=identity + 101)),
    "the request itself": sends(lambda identity: reply_to(identity, flat([]), answers=identity)),
    "the news that nobody will reply": sends(lambda identity: reply_to(identity, flat([]), answers=71)),
    "a code": sends(lambda identity: reply_to(identity, rest=struct.pack("<I", 5))),
    "a code that is nothing": sends(lambda identity: reply_to(identity, rest=bytes(4))),
    "a text": sends(lambda identity: reply_to(identity, rest=bytes(4) + wire.text("file:///x"))),
    "memory and more": sends(lambda identity: reply_to(identity, flat([]), rest=bytes(8))),
    "a refusal": sends(lambda identity: wire.packet(b"", instance=5)),
    "another life each time": sends(lambda identity: reply_to(identity, flat([]), instance=time.monotonic_ns())),
    "memory that is not sealed": sends_file(seals=0), "memory that shrinks": sends_file(seals=wire.GROW | wire.WRITE),
    "less memory than stated": sends_file(stated=8192), "more files than stated": sends_file(files=2),
    "files without number": sends_file(files=250),
    "no file at all": sends(lambda identity: reply_with_files(identity, 9)),
}


class Client(unittest.TestCase):
    def run_clients(self, *runs):
        """All at once, for most of them wait."""
        with concurrent.futures.ThreadPoolExecutor(16) as pool:
            pending = {name: pool.submit(self.run_client, behave, *arguments, is_false_at_once=is_false)
                       for name, behave, arguments, is_false in runs}
            for name, run in pending.items():
                with self.subTest(name):
                    run.result()

    def run_client(self, behave, *arguments, is_false_at_once=False):
        """It ends in time, and by itself."""
        with FalseServer(behave, is_false_at_once) as server:
            done = subprocess.run([TOOL, *arguments], env=server.environment, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=IN_TIME)
            self.assertIn(done.returncode, (DONE, NOTHING_FITS), done.stderr[-2000:])
            self.assertNotIn(b"memory is exhausted", done.stderr)
            return done.stdout

    def test_ends_whatever_it_is_answered(self):
        self.run_clients(*(((name, *arguments), behave, arguments, False)
                           for name, behave in REPLIES.items() for arguments in QUESTIONS))

    def test_ends_when_the_first_meeting_goes_wrong(self):
        self.run_clients(*((name, behave, ("list",), True) for name, behave in REPLIES.items()))

    def test_ends_when_the_server_hangs_up_or_never_replies(self):
        silent, gone = lambda connection, identity: None, lambda connection, identity: False
        self.run_clients(*(((name, is_false), behave, ("list",), is_false)
                           for name, behave in (("silent", silent), ("gone", gone)) for is_false in (False, True)))

    def test_ends_when_the_server_sends_half_a_reply_and_dies(self):
        def behave(connection, identity):
            connection.send(reply_to(identity, flat([]))[:40])
            return False
        self.run_client(behave, "list")

    def test_survives_values_that_are_broken_or_of_the_wrong_kinds(self):
        odd = {**BROKEN, **{name: flat(value) for name, value in ODD.items()},
               "a bit of everything": flat([NULL, 1, "x", [], {}, {1: 2}, URL("file:///x"), Set((1, NULL))]),
               "properties of the wrong kinds": flat([{FAMILY: 7, FILE: "x"}] * 3),
               "properties of no kind": flat([{FAMILY: ["x", 1], FILE: [NULL]}])}
        self.run_clients(*(((name, *arguments), sends(lambda identity, value=value: reply_to(identity, value)),
                            arguments, False) for name, value in odd.items() for arguments in QUESTIONS))

    def test_lists_what_is_of_the_right_kind_among_what_is_not(self):
        items = [NULL, 1, True, [], {"x": 1}, Set((1,)), b"data", "A Name", URL("file:///a/file.ttf"), {}, 2.5]
        listed = {"families": b"A Name\n", "names": b"A Name\n", "files": b"/a/file.ttf\n"}
        for what, lines in listed.items():
            with self.subTest(what):
                self.assertEqual(self.run_client(sends(lambda identity: reply_to(identity, flat(items))),
                                                 "list", what), lines)

    def test_survives_properties_of_fonts_that_are_none(self):
        font = URL("file:///a/file.ttf")
        for properties in (7, "x", [], NULL, {FAMILY: 7}):
            def behave(connection, identity, properties=properties):
                by_font = identity in (PROPERTIES, PROPERTY)
                connection.send(reply_to(identity, flat({font: properties, 7: {}} if by_font else [font])))
            with self.subTest(properties):
                self.run_client(behave, "doctor")

    def test_is_not_held_up_by_closing_what_it_was_sent(self):
        def behave(connection, identity):
            lingering, *kept = lingering_socket(seconds=60)
            self.kept += kept
            client = struct.unpack("3i", connection.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12))[0]
            with stopped(client):
                wire.send(connection, reply_to(identity, flat([])), [lingering.fileno()])
                lingering.close()
        self.kept = []
        try:
            self.run_client(behave, "list")
        finally:
            for end in self.kept:
                end.close()

    def test_does_not_ask_for_ever_who_tells_it_to_listen_and_hangs_up(self):
        observed = []

        def behave(connection, identity):
            if identity != wire.OBSERVE:
                connection.send(reply_to(identity, flat({})))
                return True
            observed.append(1)
            connection.send(reply_to(identity, rest=bytes(4)))
            return False
        with FalseServer(behave) as server:
            done = subprocess.run([TOOL, "monitor", "--timeout", "1.5", "--count", "1"], env=server.environment,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=IN_TIME)
        self.assertGreaterEqual(done.returncode, 0)
        self.assertLess(len(observed), 10)


if __name__ == "__main__":
    unittest.main()
