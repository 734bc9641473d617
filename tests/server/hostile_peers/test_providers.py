# SPDX-License-Identifier: MIT
# Programs that have fonts to give, among hostile askers; and askers, among hostile programs that say they have.
# Environment: VELLUM_LIBRARY.
import os
import pathlib
import socket
import struct
import subprocess
import sys
import time
import unittest
import uuid

import wire
from hostile_case import HostileCase
from running_server import IS_SANITIZED, PATIENCE, processor_seconds
from test_values import BROKEN, ODD
from wire import flat, word

ASK = ("import ctypes, os; library = ctypes.CDLL(os.environ['VELLUM_LIBRARY']); "
       "library.VLCopyFontProviderRemotePorts.restype = ctypes.c_void_p; library.VLCopyFontProviderRemotePorts()")
ONE = flat({"attributes": {}, "pid": 1})


def question(memory=None, size=None):
    """A message to a port; of memory of that size in a file, without memory of its own."""
    size = len(memory or b"") if size is None else size
    header = struct.pack("<6I", wire.SIMPLE | wire.COMPLEX, 44, 0, 0, 0, 5)
    body = header + struct.pack("<IQBBBBI", 1, 0, 1, 1, 0, 1, size)
    return wire.packet(body, [] if memory is None else [memory])


@unittest.skipIf(IS_SANITIZED, "the library is loaded by a program without a sanitizer")
class Provider(HostileCase):
    def setUp(self):
        super().setUp()
        self.environment = {**self.server.environment, "VELLUM_LIBRARY": os.environ["VELLUM_LIBRARY"]}

    def provider(self, *before):
        """(its process, the name of its port)."""
        program = pathlib.Path(__file__).with_name("provider.py")
        process = subprocess.Popen([*before, sys.executable, program], env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertEqual(process.stdout.readline(), b"ready\n")
        name, = (path.name for path in (self.server.run / "vellum").glob(f"{process.pid}.*"))
        return process, name

    def is_well(self, name):
        with self.server.peer(name) as peer:
            peer.send(question(ONE))
            return peer.receive() is not None

    def test_answers_good_askers_whatever_others_ask(self):
        process, name = self.provider()
        for value in (*BROKEN.values(), *map(flat, ODD.values())):
            with self.server.peer(name) as peer:
                peer.send(question(value))
                peer.receive()
        for data in (b"x", b"", os.urandom(200), wire.packet(b""), question(ONE)[:60], question(None, 9)):
            with self.server.peer(name) as peer:
                peer.connection.send(data)
                self.assertTrue(peer.is_cut_off())
        self.assertTrue(self.is_well(name))
        self.assertIsNone(process.poll())

    def test_is_not_kept_busy_by_a_giant_question(self):
        _, name = self.provider()
        size = 256 << 20
        descriptor = wire.memory_file(word(17) + word(size // 4 - 2), size=size)
        with self.server.peer(name) as peer:
            peer.send(question(None, size), [descriptor])
            os.close(descriptor)
            begin = time.monotonic()
            self.assertTrue(self.is_well(name))
            self.assertLess(time.monotonic() - begin, 5)

    def test_has_descriptors_left_however_many_ask(self):
        process, name = self.provider("prlimit", "--nofile=128:128")
        self.assertTrue(self.is_well(name))
        before = len(os.listdir(f"/proc/{process.pid}/fd"))
        with self.server.peer(name) as another:
            greedy = [self.server.connect(name) for _ in range(200)]
            another.send(question(ONE))
            another.receive()
            self.assertLess(len(os.listdir(f"/proc/{process.pid}/fd")), before + 64)
            for connection in greedy:
                connection.close()
        self.assertTrue(self.is_well(name))

    def test_does_not_spin_when_its_descriptors_are_exhausted(self):
        process, name = self.provider("prlimit", "--nofile=24:24")
        greedy = [self.server.connect(name) for _ in range(40)]
        begin, worked = time.monotonic(), processor_seconds(process.pid)
        with self.server.peer() as peer:
            for _ in range(5000):  # time that passes
                peer.find()
        self.assertLess(processor_seconds(process.pid) - worked, (time.monotonic() - begin) / 4)
        for connection in greedy:
            connection.close()

    def test_that_does_not_answer_keeps_nobody_for_ever(self):
        name = f"{os.getpid()}.{str(uuid.uuid4()).upper()}"
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as deaf, self.server.peer() as peer:
            deaf.bind(str(self.server.run / "vellum" / name))
            deaf.listen(0)
            with self.server.peer(name):  # nobody else fits in
                self.assertEqual(peer.ask(13001, name.partition(".")[2]).words, (0,))
                done = subprocess.run([sys.executable, "-c", ASK], env=self.environment, timeout=PATIENCE)
                self.assertEqual(done.returncode, 0)


if __name__ == "__main__":
    unittest.main()
