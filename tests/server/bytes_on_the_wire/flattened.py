# SPDX-License-Identifier: MIT
# The flattened form of values, as docs/encoding.md describes it: a writer, and a reader that forgives nothing. Both
# are these tests' own, so that what the library writes is read by somebody else, and the other way round.
#
# A string is a str, data are bytes, an array is a list, a dictionary a dict (in the order in which it was written),
# a boolean a bool and a UUID a uuid.UUID. What Python has no kind for has a class here.
import struct
import uuid
from dataclasses import dataclass

STRING, DICTIONARY, ARRAY, DATA, NUMBER, CHARACTERS = 7, 16, 17, 18, 22, 27
SET, URL_TAG, UUID_TAG, BOOLEAN = 0x100, 0x101, 0x102, 0x103

# What a number of each type is, big-endian.
NUMBER_FORMS = {1: ">b", 2: ">h", 3: ">i", 4: ">q", 5: ">f", 6: ">d"}


@dataclass(frozen=True)
class URL:
    text: str


@dataclass(frozen=True)
class Number:
    """A number keeps the type that it was made with: 1 is not 1 of another size."""
    type: int
    value: object


def int32(value):
    return Number(3, value)


def int64(value):
    return Number(4, value)


@dataclass(frozen=True)
class Characters:
    """A character set, by its bitmap."""
    bitmap: bytes

    @staticmethod
    def of(code_points):
        planes = {0: bytearray(8192)}
        for code_point in code_points:
            plane = planes.setdefault(code_point >> 16, bytearray(8192))
            plane[(code_point & 0xFFFF) // 8] |= 1 << code_point % 8
        return Characters(b"".join((bytes([number]) if number else b"") + bytes(planes[number])
                                   for number in sorted(planes)))


class Set(tuple):
    """A set in the order in which it was written; that order makes no difference to what it equals."""

    def __eq__(self, other):
        return isinstance(other, Set) and len(self) == len(other) and frozenset(self) == frozenset(other)

    __hash__ = None


def _word(number):
    return struct.pack(">I", number)


def _counted(tag, content):
    return _word(tag) + _word(len(content)) + content


def flatten(value):
    """A value's bytes. Null is none at all."""
    if value is None:
        return b""
    if isinstance(value, bool):  # before everything that a bool is, too
        return _counted(BOOLEAN, bytes([value]))
    if isinstance(value, str):
        return _counted(STRING, value.encode("utf-8"))
    if isinstance(value, Number):
        content = struct.pack(NUMBER_FORMS[value.type], value.value)
        return _word(NUMBER) + _word(value.type) + _word(len(content)) + content
    if isinstance(value, bytes):
        return _counted(DATA, value)
    if isinstance(value, URL):
        return _counted(URL_TAG, value.text.encode("utf-8"))
    if isinstance(value, uuid.UUID):
        return _counted(UUID_TAG, value.bytes)
    if isinstance(value, Characters):
        return _counted(CHARACTERS, value.bitmap)
    if isinstance(value, dict):
        pairs = b"".join(flatten(key) + flatten(item) for key, item in value.items())
        return _word(DICTIONARY) + _word(len(value)) + pairs
    if isinstance(value, (list, Set)):
        return _word(SET if isinstance(value, Set) else ARRAY) + _word(len(value)) + b"".join(map(flatten, value))
    raise TypeError(f"{value!r} is no value")


class Malformed(Exception):
    pass


class _Reader:
    def __init__(self, content):
        self.content, self.cursor = content, 0

    def take(self, length):
        taken = self.content[self.cursor:self.cursor + length]
        if len(taken) != length:
            raise Malformed(f"{length} bytes wanted at {self.cursor} of {len(self.content)}")
        self.cursor += length
        return taken

    def word(self):
        return struct.unpack(">I", self.take(4))[0]

    def exactly(self, length):
        found = self.word()
        if found != length:
            raise Malformed(f"length {found} instead of {length} before {self.cursor}")
        return self.take(length)

    def number(self):
        kind = self.word()
        if kind not in NUMBER_FORMS:
            raise Malformed(f"number of type {kind} before {self.cursor}")
        return Number(kind, struct.unpack(NUMBER_FORMS[kind], self.exactly(struct.calcsize(NUMBER_FORMS[kind])))[0])

    def pairs(self):
        count = self.word()
        read = [(self.item(), self.item()) for _ in range(count)]
        pairs = dict(read)
        if len(pairs) != count:
            raise Malformed(f"a key stands twice among {read}")
        return pairs

    def items(self):
        return [self.item() for _ in range(self.word())]

    def boolean(self):
        byte = self.exactly(1)
        if byte not in (b"\0", b"\1"):
            raise Malformed(f"boolean {byte!r}")
        return byte == b"\1"

    def item(self):
        tag = self.word()
        kinds = {
            STRING: lambda: self.take(self.word()).decode("utf-8"), NUMBER: self.number, BOOLEAN: self.boolean,
            DICTIONARY: self.pairs, ARRAY: self.items, SET: lambda: Set(self.items()),
            DATA: lambda: self.take(self.word()), CHARACTERS: lambda: Characters(self.take(self.word())),
            URL_TAG: lambda: URL(self.take(self.word()).decode("utf-8")),
            UUID_TAG: lambda: uuid.UUID(bytes=self.exactly(16)),
        }
        if tag not in kinds:
            raise Malformed(f"tag {tag} before {self.cursor}")
        return kinds[tag]()


def resurrect(content):
    """The value that bytes are, to the last of them; None for no bytes."""
    if not content:
        return None
    reader = _Reader(content)
    value = reader.item()
    if reader.cursor != len(content):
        raise Malformed(f"{len(content) - reader.cursor} bytes follow the value")
    return value
