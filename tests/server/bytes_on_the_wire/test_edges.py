#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Where messages end: how long a text may be, how it is filled up, nothing in a request and nothing in a reply, memory
# that is too large for a packet, and scopes as they travel.
import unittest

from flattened import URL, Characters, flatten, int32, int64
from layout import INLINE_LIMIT, LONGEST_NAME, LONGEST_URL
from wire_case import (DURABLE, INNER_CLIENT, KEYS, PROCESS, SESSION, SHARED, SILENT, USER, WireCase, keyed, keys,
                       lines)


class Texts(WireCase):
    def path_for_url(self, length, name):
        """A path with folders as they are needed for a URL of so many bytes."""
        left = length - len(self.url(self.fonts)) - len(name) - 1
        path = self.fonts
        while left:
            piece = left - 1 if left <= 200 else min(200, left - 3)
            path /= "f" * piece
            left -= piece + 1
        path /= name
        self.assertEqual(len(self.url(path)), length)
        return path

    def test_of_a_font_URL_have_at_most_2047_bytes(self):
        fits, too_long = (self.url(self.font(path.stem, path.name, path.parent)) for path in
                          (self.path_for_url(LONGEST_URL, "Fits.ttf"), self.path_for_url(LONGEST_URL + 1, "Long.ttf")))
        for number, verb, arguments, result in ((13004, "scope", (), SESSION),
                                                (13011, "disable-one", (SESSION | SILENT,), 1),
                                                (13010, "enable-one", (SESSION | SILENT,), 1)):
            with self.subTest(verb):
                self.ask(verb, fits, *arguments)
                self.assert_said(number, [fits], result)
                self.ask(verb, too_long, *arguments)
                self.assertEqual(self.numbers_said(), [])
        self.assertEqual(self.ask("scope", too_long), 0)
        self.assertEqual(self.ask("properties-of-one", fits, "Name", SESSION), keyed(Name="Fits-Regular"))
        self.assert_said(13024, [fits, keys("Name")], keyed(Name="Fits-Regular"))
        self.assertIsNone(self.ask("properties-of-one", too_long, "Name", SESSION))
        self.assertEqual(self.numbers_said(), [])

    def test_of_a_folder_URL_have_at_most_2047_bytes(self):
        fits, too_long = (self.path_for_url(length - 1, "folder") for length in (LONGEST_URL, LONGEST_URL + 1))
        for folder in (fits, too_long):
            self.make_font("Seen", folder=folder)
        for number, verb, words in ((13007, "register-directory", (0, 0, USER)),
                                    (13008, "unregister-directory", (USER,))):
            with self.subTest(verb):
                self.assertEqual(self.ask(verb, f"{self.url(fits)}/", *words), 1)
                self.assertEqual(self.numbers_said(), [number])
                text = self.said()[-1][0].message.index(self.url(fits).encode() + b"/\0") - 8
                self.assertEqual(self.said()[-1][0].message[text:text + 8].hex(), "0000000000080000")
                self.assertEqual(self.ask(verb, f"{self.url(too_long)}/", *words), 0)
                self.assertEqual(self.numbers_said(), [])

    def test_of_a_URL_that_is_found_have_at_most_2047_bytes_and_are_nothing_beyond(self):
        for length, name in ((LONGEST_URL, "Fits.ttf"), (LONGEST_URL + 1, "Long.ttf")):
            path = self.path_for_url(length, name)
            self.font(path.stem, path.name, path.parent)
            found = self.ask("font-named", path.stem, SHARED)
            fits = length == LONGEST_URL
            self.assertEqual(found, URL(self.url(path)) if fits else None)
            self.assert_said(13017, [path.stem, SHARED], self.url(path) if fits else "")

    def test_of_a_name_have_at_most_1023_bytes(self):
        fits, too_long = "N" * LONGEST_NAME, "N" * (LONGEST_NAME + 1)
        url = self.url(self.font(fits, "Fits.ttf"))
        self.font(too_long, "Long.ttf")
        self.assertEqual(self.ask("font-named", fits, USER), URL(url))
        self.assert_said(13017, [fits, SHARED], url)
        self.assertIsNone(self.ask("font-named", too_long, USER))
        self.assertEqual(self.numbers_said(), [])

    def test_of_a_name_are_counted_in_bytes(self):
        fits, too_long = "\u00e4" * (LONGEST_NAME // 2) + "N", "\u00e4" * (LONGEST_NAME // 2 + 1)
        self.assertIsNone(self.ask("font-named", fits, USER))
        self.assert_said(13017, [fits, SHARED], "")
        self.assertIsNone(self.ask("font-named", too_long, USER))
        self.assertEqual(self.numbers_said(), [])

    def test_of_a_key_have_at_most_1023_bytes(self):
        url = self.url(self.font("Abcd"))
        fits, too_long = "K" * LONGEST_NAME, "K" * (LONGEST_NAME + 1)
        self.assertIsNone(self.ask("property-of-some", url, fits, SHARED))
        self.assert_said(13023, [[URL(url)], fits], None)
        self.assertIsNone(self.ask("property-of-some", url, too_long, SHARED))
        self.assertEqual(self.numbers_said(), [])

    def test_of_a_language_have_at_most_1023_bytes(self):
        self.font("Small", characters=(0x61, 0x7A))
        fits, too_long = "l" * LONGEST_NAME, "l" * (LONGEST_NAME + 1)
        self.ask("families-for-language", fits, SHARED, 0)
        self.assert_said(13029, [fits, USER, 0], [])
        self.ask("families-for-language", too_long, SHARED, 0)
        self.assertEqual(self.numbers_said(), [])

    def test_are_filled_up_to_words_from_every_remainder(self):
        for family in ("A", "Ab", "Abc", "Abcd", "Abcde"):
            with self.subTest(family):
                url = self.url(self.font(family))
                self.assertEqual(self.ask("font-named", family, SHARED), URL(url))
                request, reply = self.assert_said(13017, [family, SHARED], url)
                self.assertEqual((len(request.message) % 4, len(reply.message) % 4), (0, 0))


class Nothing(WireCase):
    def test_in_an_array_that_is_sent_is_eight_bytes(self):
        self.font("Abcd")
        self.assertIsNone(self.ask("properties-of-some", "", "Name", SHARED))
        request, _ = self.assert_said(13022, [[], keys("Name")], None)
        self.assertEqual(request.memories[0].hex(), "0000001100000000")

    def test_fit_for_a_request_is_an_empty_array(self):
        self.font("Abcd")
        self.assertIsNone(self.ask("best-font", "FamilyName=None", SHARED))
        _, reply = self.assert_said(13018, [SHARED, keyed(FamilyName="None")], [])
        self.assertEqual(len(reply.message), 56)

    def test_in_a_listing_is_an_empty_array(self):
        for number, verb in ((13014, "names"), (13015, "families"), (13016, "urls")):
            with self.subTest(verb):
                self.assertIsNone(self.ask(verb, USER))
                self.assert_said(number, [USER], [])

    def test_of_a_name_is_an_empty_text(self):
        self.assertIsNone(self.ask("font-named", "None", SHARED))
        _, reply = self.assert_said(13017, ["None", SHARED], "")
        self.assertEqual(len(reply.message), 48)

    def test_for_a_character_is_an_empty_text(self):
        self.font("Abcd")
        self.assertIsNone(self.ask("font-for-character", 0x10FFFD, SHARED, 0))
        self.assert_said(13026, [0x10FFFD, USER, 0], "")

    def test_known_of_a_font_is_no_memory(self):
        url = self.url(self.fonts / "none.ttf")
        self.assertIsNone(self.ask("properties-of-one", url, "Name", SHARED))
        _, reply = self.assert_said(13024, [url, keys("Name")], None)
        self.assertEqual(len(reply.message), 56)

    def test_to_register_is_not_sent(self):
        path = self.fonts / "none.ttf"
        path.write_bytes(b"this is no font")
        self.assertEqual(self.ask("register", self.url(path), 0, SESSION), [0, [URL(self.url(path))]])
        self.assertNotIn(13005, self.numbers_said())

    def test_that_failed_is_no_memory(self):
        url = self.url(self.fonts / "none.ttf")  # what is not registered is no failure
        self.ask("unregister", url, SESSION | SILENT)
        _, reply = self.assert_said(13006, [[URL(url)], 0], (None, 1))
        self.assertEqual(len(reply.message), 60)

    def test_that_changed_is_no_memory(self):
        url = self.url(self.fonts / "none.ttf")
        self.ask("disable", url, SESSION | SILENT)
        self.assert_said(13028, [[URL(url)], 0], (None, 0))


class Memory(WireCase):
    def full_name(self, size):
        """A full name with which a request for it has so many bytes."""
        name = "n" * (size - len(flatten(keyed(FullName=""))))
        self.assertEqual(len(flatten(keyed(FullName=name))), size)
        return name

    def test_of_a_request_goes_in_the_packet_up_to_64_KiB_and_by_file_beyond(self):
        self.font("Abcd")
        for size in (INLINE_LIMIT, INLINE_LIMIT + 1):
            with self.subTest(size):
                name = self.full_name(size)
                self.assertIsNone(self.ask("best-font", f"FullName={name}", SHARED))
                request, _ = self.assert_said(13018, [SHARED, keyed(FullName=name)], [])
                self.assertEqual(request.in_packet, (size == INLINE_LIMIT,))

    def test_of_one_argument_goes_by_file_when_that_of_another_goes_in_the_packet(self):
        url = self.url(self.font("Abcd"))
        asked = [url, *(f"{url}{number:04}{'x' * 100}" for number in range(700))]
        found = {URL(url): keyed(Name="Abcd-Regular")}
        self.assertEqual(self.ask("properties-of-some", lines(asked), "Name", SHARED), found)
        request, _ = self.assert_said(13022, [[URL(each) for each in asked], keys("Name")], found)
        self.assertEqual(request.in_packet, (False, True))

    def test_of_a_reply_goes_by_file_beyond_64_KiB(self):
        families = [f"Family{number}" for number in range(8)]
        self.register(*map(self.make_font, families))
        letters = Characters.of(range(0x41, 0x5B))
        described = [keyed(CharacterSet=letters, FamilyName=family) for family in families]
        self.assertEqual(self.ask("properties-of-all", "CharacterSet\nFamilyName", SHARED), described)
        _, reply = self.assert_said(13021, [keys("CharacterSet", "FamilyName"), USER], described)
        self.assertEqual(reply.in_packet, (False,))


class Scopes(WireCase):
    def test_of_lookups_are_always_6(self):
        url = self.url(self.font("Abcd"))
        request = keyed(FamilyName="Abcd")
        for scope in (USER, SESSION, SHARED, SHARED | DURABLE | PROCESS):
            for verb, asked, number, arguments, result in (
                    ("font-for-name", "Abcd", 13017, ["Abcd", SHARED], url),
                    ("font-for-request", "FamilyName=Abcd", 13018, [SHARED, request], [URL(url)]),
                    ("fonts-for-request", "FamilyName=Abcd", 13018, [SHARED, request], [URL(url)]),
                    ("fonts-for-url", url, 13018, [SHARED, keyed(URL=URL(url))], [URL(url)])):
                with self.subTest(verb, scope=scope):
                    single = verb in ("font-for-name", "font-for-request")
                    found = self.ask(verb, asked, scope, program=INNER_CLIENT)
                    self.assertEqual(found, URL(url) if single else [URL(url)])
                    self.assert_said(number, arguments, result)

    def test_of_other_messages_keep_three_bits(self):
        self.font("Abcd")
        for scope, sent in ((USER, 2), (SESSION, 0), (SHARED, 2), (0xBFFFFFFE | SILENT, USER | DURABLE),
                            (SHARED | DURABLE | PROCESS, USER | DURABLE | PROCESS)):
            with self.subTest(scope=scope):
                self.assertEqual(self.ask("families", scope), ["Abcd"])
                self.assert_said(13015, [sent], ["Abcd"])


class QuestionsByOtherMessages(WireCase):
    def test_ask_for_one_property_of_one_font(self):
        url = self.url(self.font("Abcd"))
        for verb, key, answer, value in (("is-registered", "URL", 1, URL(url)),
                                         ("is-enabled", "Enabled", 1, int32(1)),
                                         ("priority", "Priority", 50000, int64(50000))):
            with self.subTest(verb):
                self.assertEqual(self.ask(verb, url, SHARED, program=INNER_CLIENT), answer)
                self.assert_said(13023, [[URL(url)], KEYS[key]], {URL(url): value})

    def test_ask_for_its_reference_and_for_its_folder_by_that(self):
        url = self.url(self.font("Abcd"))
        reference = self.ask("reference", url, SHARED, program=INNER_CLIENT)
        self.assertNotEqual(reference, 0)
        signed = reference - (reference >> 31 << 32)
        for verb in ("reference", "directory"):
            with self.subTest(verb):
                self.ask(verb, url, SHARED, program=INNER_CLIENT)
                self.assert_said(13023, [[URL(url)], KEYS["FontRef"]], {URL(url): int32(signed)})


if __name__ == "__main__":
    unittest.main()
