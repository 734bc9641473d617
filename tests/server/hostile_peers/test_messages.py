# SPDX-License-Identifier: MIT
# Messages that are not laid out as their rows say: by seeded mutation of good ones, and by construction.
import os
import random
import struct
import unittest

import wire
from hostile_case import HostileCase
from running_server import HUB

MUTATIONS = 10000
SEED = 20261122
HUB_ROWS = {wire.OBSERVE: "", wire.POST: "M"}

# What good messages say here concerns nobody, so that a mutation that is still good harms nobody either.
NOWHERE = wire.URL("file:///nowhere/in-this-file-system.ttf")
WORDS = {"W": 4, "U": NOWHERE, "N": "Nobody-Regular", "I": "12345678-1234-1234-1234-123456789abc"}
MEMORY = {13005: [{NOWHERE: {"KSFontNameAttribute": "Nobody"}}], 13007: [b"bookmark"],
          13018: [{"KSFontNameAttribute": "Nobody", "KSLDFontTraitsAttribute": {"KSLDFontWeightTrait": 0.5}}],
          13019: [{"KSFontFamilyAttribute": "Nobody"}, wire.Set(("KSFontNameAttribute",))],
          13020: [{"KSFontFamilyAttribute": "Nobody"}, wire.Set(("KSFontNameAttribute",))],
          13021: [wire.Set(("KSFontNameAttribute", "KSLDFontFileURLAttribute"))],
          13022: [[NOWHERE], wire.Set(("KSFontNameAttribute",))], 13024: [wire.Set(("KSFontNameAttribute",))],
          13030: [{"question": [1, 0.5, True, b"data"]}], wire.POST: [{"Nobody": {"hears": "this"}}]}


def good_arguments(identity, row):
    memory = iter(MEMORY.get(identity, [[NOWHERE]]))
    if identity == 13007:
        return [wire.URL("urn:nix"), wire.flat(next(memory)), 0, 1, 4]
    return [wire.flat(next(memory)) if kind == "M" else WORDS[kind] for kind in row]


def good_message(identity, row):
    """(its bytes, its memory)."""
    return wire.message(identity, row, good_arguments(identity, row))


