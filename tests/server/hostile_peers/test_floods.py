# SPDX-License-Identifier: MIT
# Peers that are many, that do not read, that leave in the middle, or that are somebody else's.
import array
import contextlib
import os
import signal
import socket
import threading
import unittest
import uuid

import small_fonts
import wire
from hostile_case import HostileCase
from running_server import FONTS, HUB, PROGRAM, Server
from test_values import CHARACTERS, FILE, NAME
from wire import URL, Set, flat, word

SESSION = 4
AS_ROOT = os.geteuid() == 0
ALL_FONTS = wire.request(13021, flat(Set((NAME, FILE, CHARACTERS))), SESSION)[0]


def begin_in_a_process(work):
    """Work that goes on until its process is killed. A thread would share the interpreter with the good client."""
    child = os.fork()
    if child == 0:
        try:
            work()
        finally:
            os._exit(1)
    return child


def come_and_go(server):
    while True:
        with contextlib.suppress(OSError):  # the queue is full
            server.connect().close()


def in_a_process(work):
    """What `work` said, in a process of its own: whether it ended well."""
    child = os.fork()
    if child == 0:
        status = 1
        try:
            status = 0 if work() else 1
        finally:
            os._exit(status)
    return os.waitpid(child, 0)[1] == 0


def become_nobody():
    os.setgroups([])
    os.setgid(65534)
    os.setuid(65534)


class Floods(HostileCase):
    def prepare(self):
        for number in range(100):
            (self.server.system / f"{number}.ttf").write_bytes(small_fonts.font(f"Family {number}"))

    def test_of_questions_whose_answers_nobody_reads_are_not_taken(self):
        peers = [self.server.peer() for _ in range(20)]
        with self.bystander():
            for peer in peers:
                peer.connection.setblocking(False)
                try:
                    for _ in range(10000):
                        peer.send(ALL_FONTS)
                    self.fail("it takes whatever is sent")
                except BlockingIOError:
                    pass
            for peer in peers:
                peer.connection.close()

    def test_of_connections_that_say_nothing_keep_nobody_out(self):
        with self.bystander():
            peers = [self.server.peer(service) for service in (FONTS, HUB) for _ in range(400)]
            for peer in peers:
                peer.connection.close()

    def test_of_connections_that_come_and_go_hold_nobody_up(self):
        processes = [begin_in_a_process(lambda: come_and_go(self.server)) for _ in range(4)]
        try:
            with self.bystander() as bystander:
                while bystander.count < 50 and not bystander.problem:
                    with self.server.peer() as peer:
                        peer.find()
                most = self.server.descriptors()
        finally:
            for process in processes:
                os.kill(process, signal.SIGKILL)
                os.waitpid(process, 0)
        self.assertLess(most, self.descriptors + 1000)

    def test_of_answers_to_who_has_left_go_nowhere(self):
        with self.bystander():
            for number in range(500):
                with self.server.peer() as peer:
                    peer.send(ALL_FONTS if number % 2 else wire.request(13010, URL("file:///nowhere.ttf"))[0])


class Changes(HostileCase):
    more_memory = 64

    def test_of_who_has_left_keep_nobody_waiting(self):
        count = 900000
        data, descriptors = wire.request(13027, word(17) + word(count) + bytes(4 * count), SESSION)
        with self.bystander():
            for _ in range(4):
                with self.server.peer() as peer:
                    peer.send(data, descriptors)
            with self.server.peer() as peer:
                self.assertEqual(peer.ask(13010, URL("file:///nowhere.ttf")).words, (0, 0))
        os.close(*descriptors)

    def test_of_many_fonts_let_others_ask_meanwhile_and_change_after_them(self):
        data, descriptors = wire.request(13027, flat([URL("file:///nowhere.ttf")] * 60000), SESSION)
        with self.bystander() as bystander, self.server.peer() as first, self.server.peer() as second:
            before = bystander.count
            first.send(data, descriptors)
            self.assertEqual(second.ask(13010, URL("file:///nowhere.ttf")).words, (0, 0))
            self.assertEqual(first.receive().id, 13127)
            self.assertGreater(bystander.count, before)
        os.close(*descriptors)


