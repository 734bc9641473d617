# SPDX-License-Identifier: MIT
# The messages between the library and the font server, written down once more and from their description alone: a
# table of the rows, the bytes that a request and a reply of each must have, and what holds for every packet.
import struct
from dataclasses import dataclass

from flattened import flatten

# ---- the rows: what each asks, in order, and what kind of reply comes ----------------------------------------------
WORD, URL_TEXT, NAME_TEXT, UUID_TEXT, MEMORY = "word", "URL", "name", "UUID", "memory"
CODE, SCALAR, TEXT, VALUE, BATCH = "code", "scalar", "text", "value", "batch"

ROWS = {
    13000: ("Rendezvous", (), VALUE),
    13001: ("AddFontProvider", (UUID_TEXT,), CODE),
    13002: ("RemoveFontProvider", (UUID_TEXT,), CODE),
    13003: ("GetFontProviders", (), VALUE),
    13004: ("GetFontScope", (URL_TEXT,), SCALAR),
    13005: ("RegisterFonts", (MEMORY, WORD, WORD), BATCH),
    13006: ("UnregisterFonts", (MEMORY, WORD), BATCH),
    13007: ("RegisterFontDirectory", (URL_TEXT, MEMORY, WORD, WORD, WORD), SCALAR),
    13008: ("UnregisterFontDirectory", (URL_TEXT, WORD), SCALAR),
    13010: ("EnableFont", (URL_TEXT,), SCALAR),
    13011: ("DisableFont", (URL_TEXT,), SCALAR),
    13014: ("CopyAvailableFontNames", (WORD,), VALUE),
    13015: ("CopyAvailableFontFamilyNames", (WORD,), VALUE),
    13016: ("CopyAvailableFonts", (WORD,), VALUE),
    13017: ("CopyFontWithName", (NAME_TEXT, WORD), TEXT),
    13018: ("CopyFontsMatchingRequest", (WORD, MEMORY), VALUE),
    13019: ("CopyPropertiesForFontsMatchingRequest", (MEMORY, MEMORY, WORD), VALUE),
    13020: ("CopyPropertiesForFontMatchingRequest", (MEMORY, MEMORY, WORD), VALUE),
    13021: ("CopyPropertiesForAllFonts", (MEMORY, WORD), VALUE),
    13022: ("CopyPropertiesForFonts", (MEMORY, MEMORY), VALUE),
    13023: ("CopyPropertyForFonts", (MEMORY, NAME_TEXT), VALUE),
    13024: ("CopyPropertiesForFont", (URL_TEXT, MEMORY), VALUE),
    13026: ("CopyFontForCharacter", (WORD, WORD, WORD), TEXT),
    13027: ("EnableFonts", (MEMORY, WORD), BATCH),
    13028: ("DisableFonts", (MEMORY, WORD), BATCH),
    13029: ("CopyFamilyNamesForLanguage", (NAME_TEXT, WORD, WORD), VALUE),
    13030: ("ExperimentalDataFunnel", (MEMORY, WORD), VALUE),
}
UNSERVED = (13009, 13012, 13013, 13025)  # ids among the rows' that nobody sends
LONGEST_URL, LONGEST_NAME = 2047, 1023   # bytes of text, without the zero
BAD_ID, BAD_ARGUMENTS = -303, -304

# ---- the pieces of a message -----------------------------------------------------------------------------------------
REQUEST_BITS, REPLY_BITS, COMPLEX = 0x1513, 0x12, 0x80000000
NDR = bytes([0, 0, 0, 0, 1, 0, 0, 0])
NO_PORTS = (0, 0xFFFFFFFF)


def word(number):
    return struct.pack("<I", number)


def padded(content):
    return content + bytes(-len(content) % 4)


def text(content):
    terminated = content.encode("utf-8") + b"\0"
    return word(0) + word(len(terminated)) + padded(terminated)


def descriptor(size):
    return bytes(8) + bytes([1, 1, 0, 1]) + word(size)


def message(bits, remote, local, number, memory_sizes, inline):
    """A whole message, its size in its header."""
    body = b""
    if memory_sizes:
        bits |= COMPLEX
        body = word(len(memory_sizes)) + b"".join(map(descriptor, memory_sizes))
    body += NDR + inline
    return struct.pack("<4I2i", bits, 24 + len(body), remote, local, 0, number) + body