class Mutator:
    """A packet that is changed in a few places; one seed always gives the same packets."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def flip(self, data):
        data[self.random.randrange(len(data))] ^= 1 << self.random.randrange(8)

    def replace(self, data):
        data[self.random.randrange(len(data))] = self.random.choice((0, 1, 0x7F, 0x80, 0xFF))

    def number(self, data):
        number = self.random.choice((0, 1, 4, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFFC, 0x10000000))
        at = self.random.randrange(max(1, len(data) // 4)) * 4
        data[at:at + 4] = struct.pack(self.random.choice("<>") + "I", number)

    def cut(self, data):
        del data[self.random.randrange(len(data)):]

    def insert(self, data):
        at = self.random.randrange(len(data) + 1)
        data[at:at] = self.random.randbytes(self.random.choice((1, 3, 4, 8, 24, 100)))

    def double(self, data):
        at = self.random.randrange(len(data))
        data[at:at] = data[at:at + 32]

    def mutate(self, data):
        data = bytearray(data)
        for _ in range(self.random.choice((1, 1, 1, 2, 5))):
            if data:
                self.random.choice((self.flip, self.replace, self.number, self.cut, self.insert, self.double))(data)
        return bytes(data)

    def packet(self, identity, row):
        """A good packet that was mutated: as a whole, or in one part, the sizes being right again."""
        message, memory = good_message(identity, row)
        part = self.random.randrange(4 if memory else 3)
        if part == 0:
            return self.mutate(wire.packet(message, memory))
        if part == 1:
            return wire.packet(self.mutate(message), memory)
        if part == 2:
            message = bytearray(self.mutate(message))
            message[4:8] = struct.pack("<I", len(message))
            return wire.packet(bytes(message), memory)
        at = self.random.randrange(len(memory))
        memory[at] = self.mutate(memory[at])
        arguments = good_arguments(identity, row)
        places = [place for place, kind in enumerate(row) if kind == "M"]
        arguments[places[at]] = memory[at]
        return wire.packet(wire.message(identity, row, arguments)[0], memory)


class Mutated(HostileCase):
    def answers_or_cuts_off(self, service, rows):
        """Every packet gets one reply, or an end; some descriptors go with some."""
        mutator, sent = Mutator(SEED), [os.open("/dev/null", os.O_RDONLY), wire.memory_file(bytes(4096))]
        identities = sorted(rows)
        with self.bystander() as bystander:
            for turn in range(MUTATIONS * len(rows) // (len(wire.ROWS) + len(HUB_ROWS))):
                identity = identities[turn % len(identities)]
                data = mutator.packet(identity, rows[identity])
                with self.server.peer(service) as peer:
                    peer.send(data, sent[:mutator.random.choice((0, 0, 0, 1, 2))])
                    reply = peer.receive()  # or the end; what hangs runs into the connection's patience
                    self.assertTrue(reply is None or reply.bits & ~wire.COMPLEX == wire.REPLY)
        for descriptor in sent:
            os.close(descriptor)
        self.assertGreater(bystander.count, 10)

    def test_messages_to_the_font_server_are_answered_or_cut_off(self):
        self.answers_or_cuts_off("com.orrery.FontServer", wire.ROWS)

    def test_messages_to_the_hub_are_answered_or_cut_off(self):
        self.answers_or_cuts_off(HUB, HUB_ROWS)


class OfEachRow(HostileCase):
    def refuses(self, identity, message, memory=(), is_cut_off=True):
        """By a code, and by the end of the connection."""
        with self.server.peer() as peer:
            peer.send(wire.packet(message, memory))
            reply = peer.receive()
            self.assertIsNotNone(reply, (identity, message))
            self.assertEqual((reply.id, reply.memory), (identity + 100, None))
            self.assertEqual(reply.words, (wire.BAD_ARGUMENTS if is_cut_off else wire.BAD_ID,))
            if is_cut_off:
                self.assertTrue(peer.is_cut_off())
            else:
                self.assertEqual(peer.find()[0], self.server.known)

    def resized(self, message):
        return message[:4] + struct.pack("<I", len(message)) + message[8:]

    def test_a_message_that_is_cut_short_is_refused(self):
        for identity, row in wire.ROWS.items():
            message, memory = good_message(identity, row)
            inline = 24 + (4 + 16 * len(memory) if memory else 0)
            for size in range(inline, len(message)):
                self.refuses(identity, self.resized(message[:size]), memory)

    def test_a_message_with_more_than_its_row_says_is_refused(self):
        for identity, row in wire.ROWS.items():
            message, memory = good_message(identity, row)
            for more in (b"\0", bytes(4), bytes(1000)):
                self.refuses(identity, self.resized(message + more), memory)

    def test_another_way_to_write_numbers_is_refused(self):
        for identity, row in wire.ROWS.items():
            message, memory = good_message(identity, row)
            self.refuses(identity, message.replace(wire.NUMBERS, bytes((1, 0, 0, 0, 0, 0, 0, 0)), 1), memory)

    def test_memory_that_the_row_does_not_have_is_refused(self):
        for identity, row in wire.ROWS.items():
            if row.count("M") < 4:
                message, memory = wire.message(identity, "M" + row, [b"more", *good_arguments(identity, row)])
                self.refuses(identity, message, memory)

    def test_an_id_that_nobody_has_is_answered_by_a_code_and_no_more(self):
        for identity in (0, 71, 12999, 13009, 13012, 13025, 13031, 13100, wire.TELL, 0x7FFFFFFF):
            self.refuses(identity, *wire.message(identity, "W", [1]), is_cut_off=False)

    def test_texts_are_no_longer_than_their_rows_say_and_end_with_a_zero(self):
        for identity, row in wire.ROWS.items():
            for place, kind in enumerate(row):
                for wrong in (b"x" * 2048, b"x" * 3500) if kind in "UN" else ():
                    arguments = good_arguments(identity, row)
                    arguments[place] = wrong
                    self.refuses(identity, *wire.message(identity, row, arguments))
        message, _ = good_message(13017, "NW")
        endless = message.replace(b"Nobody-Regular\0", b"Nobody-Regular!")
        self.refuses(13017, endless)
        for count in (0, 4, 0x7FFFFFFF, 0xFFFFFFFF):
            self.refuses(13017, message.replace(struct.pack("<II", 0, 15), struct.pack("<II", 0, count)))


if __name__ == "__main__":
    unittest.main()
