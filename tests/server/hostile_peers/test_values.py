# SPDX-License-Identifier: MIT
# Messages that are laid out well, with values that are not: broken ones, and whole ones of the wrong kinds.
import os
import struct
import unittest

import wire
from hostile_case import HostileCase
from running_server import FONTS, HUB
from test_messages import HUB_ROWS, good_arguments
from wire import URL, Flat, Set, flat, word

NULL = Flat(word(0))  # a tag that nobody knows
NAME, FAMILY, TRAITS, WEIGHT = ("KSFontNameAttribute", "KSFontFamilyAttribute", "KSLDFontTraitsAttribute",
                                "KSLDFontWeightTrait")
LANGUAGES, CHARACTERS, FILE = ("KSLDFontLanguagesAttribute", "KSLDFontCharacterSetAttribute",
                               "KSLDFontFileURLAttribute")
SESSION = 4
NESTED = word(17) + word(1)
WITH_PAIRS = word(16) + word(1) + flat("key")

BROKEN = {
    "nothing": b"", "half a word": b"\0\0", "a tag alone": word(17), "an unknown tag": word(99) + word(1),
    "a text that is longer than the memory": word(7) + word(100) + b"x",
    "a negative length": word(7) + word(-1), "an array of more than there is": word(17) + word(5) + flat("x"),
    "an array of a billion": word(17) + word(10 ** 9), "an array of the most": word(17) + word(0x7FFFFFFF),
    "an array of less than none": word(17) + word(0x80000000), "a set of a billion": word(256) + word(10 ** 9),
    "a dictionary of a billion": word(16) + word(10 ** 9) + flat("x") * 4,
    "nesting to the bound": NESTED * 64 + flat("x"), "nesting beyond the bound": NESTED * 65 + flat("x"),
    "nesting without end": NESTED * 8000, "nested dictionaries without end": WITH_PAIRS * 4000,
    "a number of a size that is none": word(22) + word(3) + word(3) + b"xyz",
    "a number of a type that is none": word(22) + word(77) + word(8) + bytes(8),
    "no Unicode": word(7) + word(4) + b"\xed\xa0\x80\xff", "a short bitmap": word(27) + word(5) + b"abcde",
    "a short UUID": word(258) + word(16) + b"short", "no URL": word(257) + word(3) + b"x y",
}
ODD = {
    "numbers": [1, 2.5, float("nan"), -1], "nothings": [NULL] * 100, "a number": 7, "a text": "text",
    "arrays": [[], [[]], [[1]]], "dictionaries": [{}, {"x": {}}], "sets": [Set(), Set((NULL, 1, "x"))],
    "relative URLs": [URL("x.ttf"), URL("/x.ttf"), URL("//x/y.ttf")], "empty texts": ["", "\0", "\0\0"],
    "URLs of other schemes": [URL("http://x/y.ttf"), URL("data:,x"), URL("file:"), URL("x:")],
    "odd files": [URL("file:///%00"), URL("file:///%ff%fe"), URL("file:///a#" + "b" * 9000),
                  URL("file:///" + "a/" * 5000)],
    "fragments": [URL(f"file:///nowhere.ttf#{odd}") for odd in (
        "", "#", "%", "=", "postscript-name", "postscript-name=%00", "a=b&c=d&" * 500)],
    "a dictionary of numbers": {1: 2, 2.5: 3, True: False},
    "odd keys": {b"data": 1, "": "", URL("file:///x"): []},
    "numbers for texts": {NAME: 1, FAMILY: 2.5}, "arrays for texts": {NAME: ["x", 1, NULL], FAMILY: [[["x"]]]},
    "texts for traits": {TRAITS: "x"}, "odd traits": {TRAITS: {WEIGHT: "x", "x": 1, 3: 4}},
    "endless traits": {TRAITS: {WEIGHT: float("inf")}}, "no traits": {TRAITS: {WEIGHT: float("nan")}},
    "numbers for characters": {CHARACTERS: 7}, "numbers for languages": {LANGUAGES: [1, 2]},
    "a set for a URL": {FILE: Set((1,))}, "a number for a URL": {FILE: 1}, "a dictionary of nothings": {"x": NULL},
    "many texts": [str(number) for number in range(2000)],
    "many pairs": {number: str(number) for number in range(2000)},
}


