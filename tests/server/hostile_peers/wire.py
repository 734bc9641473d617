# SPDX-License-Identifier: MIT
# Packets, messages and flattened values, laid out by hand: what good peers send, and what others change in
# it. See docs/messages.md and docs/encoding.md.
import array
import fcntl
import os
import socket
import struct

MAGIC = b"VLM1"
SIMPLE, REPLY, COMPLEX = 0x1513, 0x12, 0x80000000
NUMBERS = bytes((0, 0, 0, 0, 1, 0, 0, 0))
LONGEST_PACKET = 160 << 10
LONGEST_MESSAGE = 4096
BAD_ID, BAD_ARGUMENTS = (code & 0xFFFFFFFF for code in (-303, -304))

F_ADD_SEALS, SEAL, SHRINK, GROW, WRITE = 1033, 1, 2, 4, 8
ALL_SEALS = SEAL | SHRINK | GROW | WRITE

# The rows: what each message asks for. W is a word, U a URL, N a name, I a UUID, M memory.
ROWS = {13000: "", 13001: "I", 13002: "I", 13003: "", 13004: "U", 13005: "MWW", 13006: "MW", 13007: "UMWWW",
        13008: "UW", 13010: "U", 13011: "U", 13014: "W", 13015: "W", 13016: "W", 13017: "NW", 13018: "WM",
        13019: "MMW", 13020: "MMW", 13021: "MW", 13022: "MM", 13023: "MN", 13024: "UM", 13026: "WWW",
        13027: "MW", 13028: "MW", 13029: "NWW", 13030: "MW"}
OBSERVE, POST, TELL = 14000, 14001, 14002


# ---- flattened values ------------------------------------------------------------------------------
def word(number):
    return struct.pack(">I", number & 0xFFFFFFFF)


class URL(str):
    pass


class Set(tuple):
    pass


class Flat(bytes):
    """Bytes that stand in a value as they are."""


def flat(value):
    if isinstance(value, Flat):
        return bytes(value)
    if isinstance(value, bool):
        return word(259) + word(1) + bytes((value,))
    if isinstance(value, int):
        return word(22) + word(4) + word(8) + struct.pack(">q", value)
    if isinstance(value, float):
        return word(22) + word(6) + word(8) + struct.pack(">d", value)
    if isinstance(value, str):
        text = value.encode("utf-8", "surrogateescape")
        return word(257 if isinstance(value, URL) else 7) + word(len(text)) + text
    if isinstance(value, bytes):
        return word(18) + word(len(value)) + value
    if isinstance(value, dict):
        return word(16) + word(len(value)) + b"".join(flat(k) + flat(v) for k, v in value.items())
    return word(256 if isinstance(value, Set) else 17) + word(len(value)) + b"".join(map(flat, value))


# ---- messages --------------------------------------------------------------------------------------
def text(value, prefix=True):
    value = value if isinstance(value, bytes) else value.encode("utf-8", "surrogateescape")
    body = value + b"\0" * (1 + -(len(value) + 1) % 4)
    return (struct.pack("<II", 0, len(value) + 1) if prefix else b"") + body


def body_of(row, arguments):
    """A message without its header, and the memory that goes with it."""
    memory = [argument for kind, argument in zip(row, arguments) if kind == "M"]
    parts = [struct.pack("<I", len(memory))] if memory else []
    parts += [struct.pack("<QBBBBI", 0, 1, 1, 0, 1, len(piece)) for piece in memory]
    parts.append(NUMBERS)
    for kind, argument in zip(row, arguments):
        if kind in "WM":
            parts.append(struct.pack("<I", len(argument) if kind == "M" else argument & 0xFFFFFFFF))
        else:
            parts.append(text(argument, prefix=kind != "I"))
    return b"".join(parts), memory


def message(identity, row, arguments, bits=SIMPLE, ports=(7, 9)):
    body, memory = body_of(row, arguments)
    bits |= COMPLEX if memory else 0
    return struct.pack("<6I", bits, 24 + len(body), *ports, 0, identity) + body, memory


def packet(body, enclosed=(), instance=0, mask=None, size=None):
    mask = (1 << len(enclosed)) - 1 if mask is None else mask
    header = struct.pack("<4sIIIQ", MAGIC, len(body) if size is None else size, mask, 0, instance)
    return header + body + b"".join(enclosed)


def request(identity, *arguments):
    """(packet, descriptors) of a good request; memory that is long goes in sealed files."""
    row = ROWS.get(identity, "M" if identity == POST else "")
    body, memory = message(identity, row, arguments)
    enclosed = [piece for piece in memory if len(piece) <= 16384]
    mask = sum(1 << i for i, piece in enumerate(memory) if len(piece) <= 16384)
    return packet(body, enclosed, mask=mask), [sealed(piece) for piece in memory if len(piece) > 16384]


def memory_file(content, seals=ALL_SEALS, size=None):
    descriptor = os.memfd_create("peer", os.MFD_ALLOW_SEALING)
    view = memoryview(content)
    while view:
        view = view[os.write(descriptor, view):]
    if size is not None:
        os.ftruncate(descriptor, size)
    fcntl.fcntl(descriptor, F_ADD_SEALS, seals)
    return descriptor


sealed = memory_file


# ---- replies ---------------------------------------------------------------------------------------
class Reply:
    """A reply, read as its header says and no further."""

    def __init__(self, data, descriptors):
        magic, size, mask, zero, self.instance = struct.unpack_from("<4sIIIQ", data)
        if magic != MAGIC or zero:
            raise ValueError(f"no packet: {data[:24]!r}")
        self.message, enclosed = data[24:24 + size], data[24 + size:]
        self.memory, self.rest, self.bits, self.id, at = None, b"", REPLY, 0, 24
        if size == 0:
            return  # a refusal: it was meant for another life of the service
        self.bits, stated, _, self.port, _, self.id = struct.unpack_from("<6I", self.message)
        if stated != size:
            raise ValueError(f"the message of {size} bytes says {stated}")
        if self.bits & COMPLEX:
            count, _, length = struct.unpack_from("<IQxxxxI", self.message, at)
            at += 4 + 16 * count
            self.memory = enclosed[:length] if mask & 1 else os.pread(descriptors[0], length, 0)
        self.rest = self.message[at + 8:]

    @property
    def word(self):
        return struct.unpack_from("<I", self.rest)[0]  # the code, or the length of the memory

    @property
    def words(self):
        return struct.unpack(f"<{len(self.rest) // 4}I", self.rest[:len(self.rest) // 4 * 4])

    @property
    def text(self):
        count = struct.unpack_from("<I", self.rest, 8)[0]
        return self.rest[12:12 + count - 1].decode()


def receive(connection):
    """A reply, or None at the end of the connection."""
    try:
        data, control, flags, _ = connection.recvmsg(LONGEST_PACKET, socket.CMSG_SPACE(64))
    except (ConnectionResetError, BrokenPipeError):
        return None
    numbers = array.array("i")
    for level, kind, content in control:
        if (level, kind) == (socket.SOL_SOCKET, socket.SCM_RIGHTS):
            numbers.frombytes(content[:len(content) // 4 * 4])
    try:
        return Reply(data, numbers) if data else None
    finally:
        for number in numbers:
            os.close(number)


def send(connection, data, descriptors=()):
    """Sends a packet; the descriptors are the caller's. False when nobody is there any more."""
    control = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", descriptors))] if descriptors else []
    try:
        connection.sendmsg([data], control)
        return True
    except (BrokenPipeError, ConnectionResetError):
        return False
