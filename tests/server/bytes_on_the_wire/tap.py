# SPDX-License-Identifier: MIT
# A tap on the line between a program and the font server: it listens where the program looks for the server, hands
# every packet on, with its descriptors, and keeps a copy of what went by in which direction.
import array
import fcntl
import os
import pathlib
import socket
import threading
from dataclasses import dataclass

SERVICE = "com.orrery.FontServer"
F_GET_SEALS = 1034
LONGEST_PACKET = 256 * 1024  # more than there may be, so that one that is too long is seen whole
MOST_DESCRIPTORS = 16
DEADLINE = 60                # seconds: what passes it hangs


@dataclass(frozen=True)
class Packet:
    """What went by: on which connection, whether towards the server, its bytes, and of each memory file the bytes
    and seals."""
    connection: int
    to_server: bool
    content: bytes
    files: tuple


def service_path(runtime):
    return str(pathlib.Path(runtime, "vellum", SERVICE))


def connect(path):
    connection = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
    connection.connect(path)
    return connection


def receive(connection):
    """(bytes, descriptors) of one packet; no bytes when the other side has gone."""
    space = socket.CMSG_SPACE(MOST_DESCRIPTORS * array.array("i").itemsize)
    try:
        content, ancillary, flags, _ = connection.recvmsg(LONGEST_PACKET, space, socket.MSG_CMSG_CLOEXEC)
    except ConnectionResetError:  # gone without having read everything
        return b"", []
    descriptors = array.array("i")
    for level, kind, data in ancillary:
        if (level, kind) == (socket.SOL_SOCKET, socket.SCM_RIGHTS):
            descriptors.frombytes(data[:len(data) - len(data) % descriptors.itemsize])
    if flags & (socket.MSG_TRUNC | socket.MSG_CTRUNC):
        raise ValueError("a packet does not fit")
    return content, list(descriptors)


def _content_of(descriptor):
    """(bytes, seals) of a memory file."""
    content, size = b"", os.fstat(descriptor).st_size
    while len(content) < size:
        content += os.pread(descriptor, size - len(content), len(content))
    return content, fcntl.fcntl(descriptor, F_GET_SEALS)


class Tap:
    """Listens in one runtime folder for what is meant for the server of another."""

    def __init__(self, runtime, server_runtime):
        self._server = service_path(server_runtime)
        self._lock = threading.Lock()
        self._packets, self._failures, self._threads, self._sockets = [], [], [], []
        os.makedirs(pathlib.Path(runtime, "vellum"), mode=0o700)
        self._listener = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        self._listener.bind(service_path(runtime))
        self._listener.listen(64)
        self._begin(self._accept)

    def packets(self):
        """What went by so far. A program that has its answer has been heard."""
        with self._lock:
            if self._failures:
                raise self._failures[0]
            return list(self._packets)

    def close(self):
        self._listener.shutdown(socket.SHUT_RDWR)  # which wakes the one who accepts
        with self._lock:
            sockets = list(self._sockets)
        for each in sockets:
            _shut(each, socket.SHUT_RDWR)
        for thread in list(self._threads):
            thread.join(DEADLINE)
        for each in (*sockets, self._listener):
            each.close()

    def _begin(self, work, *arguments):
        thread = threading.Thread(target=self._watched, args=(work, *arguments), daemon=True)
        self._threads.append(thread)
        thread.start()

    def _watched(self, work, *arguments):
        try:
            work(*arguments)
        except Exception as failure:  # told to the test that asks for packets
            with self._lock:
                self._failures.append(failure)

    def _accept(self):
        connection = 0
        while True:
            try:
                client, _ = self._listener.accept()
            except OSError:  # closed
                return
            server = connect(self._server)
            with self._lock:
                self._sockets += [client, server]
            self._begin(self._hand_on, connection, client, server, True)
            self._begin(self._hand_on, connection, server, client, False)
            connection += 1

    def _hand_on(self, connection, sender, receiver, to_server):
        while True:
            content, descriptors = receive(sender)
            if not content:  # a program that only looked whether there is a server ends here, too
                _shut(receiver, socket.SHUT_WR)
                return
            try:
                packet = Packet(connection, to_server, content, tuple(map(_content_of, descriptors)))
                with self._lock:
                    self._packets.append(packet)
                socket.send_fds(receiver, [content], descriptors)
            except (BrokenPipeError, ConnectionResetError):  # who was meant has gone
                _shut(sender, socket.SHUT_RD)
                return
            finally:
                for descriptor in descriptors:
                    os.close(descriptor)


def _shut(connection, how):
    try:
        connection.shutdown(how)
    except OSError:  # it is not connected any more
        pass
