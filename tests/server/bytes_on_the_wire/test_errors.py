#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# What the server says to messages that no library sends: requests written here, and the 36 bytes of an error.
import unittest

import layout
from flattened import URL, flatten, resurrect
from layout import BAD_ARGUMENTS, BAD_ID, REQUEST_BITS, message, text, word
from tap import DEADLINE, connect, receive, service_path
from wire_case import SESSION, SHARED, WireCase, keyed

SERVER_PORT, REPLY_PORT = 0x0A0B0C0D, 0x01020304


class RawCase(WireCase):
    def setUp(self):
        super().setUp()
        self.url_of_font = self.url(self.font("Abcd"))

    def answer(self, content, *memories):
        """The reply to a message that is sent on a connection of its own."""
        with connect(service_path(self.server_runtime)) as connection:
            connection.settimeout(DEADLINE)
            connection.send(layout.packet(content, memories))
            reply, files = receive(connection)
        self.assertEqual(files, [])
        return layout.parse(self, reply, [])

    def assert_error(self, code, number, content, *memories):
        reply = self.answer(content, *memories)
        self.assertEqual(reply.message.hex(), layout.error_reply(number, REPLY_PORT, code).hex())
        self.assertEqual(len(reply.message), 36)

    def raw(self, number, inline=b"", sizes=()):
        return message(REQUEST_BITS, SERVER_PORT, REPLY_PORT, number, list(sizes), inline)


class Ids(RawCase):
    def test_that_nobody_sends_are_not_served(self):
        for number in layout.UNSERVED:
            with self.subTest(number):
                self.assert_error(BAD_ID, number, self.raw(number))

    def test_that_nobody_knows_are_not_served(self):
        for number in (0, 1, 71, 12999, 13031, 13099, 13100, 13117, 1 << 30):
            with self.subTest(number):
                self.assert_error(BAD_ID, number, self.raw(number))

    def test_that_are_not_served_are_not_whatever_is_asked(self):
        memory = flatten(keyed(FamilyName="Abcd"))
        for number in (*layout.UNSERVED, 13031):
            with self.subTest(number):
                self.assert_error(BAD_ID, number, self.raw(number, word(SHARED)))
                self.assert_error(BAD_ID, number, self.raw(number, text("Abcd") + word(SHARED)))
                inline = word(SHARED) + word(len(memory))
                self.assert_error(BAD_ID, number, self.raw(number, inline, [len(memory)]), memory)


class Requests(RawCase):
    """Each that is wrong in one way, beside one that is right: the error is of what is wrong."""

    def assert_right(self, number, arguments, result):
        reply = self.answer(layout.request(number, arguments, SERVER_PORT, REPLY_PORT),
                            *(flatten(each) for each, kind in zip(arguments, layout.ROWS[number][1])
                              if kind == layout.MEMORY))
        self.assertEqual(reply.message.hex(), layout.reply(number, REPLY_PORT, result).hex())
        return reply

    def test_of_words_have_as_many_as_their_row(self):
        self.assert_right(13014, [SHARED], ["Abcd-Regular"])
        for inline in (b"", word(SHARED)[:3], word(SHARED) * 2):
            with self.subTest(inline=inline):
                self.assert_error(BAD_ARGUMENTS, 13014, self.raw(13014, inline))

    def test_of_a_text_say_how_long_it_is(self):
        self.assert_right(13004, [self.url_of_font], SESSION)
        for wrong, inline in (("count too high", word(0) + word(9) + b"Abcd\0\0\0\0"),
                              ("count too low", word(0) + word(4) + b"Abcdefg\0"),
                              ("no count", word(0)), ("count of nothing", word(0) + word(0)),
                              ("no zero at its end", word(0) + word(4) + b"Abcd"),
                              ("not filled up", word(0) + word(5) + b"Abcd\0"),
                              ("an offset", word(4) + word(5) + b"Abcd\0\0\0\0")):
            with self.subTest(wrong):
                self.assert_error(BAD_ARGUMENTS, 13004, self.raw(13004, inline))

    def test_of_a_text_keep_to_its_limit(self):
        for number, longest, result in ((13004, layout.LONGEST_URL, 0), (13010, layout.LONGEST_URL, 0),
                                        (13011, layout.LONGEST_URL, 0)):
            with self.subTest(number):
                self.assert_right(number, ["u" * longest], result)
                self.assert_error(BAD_ARGUMENTS, number, self.raw(number, text("u" * (longest + 1))))
        self.assert_right(13017, ["n" * layout.LONGEST_NAME, SHARED], "")
        self.assert_error(BAD_ARGUMENTS, 13017, self.raw(13017, text("n" * (layout.LONGEST_NAME + 1)) + word(6)))

    def test_of_memory_say_its_length_in_both_places(self):
        request = keyed(FamilyName="Abcd")
        memory = flatten(request)
        reply = self.assert_right(13018, [SHARED, request], [URL(self.url_of_font)])
        self.assertEqual(resurrect(reply.memories[0]), [URL(self.url_of_font)])
        size = len(memory)
        self.assert_error(BAD_ARGUMENTS, 13018, self.raw(13018, word(SHARED) + word(size - 1), [size]), memory)
        self.assert_error(BAD_ARGUMENTS, 13018, self.raw(13018, word(SHARED) + word(size)))
        self.assert_error(BAD_ARGUMENTS, 13018, self.raw(13018, word(SHARED) + word(size), [size, size]), memory,
                          memory)

    def test_that_ask_nothing_have_no_arguments(self):
        self.assert_right(13003, [], [])
        self.assert_error(BAD_ARGUMENTS, 13003, self.raw(13003, word(0)))

    def test_of_a_UUID_have_all_of_it(self):
        name = "0D98B1D4-DCEC-472F-A595-BF91C266BE65"
        self.assert_right(13001, [name], None)
        for wrong in (name[:-1], name + "0"):
            with self.subTest(wrong):
                self.assert_error(BAD_ARGUMENTS, 13001, self.raw(13001, text(wrong)[8:]))


if __name__ == "__main__":
    unittest.main()
