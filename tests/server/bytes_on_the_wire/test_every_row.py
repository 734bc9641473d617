#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# A program does what sends each message there is, and request and reply have the bytes that they must have.
import os
import unittest

from flattened import URL, Characters, Number, int32, int64, resurrect
from layout import ROWS
from wire_case import (DURABLE, INNER_CLIENT, KEYS, PROCESS, SESSION, SHARED, SILENT, USER, WireCase, keyed, keys,
                       lines)

# What a font is described by when it is registered, as far as it has it; and what one of the tests' fonts has.
REGISTRATION_KEYS = {"URL", "Bookmark", "Name", "FamilyName", "FullName", "SubfamilyName", "InstanceName", "Traits",
                     "LocalizedNames", "CharacterSet", "Variations", "VariationAxes", "SupportedLanguages",
                     "DesignLanguages", "Flags", "Format", "StringEncoding", "IgnoreScriptAnalysis", "UnicodeRanges"}
OWN_KEYS = REGISTRATION_KEYS - {"InstanceName", "Variations", "VariationAxes", "SupportedLanguages",
                                "DesignLanguages", "IgnoreScriptAnalysis"}

# Of a font whose glyphs are all equally wide; by what its table says of its weight and width it is regular.
PLAIN_TRAITS = {"KSLDFontSymbolicTrait": int32(0x400), "KSLDFontWeightTrait": Number(5, 0.0),
                "KSLDFontProportionTrait": Number(5, 0.0), "KSLDFontSlantTrait": Number(5, 0.0)}


def names_of(family):
    return {KEYS["FamilyName"]: family, KEYS["SubfamilyName"]: "Regular", KEYS["FullName"]: f"{family} Regular"}


class FirstContact(WireCase):
    def test_is_not_made_to_see_whether_there_is_a_server(self):
        self.assertIs(self.ask("answers"), True)
        self.assertEqual(self.said(), [])

    def test_13000_brings_the_common_fonts_that_there_are(self):
        path = self.font("Hack")  # Hack-Regular is one of the names that everybody asks for
        self.assertEqual(self.ask("families", SHARED), ["Hack"])
        self.assert_said(13000, [], {"Hack-Regular": URL(self.url(path))})

    def test_13000_brings_an_empty_dictionary_when_there_are_none(self):
        self.font("Abcd")
        self.assertEqual(self.ask("families", SHARED), ["Abcd"])
        _, reply = self.assert_said(13000, [], {})  # and is not asked again
        self.assertEqual(reply.memories[0].hex(), "0000001000000000")


class Providers(WireCase):
    def provide(self):
        """The UUID of a provider that came, was listed and went, as the list has it."""
        self.start()
        self.assertIs(self.ask("provide"), True)
        replies = [reply for request, reply in self.said() if request.number == 13003]
        self.assertEqual(len(replies), 1)
        return resurrect(replies[0].memories[0])[0]["portname"]

    def test_13001_announces_by_UUID(self):
        self.assert_said(13001, [str(self.provide()).upper()], None)

    def test_13002_withdraws_by_the_same_UUID(self):
        self.assert_said(13002, [str(self.provide()).upper()], None)

    def test_13003_lists_processes_and_names_of_ports(self):
        provider = self.provide()
        # The process that the server heard it from is the tap's.
        self.assert_said(13003, [], [{"pid": int32(os.getpid()), "portname": provider}])


