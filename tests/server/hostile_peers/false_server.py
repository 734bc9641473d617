# SPDX-License-Identifier: MIT
# A server that is none, and does to its clients what a test says.
import os
import pathlib
import socket
import struct
import tempfile
import threading

import wire
from running_server import FONTS, HUB
from wire import flat

RENDEZVOUS = 13000


def reply_to(identity, memory=None, rest=b"", instance=1, answers=None):
    """A good reply: of memory, or what is inline."""
    body = wire.NUMBERS + (rest if memory is None else struct.pack("<I", len(memory)) + rest)
    if memory is not None:
        body = struct.pack("<IQBBBBI", 1, 0, 1, 1, 0, 1, len(memory)) + body
    bits = wire.REPLY | (0 if memory is None else wire.COMPLEX)
    answers = identity + 100 if answers is None else answers
    message = struct.pack("<6I", bits, 24 + len(body), 9, 0, 0, answers & 0xFFFFFFFF) + body
    return wire.packet(message, [] if memory is None else [memory], instance=instance)


def reply_with_files(identity, size, count=1):
    """The same for memory of that size in a file, whose descriptor goes with it."""
    body = struct.pack("<I", count) + struct.pack("<QBBBBI", 0, 1, 1, 0, 1, size) * count + wire.NUMBERS
    body += struct.pack("<I", size)
    header = struct.pack("<6I", wire.REPLY | wire.COMPLEX, 24 + len(body), 9, 0, 0, identity + 100)
    return wire.packet(header + body, mask=0, instance=1)


class FalseServer:
    """Accepts whoever comes; `behave(connection, identity)` is called for each message, until it gives False.
    What clients meet with is good unless `is_false_from_the_beginning`."""

    def __init__(self, behave, is_false_from_the_beginning=True):
        self.behave, self.is_false_at_once = behave, is_false_from_the_beginning
        self.folder = tempfile.TemporaryDirectory()
        home = pathlib.Path(self.folder.name).resolve()
        for path in ("run", "run/vellum"):
            (home / path).mkdir(mode=0o700)
        (home / "root/usr/share/fonts").mkdir(parents=True)
        kept = {name: value for name, value in os.environ.items() if not name.startswith(("VELLUM_", "VL_", "XDG_"))}
        self.environment = {**kept, "HOME": str(home), "XDG_RUNTIME_DIR": str(home / "run"), "LC_ALL": "C.UTF-8",
                            "DBUS_SESSION_BUS_ADDRESS": "none:", "VELLUM_FONTS_ROOT": f"{home}/root/"}
        self.listeners, self.connections = [], []
        for service in (FONTS, HUB):
            listener = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
            listener.bind(str(home / "run/vellum" / service))
            listener.listen(64)
            self.listeners.append(listener)
            threading.Thread(target=self.accept, args=(listener,), daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for listener in self.listeners:
            listener.shutdown(socket.SHUT_RDWR)  # which wakes who accepts
            listener.close()
        for connection in self.connections:
            connection.close()
        self.folder.cleanup()

    def accept(self, listener):
        while True:
            try:
                connection, _ = listener.accept()
            except OSError:
                return
            self.connections.append(connection)
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def serve(self, connection):
        try:
            while data := connection.recv(wire.LONGEST_PACKET):
                identity = struct.unpack_from("<i", data, 44)[0]
                if identity == RENDEZVOUS and not self.is_false_at_once:
                    connection.send(reply_to(identity, flat({})))
                elif identity == wire.OBSERVE and not self.is_false_at_once:
                    connection.send(reply_to(identity, rest=bytes(4)))
                elif self.behave(connection, identity) is False:
                    break
        except OSError:
            pass  # the client has left
        connection.close()