def request(number, arguments, remote, local):
    """The request of a row. Memory is given as the value that it holds."""
    kinds = ROWS[number][1]
    assert len(kinds) == len(arguments), f"{number} has {len(kinds)} arguments"
    inline, sizes = b"", []
    for kind, argument in zip(kinds, arguments):
        if kind == WORD:
            inline += word(argument)
        elif kind == UUID_TEXT:
            inline += padded(argument.encode("ascii") + b"\0")
        elif kind == MEMORY:
            sizes.append(len(flatten(argument)))
            inline += word(sizes[-1])
        else:
            inline += text(argument)
    return message(REQUEST_BITS, remote, local, number, sizes, inline)


def reply(number, port, result):
    """The reply of a row to a port: a word, a text, a value, or (value, word); nothing for a code, which is 0."""
    kind = ROWS[number][2]
    code, sizes = word(0), []
    if kind == CODE:
        inline = code
    elif kind == SCALAR:
        inline = code + word(result)
    elif kind == TEXT:
        inline = code + text(result)
    else:
        value, after = (result[0], word(result[1])) if kind == BATCH else (result, b"")
        sizes = [len(flatten(value))]
        inline = word(sizes[0]) + after
    return message(REPLY_BITS, port, 0, number + 100, sizes, inline)


def error_reply(number, port, code):
    return message(REPLY_BITS, port, 0, number + 100, [], struct.pack("<i", code))


# ---- packets ---------------------------------------------------------------------------------------------------------
PACKET_HEADER = struct.Struct("<4s3IQ")
MAGIC = b"VLM1"
INLINE_LIMIT = 64 * 1024  # memory of more bytes goes as a memory file
SEALS = 0x2 | 0x4 | 0x8   # F_SEAL_SHRINK, F_SEAL_GROW, F_SEAL_WRITE


def packet(content, memories=(), life=0):
    """A packet with its memory behind it, as a sender makes one."""
    here = (1 << len(memories)) - 1
    return PACKET_HEADER.pack(MAGIC, len(content), here, 0, life) + content + b"".join(memories)


@dataclass(frozen=True)
class Parsed:
    """What a packet brought: its message, the bytes of each memory, and where each travelled."""
    life: int
    message: bytes
    memories: tuple
    in_packet: tuple

    @property
    def header(self):
        return struct.unpack_from("<4I2i", self.message)

    @property
    def number(self):
        return self.header[5]


def parse(case, content, files):
    """Takes a packet apart and has the test `case` check what holds for all of them. `files` are the (bytes, seals)
    of the memory files that came with it, in order."""
    magic, size, here, reserved, life = PACKET_HEADER.unpack_from(content)
    case.assertEqual((magic, reserved), (MAGIC, 0))
    found = content[PACKET_HEADER.size:PACKET_HEADER.size + size]
    case.assertEqual(len(found), size)
    case.assertEqual(struct.unpack_from("<I", found, 4)[0], size)
    sizes = _memory_sizes(found)
    case.assertEqual(here >> len(sizes), 0, "a bit for memory that is not there")
    cursor, memories, files = PACKET_HEADER.size + size, [], list(files)
    for index, length in enumerate(sizes):
        if here >> index & 1:
            memories.append(content[cursor:cursor + length])
            cursor += length
        else:
            case.assertTrue(files, "a memory file is missing")
            memories.append(_of_file(case, *files.pop(0), length))
    case.assertEqual(cursor, len(content), "the packet's sizes add up to its end")
    case.assertEqual(files, [], "memory files that nobody speaks of")
    case.assertEqual([len(memory) for memory in memories], sizes)
    in_packet = tuple(bool(here >> index & 1) for index in range(len(sizes)))
    case.assertEqual(in_packet, tuple(length <= INLINE_LIMIT for length in sizes), "where memory travels")
    return Parsed(life, found, tuple(memories), in_packet)


def _memory_sizes(content):
    if not struct.unpack_from("<I", content)[0] & COMPLEX:
        return []
    count = struct.unpack_from("<I", content, 24)[0]
    return [struct.unpack_from("<I", content, 28 + 16 * index + 12)[0] for index in range(count)]


def _of_file(case, content, seals, length):
    """A memory file has whole pages, of which the last is filled up with zeros, or as many bytes as it says."""
    case.assertEqual(seals & SEALS, SEALS, "a memory file is sealed")
    case.assertIn(len(content), (length, length + -length % 4096))
    case.assertEqual(content[length:].strip(b"\0"), b"")
    return content[:length]