class Changes(WireCase):
    def test_13004_tells_whose_a_font_is(self):
        owned = self.make_font("Owned", folder=self.root / "usr/share/fonts")  # of the system, before it starts
        kept, passing = self.font("Kept", scope=USER), self.font("Passing", scope=SESSION)
        for path, scope in ((owned, USER), (kept, USER), (passing, SESSION), (self.fonts / "none.ttf", 0)):
            with self.subTest(path.name):
                self.assertEqual(self.ask("scope", self.url(path)), scope)
                self.assert_said(13004, [self.url(path)], scope)

    def register_two(self, scope):
        """What is to be sent of two files for them to be registered."""
        paths = [self.make_font(family) for family in ("First", "Other")]
        info = {URL(self.url(path)): self.ask("registration-info", self.url(path)) for path in paths}
        self.answer = self.ask("register", lines(map(self.url, paths)), 0x600, scope | SILENT)
        return info

    def test_13005_registers_files_with_their_properties(self):
        info = self.register_two(SHARED | DURABLE)
        self.assert_said(13005, [info, USER | DURABLE, 0x600], (None, 1))
        self.assertEqual(self.answer, [1, None])
        for url, properties in info.items():
            self.assertEqual(set(properties), {KEYS[name] for name in OWN_KEYS})
            self.assertEqual(properties[KEYS["URL"]], url)
            self.assertEqual(properties[KEYS["CharacterSet"]], Characters.of(range(0x41, 0x5B)))
            self.assertEqual(properties[KEYS["Traits"]], PLAIN_TRAITS)
            self.assertIsInstance(properties[KEYS["Bookmark"]], bytes)

    def test_13005_leaves_out_what_is_no_font(self):
        path, other = self.make_font("Abcd"), self.fonts / "none.ttf"
        other.write_bytes(b"this is no font")
        info = self.ask("registration-info", self.url(path))
        answer = self.ask("register", lines(map(self.url, (other, path))), 0, SESSION | SILENT)
        self.assertEqual(answer, [0, [URL(self.url(other))]])
        self.assert_said(13005, [{URL(self.url(path)): info}, 0, 0], (None, 1))

    def test_13005_hands_back_what_is_registered_already(self):
        self.register_two(SESSION)
        info = self.register_two(SESSION)
        self.assert_said(13005, [info, 0, 0x600], (list(info), 0))
        self.assertEqual(self.answer, [0, list(info)])

    def test_13006_unregisters_files(self):
        first, second = self.font("First"), self.font("Second")
        self.assertEqual(self.ask("unregister", self.url(first), SHARED | SILENT), [1, None])
        self.assert_said(13006, [[URL(self.url(first))], USER], (None, 1))
        self.assertEqual(self.ask("urls", SHARED), [URL(self.url(second))])

    def test_13007_registers_a_folder_with_its_three_words_in_order(self):
        folder = self.fonts / "folder"
        seen = self.make_font("Seen", folder=folder)
        self.make_font("Below", folder=folder / "below")
        scope = USER | DURABLE | SILENT
        self.assertEqual(self.ask("register-directory", f"{self.url(folder)}/", 0x200, 1, scope), 1)
        request, _ = [each for each in self.said() if each[0].number == 13007][0]
        bookmark = resurrect(request.memories[0])
        self.assertIsInstance(bookmark, bytes)
        self.assertIn(str(folder).encode(), bookmark)
        self.assert_said(13007, [f"{self.url(folder)}/", bookmark, 0x200, 1, USER | DURABLE], 1)
        self.assertEqual(self.ask("urls", SHARED), [URL(self.url(seen))])

    def test_13008_unregisters_a_folder(self):
        folder = self.fonts / "folder"
        self.make_font("Seen", folder=folder)
        other = self.font("Other")
        self.ask("register-directory", f"{self.url(folder)}/", 0, 0, USER)
        self.assertEqual(self.ask("unregister-directory", f"{self.url(folder)}/", USER | DURABLE), 1)
        self.assert_said(13008, [f"{self.url(folder)}/", USER | DURABLE], 1)
        self.assertEqual(self.ask("urls", SHARED), [URL(self.url(other))])
        self.assertEqual(self.ask("unregister-directory", f"{self.url(folder)}/", USER), 0)
        self.assert_said(13008, [f"{self.url(folder)}/", USER], 0)

    def test_13010_enables_a_font(self):
        url = self.url(self.font("Abcd"))
        self.ask("disable-one", url, SHARED | SILENT)
        self.ask("enable-one", url, SHARED | SILENT)
        self.assert_said(13010, [url], 1)
        self.assertEqual(self.ask("font-named", "Abcd", SHARED), URL(url))

    def test_13011_disables_a_font(self):
        url = self.url(self.font("Abcd"))
        self.ask("disable-one", url, SHARED | SILENT)
        self.assert_said(13011, [url], 1)
        self.assertIsNone(self.ask("font-named", "Abcd", SHARED))
        self.ask("disable-one", f"{url}x", SHARED | SILENT)
        self.assert_said(13011, [f"{url}x"], 0)

    def test_13027_enables_fonts_and_tells_which(self):
        urls = [self.url(self.font(family)) for family in ("First", "Second", "Third")]
        self.ask("disable", lines(urls[:2]), SHARED | SILENT)
        self.ask("enable", lines(urls[:2]), SHARED | DURABLE | SILENT)
        asked = [URL(url) for url in urls[:2]]
        self.assert_said(13027, [asked, USER | DURABLE], (asked, 1))
        self.assertEqual(len(self.ask("urls", SHARED)), 3)

    def test_13028_disables_fonts_and_tells_which(self):
        urls = [self.url(self.font(family)) for family in ("First", "Second", "Third")]
        asked = [URL(urls[0]), URL(f"{self.url(self.fonts)}/none.ttf"), URL(urls[1])]
        self.ask("disable", lines(url.text for url in asked), SESSION | SILENT)
        self.assert_said(13028, [asked, 0], ([asked[0], asked[2]], 1))
        self.assertEqual(self.ask("urls", SHARED), [URL(urls[2])])