class Values(HostileCase):
    def ask_with(self, service, identity, row, odd):
        """With the value in each place where the message has one; the reply, or what else, is an answer."""
        for place in (place for place, kind in enumerate(row) if kind == "M"):
            arguments = good_arguments(identity, row)
            arguments[place] = odd
            with self.server.peer(service) as peer:
                reply = peer.ask(identity, *arguments)
                if reply:  # who is asked such a thing may as well leave
                    self.assertEqual(reply.id, identity + 100)

    def answers_all(self, values):
        with self.bystander():
            for name, value in values.items():
                with self.subTest(name):
                    for service, rows in ((FONTS, wire.ROWS), (HUB, HUB_ROWS)):
                        for identity, row in rows.items():
                            self.ask_with(service, identity, row, value)

    def test_that_are_broken_harm_nobody(self):
        self.answers_all(BROKEN)

    def test_of_the_wrong_kinds_harm_nobody(self):
        self.answers_all({name: flat(value) for name, value in ODD.items()})

    def test_words_of_every_size_harm_nobody(self):
        words = (0, 1, 0x41, 0xD800, 0x10FFFF, 0x110000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF)
        with self.bystander(), self.server.peer() as peer:
            for identity in (13014, 13015, 13016, 13026):
                for number in words:
                    arguments = [number] + [number] * (len(wire.ROWS[identity]) - 1)
                    self.assertEqual(peer.ask(identity, *arguments).id, identity + 100)

    def test_texts_of_every_kind_harm_nobody(self):
        texts = ("", "\x01", b"\xff\xfe", b"\xed\xa0\x80", "x" * 1000, "%", "file:", "http://x", "urn:x", "//", "#")
        with self.bystander(), self.server.peer() as peer:
            for identity, row in wire.ROWS.items():
                for place, kind in enumerate(row):
                    for text in texts if kind in "UN" else ():
                        arguments = good_arguments(identity, row)
                        arguments[place] = text
                        self.assertEqual(peer.ask(identity, *arguments).id, identity + 100)


class Costly(HostileCase):
    """What costs its sender little must not cost others much."""

    more_memory = 48

    def ask_with_file(self, identity, head, size, *more):
        """Asks with a sealed file of that size, of which all but the beginning is zeros, and takes no room."""
        descriptor = wire.memory_file(head, size=size)
        row = wire.ROWS[identity]
        body = struct.pack("<IQBBBBI", 1, 0, 1, 1, 0, 1, size) + wire.NUMBERS
        body += b"".join(struct.pack("<I", size) if kind == "M" else wire.text(argument) if kind == "N" else
                         struct.pack("<I", argument) for kind, argument in zip(row, ("", *more)))
        header = struct.pack("<6I", wire.SIMPLE | wire.COMPLEX, 24 + len(body), 7, 9, 0, identity)
        with self.server.peer() as peer:
            peer.send(wire.packet(header + body), [descriptor])
            peer.receive()
        os.close(descriptor)

    def test_files_of_nothing_are_not_counted_for_ever(self):
        size = 256 << 20
        heads = {"zeros": b"\0", "nothings": word(17) + word(size // 4 - 2), "a text": word(7) + word(size - 8),
                 "data": word(18) + word(size - 8), "a set of nothings": word(256) + word(size // 4 - 2),
                 "pairs of nothings": word(16) + word(size // 8 - 2)}
        for name, head in heads.items():
            with self.subTest(name), self.bystander():
                self.ask_with_file(13023, head, size, NAME)
                self.ask_with_file(13027, head, size, 4)
        self.is_as_before()

    def test_keys_that_nobody_knows_are_not_remembered(self):
        with self.bystander(), self.server.peer() as peer:
            for number in range(63):
                peer.ask(13021, flat(Set((NAME, f"{number:08}" + "k" * (1 << 20)))), 4)

    def test_one_font_by_many_names_is_not_told_of_for_ever(self):
        urls = [URL(f"{self.server.known}?{number}") for number in range(20000)]
        with self.bystander(), self.server.peer() as peer:
            peer.ask(13022, flat(urls), flat(Set((NAME, CHARACTERS, LANGUAGES))))
            peer.ask(13023, flat(urls), CHARACTERS)

    def test_many_urls_hold_nobody_up(self):
        urls = flat([URL("file:///x.tt")] * 100000)
        with self.bystander(), self.server.peer() as peer:
            for identity, more in ((13022, flat(Set((NAME,)))), (13023, NAME), (13027, 4), (13006, 4)):
                peer.ask(identity, urls, more)

    def test_many_pairs_hold_nobody_up(self):
        empty, count = flat({}), 1200000
        pairs = word(16) + word(count) + b"".join(word(7) + word(8) + b"%08x" % key + empty for key in range(count))
        with self.bystander():
            for identity, more in ((13005, (SESSION, 0)), (13030, (SESSION,))):
                with self.server.peer() as peer:
                    peer.ask(identity, pairs, *more)

    def test_keys_that_were_made_to_collide_hold_nobody_up(self):
        many = flat({number << 32: 0 for number in range(100000)})
        with self.bystander(), self.server.peer() as peer:
            peer.ask(13018, 6, many)
            peer.ask(13030, many, 4)

    def test_texts_that_nobody_has_are_forgotten(self):
        with self.bystander(), self.server.peer() as peer:
            for turn in range(100):
                peer.ask(13023, flat([f"{turn}-{number}" for number in range(1000)]), f"key {turn}")
                peer.ask(13017, f"Nobody-{turn}", 6)


if __name__ == "__main__":
    unittest.main()
