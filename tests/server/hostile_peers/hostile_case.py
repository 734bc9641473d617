# SPDX-License-Identifier: MIT
# What every attack must leave behind: a server that answers a good client, quickly and rightly, and has
# about as many descriptors and as much memory as before.
import threading
import time
import unittest

from running_server import FONTS, IS_SANITIZED, PATIENCE, Server

QUICK = 15.0 if IS_SANITIZED else 1.5  # seconds: what another's lookup may take while others run on this machine
SPARE_DESCRIPTORS = 8  # the database's log, kept answers, the bus: made when they are first needed
KEPT_BY_A_SANITIZER = 400 if IS_SANITIZED else 0  # MiB of what was freed


class Bystander:
    """A good client that asks some hundred times a second, on a thread of its own."""

    def __init__(self, server):
        self.server = server
        self.slowest, self.count, self.problem = 0.0, 0, None
        self.is_over = threading.Event()
        self.thread = threading.Thread(target=self.run)

    def run(self):
        try:
            with self.server.peer() as peer:
                while not self.is_over.wait(0.002):
                    found, seconds = peer.find()
                    if found != self.server.known:
                        raise ValueError(f"the known font is at {found!r}")
                    self.slowest, self.count = max(self.slowest, seconds), self.count + 1
        except Exception as problem:
            self.problem = problem

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.is_over.set()
        self.thread.join()


class HostileCase(unittest.TestCase):
    """Each test has a server of its own, and ends by looking at it."""

    more_memory = 24  # MiB
    before = ()  # a command that starts the server

    def setUp(self):
        self.server = Server()
        self.addCleanup(lambda: self.assertEqual(self.server.stop(), 0, self.server.last_words))
        self.prepare()
        self.server.start(self.before)
        with self.server.peer() as peer:
            peer.ask(13000)  # what is made once for all is there
            self.server.known, _ = peer.find()
        self.descriptors, self.memory = self.server.descriptors(), self.server.memory()

    def prepare(self):
        """Files that are there when the server starts."""

    def tearDown(self):
        if self.server.process.poll() is None:
            self.is_as_before()

    def bystander(self):
        return Watched(self)

    def is_as_before(self):
        deadline = time.monotonic() + PATIENCE
        with self.server.peer() as peer:
            found, seconds = peer.find()
        self.assertEqual(found, self.server.known)
        self.assertLess(seconds, QUICK)
        most = self.descriptors + SPARE_DESCRIPTORS
        while (descriptors := self.server.descriptors()) > most and time.monotonic() < deadline:
            pass  # it may close some on another thread
        self.assertLessEqual(descriptors, most)
        self.assertLess(self.server.memory() - self.memory, self.more_memory + KEPT_BY_A_SANITIZER)

    def assert_cut_off(self, data, descriptors=(), service=FONTS):
        """Neither answered nor left alone."""
        with self.server.peer(service) as peer:
            peer.send(data, descriptors)
            self.assertIsNone(peer.receive())


class Watched:
    """An attack, during which a good client asks."""

    def __init__(self, case):
        self.case, self.bystander = case, Bystander(case.server)

    def __enter__(self):
        self.bystander.__enter__()
        return self.bystander

    def __exit__(self, kind, *_):
        self.bystander.__exit__()
        if kind is None:
            self.case.assertIsNone(self.bystander.problem)
            self.case.assertLess(self.bystander.slowest, QUICK)