class Questions(WireCase):
    def setUp(self):
        super().setUp()
        self.first, self.second = (self.url(self.font(family)) for family in ("Abcd", "Efghi"))

    def test_13014_lists_names(self):
        self.assertEqual(self.ask("names", SHARED | DURABLE), ["Abcd-Regular", "Efghi-Regular"])
        self.assert_said(13014, [USER | DURABLE], ["Abcd-Regular", "Efghi-Regular"])

    def test_13015_lists_families(self):
        self.assertEqual(self.ask("families", SESSION), ["Abcd", "Efghi"])
        self.assert_said(13015, [0], ["Abcd", "Efghi"])

    def test_13016_lists_fonts(self):
        self.assertEqual(self.ask("urls", SHARED | PROCESS), [URL(self.first), URL(self.second)])
        self.assert_said(13016, [USER | PROCESS], [URL(self.first), URL(self.second)])

    def test_13017_finds_the_font_of_a_name(self):
        self.assertEqual(self.ask("font-named", "Efghi-Regular", USER), URL(self.second))
        self.assert_said(13017, ["Efghi-Regular", SHARED], self.second)

    def test_13018_finds_the_fonts_for_a_request(self):
        self.assertEqual(self.ask("best-font", "FamilyName=Efghi\nSubfamilyName=Regular", USER), URL(self.second))
        self.assert_said(13018, [SHARED, keyed(FamilyName="Efghi", SubfamilyName="Regular")], [URL(self.second)])

    def test_13019_copies_properties_of_the_fonts_for_a_request(self):
        self.assertEqual(self.ask("fonts", "FullName=Abcd Regular", SHARED), [URL(self.first)])
        ordering = keys("URL", "FamilyName", "SubfamilyName", "Traits", "Priority")
        found = keyed(URL=URL(self.first), FamilyName="Abcd", SubfamilyName="Regular", Traits=PLAIN_TRAITS)
        self.assert_said(13019, [keyed(FullName="Abcd Regular"), ordering, USER], [found], exact=False)

    def test_13020_copies_properties_of_the_best_font_for_a_request(self):
        found = self.ask("properties-of-best", "SubfamilyName=Regular", "URL\nName", USER | DURABLE,
                         program=INNER_CLIENT)
        self.assertEqual(found, keyed(URL=URL(self.first), Name="Abcd-Regular"))
        self.assert_said(13020, [keyed(SubfamilyName="Regular"), keys("URL", "Name"), USER | DURABLE], found)

    def test_13021_copies_properties_of_all_fonts(self):
        found = self.ask("properties-of-all", "FamilyName\nURL\nCharacterSet", SHARED)
        letters = Characters.of(range(0x41, 0x5B))
        self.assertEqual(found, [keyed(URL=URL(url), FamilyName=family, CharacterSet=letters)
                                 for family, url in (("Abcd", self.first), ("Efghi", self.second))])
        self.assert_said(13021, [keys("FamilyName", "URL", "CharacterSet"), USER], found)

    def test_13022_copies_properties_of_some_fonts(self):
        asked = [self.second, f"{self.url(self.fonts)}/none.ttf", self.first]
        found = self.ask("properties-of-some", lines(asked), "Name\nScope\nPriority\nEnabled", SHARED)
        others = {"Scope": int64(SESSION), "Priority": int64(50000), "Enabled": int32(1)}
        self.assertEqual(found, {URL(self.first): keyed(Name="Abcd-Regular", **others),
                                 URL(self.second): keyed(Name="Efghi-Regular", **others)})
        self.assert_said(13022, [[URL(url) for url in asked], keys("Name", "Scope", "Priority", "Enabled")], found)

    def test_13023_copies_one_property_of_some_fonts(self):
        found = self.ask("property-of-some", lines([self.second, self.first]), "FullName", SHARED)
        self.assertEqual(found, {URL(self.first): "Abcd Regular", URL(self.second): "Efghi Regular"})
        self.assert_said(13023, [[URL(self.second), URL(self.first)], KEYS["FullName"]], found)

    def test_13024_copies_properties_of_a_font(self):
        found = self.ask("properties-of-one", self.second, "LocalizedNames\nFontRef\nDirectory\nScope", SHARED)
        self.assert_said(13024, [self.second, keys("LocalizedNames", "FontRef", "Directory", "Scope")], found)
        self.assertEqual(found[KEYS["LocalizedNames"]], {"en": names_of("Efghi")})
        self.assertEqual(found[KEYS["Scope"]], int64(SESSION))
        self.assertEqual(found[KEYS["FontRef"]].type, int32(0).type)
        self.assertIsInstance(found[KEYS["Directory"]], URL)

    def test_13026_finds_a_font_that_draws_a_character(self):
        last = self.url(self.font("Far", characters=(0x1F600, 0x1F603)))
        self.assertEqual(self.ask("font-for-character", 0x1F602, SHARED | DURABLE, 0x89ABCDEF), URL(last))
        self.assert_said(13026, [0x1F602, USER | DURABLE, 0x89ABCDEF], last)

    def test_13029_lists_families_for_a_language(self):
        self.font("Small", characters=(0x61, 0x7A))
        self.assertEqual(self.ask("families-for-language", "en", SHARED | DURABLE, 0x89ABCDEF), ["Small"])
        self.assert_said(13029, ["en", USER | DURABLE, 0x89ABCDEF], ["Small"])

    def test_13030_answers_a_free_question(self):
        found = self.ask("funnel", "FamilyName=Abcd", SHARED | DURABLE)
        self.assertEqual(found, {int32(2): [URL(self.first), URL(self.second)]})
        self.assert_said(13030, [keyed(FamilyName="Abcd"), USER | DURABLE], found)


class Rows(unittest.TestCase):
    def test_have_a_test_each(self):
        tested = {name.split("_")[1] for case in (FirstContact, Providers, Changes, Questions) for name in dir(case)
                  if name.startswith("test_1")}
        self.assertEqual(tested, {str(number) for number in ROWS})


if __name__ == "__main__":
    unittest.main()