class Scarcity(HostileCase):
    """With a server that may have 64 descriptors."""

    before = ("prlimit", "--nofile=64:64")

    def test_that_another_made_ends_when_it_leaves(self):
        for service in (HUB, FONTS):
            with self.subTest(service):
                ours, theirs = socket.socketpair()
                child = os.fork()
                if child == 0:
                    keep = [self.server.connect(service) for _ in range(100)]
                    theirs.send(b"full")
                    ours.close()
                    os._exit(len(theirs.recv(1)) + len(keep) - 100)  # when the test closes its end
                theirs.close()
                self.assertEqual(ours.recv(4), b"full")
                with self.server.peer() as waiting:
                    waiting.send(wire.request(13017, "Known-Regular", 6)[0])
                    ours.close()
                    os.waitpid(child, 0)
                    self.assertEqual(waiting.receive().text, self.server.known)
        self.is_as_before()


@unittest.skipUnless(AS_ROOT, "only root can become somebody whose descriptors in flight are counted")
class InFlight(unittest.TestCase):
    def test_descriptors_without_number_leave_nobody_without_an_end(self):
        def is_told():
            become_nobody()
            if not os.access(PROGRAM, os.X_OK):
                return True
            server = Server()
            for number in range(200):
                (server.system / f"{number}.ttf").write_bytes(small_fonts.font(f"Family {number}"))
            server.start(("prlimit", "--nofile=128:128"))
            try:
                return self.is_told(server)
            finally:
                server.process.kill()
                server.process.wait()
                server.folder.cleanup()

        self.assertTrue(in_a_process(is_told))

    def is_told(self, server):
        with contextlib.ExitStack() as held:
            null = held.enter_context(open("/dev/null", "rb"))
            many = array.array("i", [null.fileno()] * 250)
            for _ in range(8):
                ours, _ = map(held.enter_context, socket.socketpair())
                ours.sendmsg([b"x"], [(socket.SOL_SOCKET, socket.SCM_RIGHTS, many)])
            with server.peer() as peer:
                peer.send(ALL_FONTS)
                peer.receive()  # or the end: it is too long to be sent without a descriptor
            return server.process.poll() is None


class Providers(HostileCase):
    def test_that_one_process_announces_leave_room_for_others(self):
        with self.bystander(), self.server.peer() as peer:
            for _ in range(1100):
                peer.ask(13001, str(uuid.uuid4()))

            def announce():
                with self.server.peer() as another:
                    name = str(uuid.uuid4())
                    return another.ask(13001, name).words == (0,) and another.ask(13002, name).words == (0,)

            self.assertTrue(in_a_process(announce))

    def test_are_withdrawn_by_nobody_else(self):
        name = str(uuid.uuid4())
        with self.server.peer() as peer:
            self.assertEqual(peer.ask(13001, name).words, (0,))

            def withdraw():
                with self.server.peer() as another:
                    return another.ask(13002, name).words != (0,)

            self.assertTrue(in_a_process(withdraw))
            self.assertEqual(peer.ask(13002, name).words, (0,))


@unittest.skipUnless(AS_ROOT, "only root can be somebody else")
class Strangers(HostileCase):
    def open_the_doors(self):
        run = self.server.run
        for path, mode in ((self.server.home, 0o755), (run, 0o755), (run / "vellum", 0o755),
                           (run / "vellum" / FONTS, 0o777), (run / "vellum" / HUB, 0o777)):
            path.chmod(mode)

    def test_are_cut_off_before_anything_is_read(self):
        self.open_the_doors()

        def is_refused():
            become_nobody()
            null = os.open("/dev/null", os.O_RDONLY)
            for service in (FONTS, HUB):
                for _ in range(50):
                    with self.server.peer(service) as peer:
                        peer.send(wire.request(13017, "Known-Regular", 6)[0], [null])
                        if peer.receive():
                            return False
            return True

        with self.bystander():
            self.assertTrue(in_a_process(is_refused))


if __name__ == "__main__":
    unittest.main()
