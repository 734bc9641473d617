# SPDX-License-Identifier: MIT
# Packets that are none, memory that is not to be relied on, and descriptors that nobody asked for.
import os
import socket
import struct
import threading
import unittest

import wire
from hostile_case import HostileCase
from running_server import FONTS, HUB, stopped
from wire import flat

GOOD = wire.message(13017, "NW", ["Known-Regular", 6])[0]
WITH_MEMORY = flat(["file:///nowhere.ttf"])
KEY = "KSFontNameAttribute"


def with_header(**more):
    """A good packet with other fields in its header."""
    fields = {"magic": wire.MAGIC, "size": len(GOOD), "mask": 0, "reserved": 0, "instance": 0, **more}
    return struct.pack("<4sIIIQ", *fields.values()) + GOOD


def stating(size, count=1, kind=1, mask=0, enclosed=()):
    """A question about one property that says of its memory what is not so."""
    body = struct.pack("<I", count) + struct.pack("<QBBBBI", 0, 1, 1, 0, kind, size) * min(count, 100)
    body += wire.NUMBERS + struct.pack("<I", size) + wire.text(KEY)
    header = struct.pack("<6I", wire.SIMPLE | wire.COMPLEX, 24 + len(body), 7, 9, 0, 13023)
    return wire.packet(header + body, enclosed, mask=mask)


class Packets(HostileCase):
    def test_that_are_none_are_not_answered(self):
        header = with_header()[:24]
        packets = [b"x", b"VLM1", header[:23], header, with_header(magic=b"VLM2"), with_header(reserved=1),
                   with_header(size=len(GOOD) - 1), with_header(size=len(GOOD) + 1), with_header(size=0),
                   with_header(size=0xFFFFFFFF), with_header(size=20), with_header(mask=1),
                   with_header(mask=0x80000000), with_header()[:-4], with_header() + bytes(4), wire.packet(b""),
                   wire.packet(GOOD[:20]),
                   wire.packet(b"", enclosed=[b"x"]), wire.packet(GOOD, mask=0xFFFFFFFF),
                   wire.packet(GOOD[:4] + struct.pack("<I", 24) + GOOD[8:]), os.urandom(1000),
                   wire.packet(struct.pack("<6I", wire.SIMPLE, 5000, 7, 9, 0, 13000) + bytes(4976)),
                   with_header() + bytes(wire.LONGEST_PACKET), stating(4, count=5), stating(4, count=0xFFFFFFFF),
                   stating(4, count=0x10000000), stating(4, mask=1), stating(4, mask=3, enclosed=[b"1234"]),
                   stating(5, mask=1, enclosed=[b"1234"]), stating(3, mask=1, enclosed=[b"1234"]),
                   stating(0xFFFFFFFF, mask=1, enclosed=[b"1234"]), stating(4, kind=2, mask=1, enclosed=[b"1234"])]
        with self.bystander():
            for service in (FONTS, HUB):
                for number, data in enumerate(packets):
                    with self.subTest(number, service=service):
                        self.assert_cut_off(data, service=service)

    def test_without_bytes_end_the_connection(self):
        for service in (FONTS, HUB):
            with self.server.peer(service) as peer:
                peer.connection.send(b"")
                self.assertTrue(peer.is_cut_off())

    def test_to_another_life_of_the_service_are_refused(self):
        with self.server.peer() as peer:
            peer.send(with_header(instance=12345))
            self.assertEqual(peer.receive().message, b"")
            self.assertTrue(peer.is_cut_off())

    def test_cut_nobody_off_but_their_sender(self):
        with self.server.peer() as other:
            for _ in range(100):
                self.assert_cut_off(os.urandom(100))
            self.assertEqual(other.find()[0], self.server.known)

    def test_behind_one_that_is_none_are_not_read(self):
        with self.server.peer() as peer:
            peer.send(b"rubbish")
            for _ in range(50):
                peer.send(wire.packet(GOOD))
            self.assertIsNone(peer.receive())


class Memory(HostileCase):
    def test_that_is_not_sealed_is_not_read(self):
        with self.bystander():
            for seals in range(16):
                for size in (len(WITH_MEMORY), 4096, 8192):
                    descriptor = wire.memory_file(WITH_MEMORY, seals & ~wire.SEAL, size)
                    self.assert_cut_off(stating(len(WITH_MEMORY)), [descriptor])
                    os.close(descriptor)

    def test_that_shrinks_meanwhile_harms_nobody(self):
        descriptor = wire.memory_file(WITH_MEMORY, 0, 1 << 20)
        is_over = threading.Event()

        def shrink():
            while not is_over.is_set():
                os.ftruncate(descriptor, 0)
                os.ftruncate(descriptor, 1 << 20)

        thread = threading.Thread(target=shrink)
        thread.start()
        with self.bystander():
            for _ in range(300):
                self.assert_cut_off(stating(1 << 20), [descriptor])
        is_over.set()
        thread.join()
        os.close(descriptor)

    def test_of_another_size_than_stated_is_not_read(self):
        descriptor = wire.memory_file(WITH_MEMORY, size=4096)
        for size in (0, 4097, 8192, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF):
            self.assert_cut_off(stating(size), [descriptor])
        with self.server.peer() as peer:  # as much as it has, or less, is read
            for size in (1, len(WITH_MEMORY), 4096):
                peer.send(stating(size), [descriptor])
                self.assertEqual(peer.receive().id, 13123)
        os.close(descriptor)

    def test_that_is_no_memory_is_not_read(self):
        pipe, ends = os.pipe(), socket.socketpair()
        descriptors = [*pipe, *(end.fileno() for end in ends), os.open("/", os.O_RDONLY), os.open("/", os.O_PATH),
                       os.open("/dev/zero", os.O_RDWR), os.open(self.server.system / "known.ttf", os.O_RDONLY),
                       os.open("/proc/self/mem", os.O_RDONLY), os.eventfd(0)]
        with self.bystander():
            for descriptor in descriptors:
                self.assert_cut_off(stating(4), [descriptor])
        for end in ends:
            end.detach()
        for descriptor in descriptors:
            os.close(descriptor)


class Descriptors(HostileCase):
    def test_that_nobody_asked_for_are_closed(self):
        null, memory = os.open("/dev/null", os.O_RDONLY), wire.memory_file(WITH_MEMORY, size=4096)
        with self.bystander():
            for _ in range(50):
                for count in (1, 2, 4, 5, 6, 7, 250):
                    self.assert_cut_off(wire.packet(GOOD), [null] * count)
                    self.assert_cut_off(b"rubbish", [null] * count)
                self.assert_cut_off(stating(4), [memory, null])
                self.assert_cut_off(stating(4), [null, memory])
                self.assert_cut_off(stating(4), [memory] * 250)
                self.assert_cut_off(wire.packet(GOOD), [memory], HUB)
        os.close(null)
        os.close(memory)

    def test_that_nobody_reads_are_closed(self):
        null = os.open("/dev/null", os.O_RDONLY)
        with self.bystander():
            for _ in range(20):
                with self.server.peer() as peer:
                    peer.send(b"rubbish")
                    for _ in range(20):
                        peer.send(wire.packet(GOOD), [null] * 250)
                    self.assertTrue(peer.is_cut_off())
        os.close(null)

    def test_whose_closing_takes_long_hold_nobody_up(self):
        with self.bystander():
            for is_read in (True, False):
                lingering, *kept = lingering_socket()
                with self.server.peer() as peer:
                    with stopped(self.server.process.pid):
                        if not is_read:
                            peer.send(b"rubbish")
                        peer.send(wire.packet(GOOD), [lingering.fileno()])
                        lingering.close()
                    self.assertTrue(peer.is_cut_off())
                with self.server.peer() as peer:  # who comes next waits for it, if anybody does
                    peer.find()
                for end in kept:
                    end.close()


def lingering_socket(seconds=3):
    """A socket whose last owner waits so long for the other end to read, and that end."""
    with socket.create_server(("127.0.0.1", 0)) as listener:
        ours = socket.socket()
        ours.connect(listener.getsockname())
        theirs, _ = listener.accept()
    ours.setblocking(False)
    try:
        while True:
            ours.send(bytes(65536))
    except BlockingIOError:
        pass
    ours.setblocking(True)
    ours.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, seconds))
    return ours, theirs


if __name__ == "__main__":
    unittest.main()
