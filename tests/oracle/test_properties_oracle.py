#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The oracle of properties must know the right answers and miss no wrong one: its rules are held against facts
# written out here, and every property of a right answer is spoiled once. A stand-in for the tool answers.
import copy
import json
import logging
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import properties_oracle  # first: it says what is missing
from disagreements import Excuse, unexcused
from expected_faces import Any, faces_of
from expected_languages import canonical, exemplars, itself_and_parents, system_language, user_language
from expected_tables import character_set, format_name, unicode_ranges
from expected_traits import float32
from fonttools_facts import Prefix

# What the rules give for faces out of property_fonts.py: font -> traits (symbolic, weight, width, slant).
TRAITS = {
    "os2/panose-weight-4": (0, 0.0, 0.0, 0.0), "os2/panose-weight-4-bold-head": (2, 0.4, 0.0, 0.0),
    "os2/weight-5": (0, 0.23, 0.0, 0.0), "os2/os2-of-77": (0, 0.0, 0.0, 0.0),
    "os2/os2-of-78": (0x80000442, 0.4, -0.2, 0.0), "os2/no-os2": (0x42, 0.3, -0.7, 0.0),
    "os2/class-ff01": (0xF0000000, 0.0, 0.0, 0.0),
    "tables/mac-style-6": (0x40, 0.0, -0.2, 0.0), "tables/mac-style-1": (0, 0.0, 0.0, 0.0),
    "tables/caret-1-1": (0, 0.0, 0.0, 0.004363323), "tables/caret-1000-200": (1, 0.0, 0.0, 0.0076300),
    "tables/post-angle-12": (0x401, 0.0, 0.0, 12 / 180), "tables/post-angle--12": (0x401, 0.0, 0.0, 65524 / 180),
    "tables/monotype": (0, 0.0, 0.0, 0.0), "tables/mono-monotype": (0, 0.0, 0.0, 0.0),
    "tables/monotype-mono": (0x400, 0.0, 0.0, 0.0), "tables/widths-0-500-0-500": (0x400, 0.0, 0.0, 0.0),
    "tables/widths-500-0-600": (0, 0.0, 0.0, 0.0), "tables/one-width": (0x400, 0.0, 0.0, 0.0),
    "named/named-.Keyboard": (0, 0.0, 0.0, 0.0), "named/named-URWGothic-Demi": (2, 0.24, 0.0, 0.0),
    "named/named-C059-Roman": (0x10000002, 0.4, 0.0, 0.0), "words/abbreviated-EL": (0, -0.2, 0.0, 0.0),
    "words/words-from-17": (0x41, -0.4, -0.4, 0.0694444), "words/words-from-2": (0x23, 0.4, 0.6, -0.0694444),
}

# Font -> (preferred style, all styles) and font -> flags.
STYLES = {"space": "Bold", "dash": "Italic", "equal": "Regular", "both-ends": "Bold", "inside": "Ex Foo Bold",
          "only-dash": None, "dashes": "Bold", "no-family": "Foo Bold", "no-full": "Foo-PS", "neither": None}
FLAGS = {"hidden-family": 0x40, "hidden-full": 0x40, "dot-in-postscript-alone": 0, "endstop": 0x1040,
         "keyboard": 0x2040, "endstop-in-another-case": 0, "localized": 0}
ENCODINGS = {"roman-and-japanese": 1, "roman-alone": 0, "scripts-0-and-25": 25, "scripts-3-and-2": 2,
             "script-32": 0, "script-33": 1, "symbol-alone": 0x100, "no-cmap": 0x100}

IDENTIFIERS = {"ja-JP": "ja", "en_US": "en", "en-GB": "en-GB", "zh-CN": "zh-Hans", "zh_TW": "zh-Hant", "zh": "zh-Hans",
               "zh-HK": "zh-Hant-HK", "pt-BR": "pt", "pt-PT": "pt-PT", "iw": "he", "sr-Latn-RS": "sr-Latn", "": ""}

# A tool that prints the document of the language that it runs in.
STAND_IN = "#!/bin/sh\ncat \"{folder}/document-${{LC_ALL-none}}-${{LC_MESSAGES-none}}-${{LANG-none}}\"\n"


def right_value(expected):
    """A value that the tool may answer."""
    if isinstance(expected, Any):
        return expected.example
    if isinstance(expected, Prefix):
        return expected + "Rest"
    return copy.deepcopy(expected)


def right_face(path, face, locales):
    """A face as a tool writes it that is right in all."""
    found = {field: right_value(value) for field, value in {**face.in_locales(locales), **face.properties}.items()}
    lists = {field: found.pop(field) for field in list(found) if field.startswith("names.")}
    names = {field.partition(".")[2]: value for field, value in lists.items()}
    return {**found, "path": path, "names": names}


def wrong_values(value):
    """Values near to a right one that are wrong."""
    if isinstance(value, dict):
        yield from ({**value, key: wrong} for key in value for wrong in wrong_values(value[key]))
        yield {key: value[key] for key in list(value)[1:]} if value else None
        if len(value) > 1:
            yield dict(reversed(value.items()))
    elif isinstance(value, list):
        yield from ([], value + value[:1]) if value else (["else"], None)
        yield from ([*value[:place], wrong, *value[place + 1:]] for place, item in enumerate(value)
                    for wrong in wrong_values(item))
    elif isinstance(value, float):
        yield from (value + 0.01, None)
    elif isinstance(value, int):
        yield from (value + 1, value == 1, None)
    else:
        yield from ("else!", 0, False) if value is None else ("!" + value, None)


class Oracle(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        logging.disable(logging.CRITICAL)
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.scratch = pathlib.Path(folder.name).resolve()
        cls.fonts = cls.scratch / "fonts"
        cls.fonts.mkdir()
        properties_oracle.write_made_fonts(cls.fonts)
        cls.faces = {name: faces_of(str(cls.fonts / f"{name}.ttf"))
                     for name in ("names/localized", "instances/instances-all", "names/keyboard")}

    def face(self, name):
        return faces_of(str(self.fonts / f"{name}.ttf"))[0]

    # ---- the rules ----
    def test_traits_are_those_written_out_here(self):
        for name, (symbolic, *numbers) in TRAITS.items():
            with self.subTest(name):
                traits = self.face(name).properties["traits"]
                self.assertEqual(traits["symbolic"], symbolic)
                for trait, number in zip(("weight", "width", "slant"), numbers):
                    self.assertAlmostEqual(traits[trait], number, places=4)

    def test_traits_of_instances_are_those_of_their_places(self):
        traits = [face.properties["traits"] for face in faces_of(str(self.fonts / "instances/instances-all.ttf"))[1:4]]
        self.assertEqual([(t["weight"], t["width"]) for t in traits],
                         [(float32(0.4), float32(-0.2)), (float32(-0.4), 0.0), (0.0, 0.0)])
        self.assertEqual([t["slant"] for t in traits], [float32(10 / 180), float32(0.0694444), float32(10 / 180)])

    def test_styles_flags_and_string_encodings_are_those_written_out_here(self):
        for kind, style in STYLES.items():
            with self.subTest(kind):
                names = self.face(f"names/style-{kind}").names
                self.assertEqual(names.preferred()["subfamilyName"], style)
                self.assertEqual(names.lists(["en", "en"])["subfamilyName"], [style] if style else [])
        for name, flags in FLAGS.items():
            with self.subTest(name):
                self.assertEqual(self.face(f"names/{name}").properties["flags"], flags)
        for name, encoding in ENCODINGS.items():
            with self.subTest(name):
                self.assertEqual(self.face(f"characters/{name}").properties["stringEncoding"], encoding)

    def test_the_language_of_the_user_adds_names(self):
        names = self.face("names/localized").names
        self.assertEqual(names.lists(["en", "en"])["familyName"], ["Founts", "Fount"])
        self.assertEqual(names.lists(["ja", "en"])["familyName"], ["Founts", "Fount", "書体"])
        self.assertEqual(names.lists(["de-AT", "en"])["subfamilyName"], ["標準体", "Regular", "Normal"])
        self.assertEqual(list(names.localized()), ["en", "ja", "de", "de-AT", "zh-Hant", "zh-Hant-HK", "zh-Hans"])

    def test_instances_have_names_of_their_own(self):
        strong = faces_of(str(self.fonts / "instances/instances-localized.ttf"))[1].names
        self.assertEqual(strong.lists(["ja", "en"])["postscriptName"], ["Fount-Strong", "Fount-Regular"])
        self.assertEqual(strong.lists(["ja", "en"])["fullName"],
                         ["Founts Bold Italic", "書体 太字"])

    def test_languages_are_those_written_out_here(self):
        for identifier, expected in IDENTIFIERS.items():
            self.assertEqual(canonical(identifier), expected)
        self.assertEqual(list(itself_and_parents("zh-Hant-HK")), ["zh-Hant-HK", "zh-Hant"])
        self.assertEqual(list(itself_and_parents("de-AT")), ["de-AT", "de"])
        self.assertEqual(user_language({"LC_ALL": "", "LC_MESSAGES": "de_AT.UTF-8", "LANG": "ja_JP"}), "de-AT")
        self.assertEqual([user_language({"LANG": text}) for text in ("C.UTF-8", "POSIX", "")], ["en"] * 3)

    def test_the_language_of_the_system_is_read_from_its_files(self):
        first, second = self.scratch / "locale.conf", self.scratch / "locale"
        second.write_text("# of the system\nLANG=\"ja_JP.UTF-8\"\n")
        self.assertEqual(system_language([first, second]), "ja")
        first.write_text("LC_TIME=de_DE\nLANG=fr_CA.UTF-8\n")
        self.assertEqual(system_language([first, second]), "fr-CA")
        self.assertEqual(system_language([]), "en")

    def test_a_language_needs_each_of_its_characters(self):
        for language in ("el", "zh-Hant"):
            whole = self.face(f"characters/language-{language}").properties["supportedLanguages"]
            self.assertIn(language, whole.example)
            less = self.face(f"characters/language-{language}-but-one").properties["supportedLanguages"]
            self.assertNotIn(language, less.example or [])
        self.assertEqual({"en", "sw", "zu"} - set(exemplars()), set())

    def test_characters_and_their_ranges(self):
        self.assertEqual(character_set(frozenset({0x41, 0x20, 0x21, 0x10FFFD})),
                         {"count": 4, "ranges": "20-21 41 10fffd"})
        self.assertEqual(unicode_ranges(frozenset({0x41})), [1, 0, 0, 0])
        self.assertEqual(unicode_ranges(frozenset({0x10FFFD})), [0, 1 << 25, 1 << 26, 0])
        self.assertEqual(self.face("characters/unmapped").properties["characterSet"]["ranges"], "41 43")
        properties_oracle.check_range_rows()

    def test_formats_are_those_written_out_here(self):
        for file_type, tags, expected in (
                ("public.truetype-ttf-font", ["glyf", "loca"], "truetype"),
                ("public.truetype-ttf-font", ["GSUB", "glyf", "loca"], "opentype-truetype"),
                ("public.opentype-font", ["CFF ", "GPOS"], "opentype-postscript"),
                ("public.opentype-font", ["CFF "], "postscript"), ("public.opentype-font", ["CFF2"],
                                                                   "opentype-postscript"),
                ("public.truetype-ttf-font", ["bdat", "bloc"], "bitmap"),
                ("public.truetype-ttf-font", ["EBDT"], "postscript"),
                ("public.truetype-ttf-font", ["glyf"], "unrecognized")):
            self.assertEqual(format_name(file_type, tags), expected)

    # ---- the comparison ----
    def properties(self, name, locales):
        return [{**face.in_locales(locales), **face.properties} for face in self.faces[name]]

    def test_every_spoiled_property_is_found(self):
        for name, faces in self.faces.items():
            expected = self.properties(name, ["ja", "en"])
            right = [right_face(name, face, ["ja", "en"]) for face in faces]
            self.assertEqual(list(properties_oracle.compare_file(name, expected, right)), [])
            for field in expected[-1]:
                self.assert_found_when_spoiled(name, expected, right, field)

    def assert_found_when_spoiled(self, name, expected, right, field):
        holder, _, key = field.rpartition(".")
        whole = right[-1][holder] if holder else right[-1]
        values = [value for value in wrong_values(whole[key]) if field != "bookmark" or value is not None]
        if field == "bookmark":
            values = ["not base64", "", 5]
        elif field == "supportedLanguages":
            values = ["en", ["en", "en"], ["en", "else"], []]
        self.assertTrue(values)
        for value in values:
            with self.subTest(name=name, field=field, value=value):
                wrong = copy.deepcopy(right)
                (wrong[-1][holder] if holder else wrong[-1])[key] = value
                found = list(properties_oracle.compare_file(name, expected, wrong))
                self.assertEqual([(d.path, d.field) for d in found], [(name, field)])
                self.assertIn(name, str(found[0]))

    def test_a_property_that_is_left_out_is_found(self):
        expected = self.properties("names/localized", ["en", "en"])
        for field in expected[0]:
            face = right_face("names/localized", self.faces["names/localized"][0], ["en", "en"])
            holder, _, key = field.rpartition(".")
            del (face[holder] if holder else face)[key]
            found = properties_oracle.compare_file("names/localized", expected, [face])
            self.assertEqual([d.field for d in found], [field])

    def disagreements(self, spoil=lambda setting, faces: None):
        """What is found of a few made fonts with a stand-in for the tool, under every setting."""
        made = {str(self.fonts / f"{name}.ttf"): faces for name, faces in self.faces.items()}
        for setting in properties_oracle.SETTINGS + properties_oracle.MORE_SETTINGS:
            locales = [user_language(setting), system_language()]
            faces = [right_face(path, face, locales) for path, some in made.items() for face in some]
            spoil(setting, faces)
            settings = "-".join(setting.get(name, "none") for name in ("LC_ALL", "LC_MESSAGES", "LANG"))
            (self.scratch / f"document-{settings}").write_text(json.dumps({"faces": faces, "refused": []}))
        tool = self.scratch / "tool"
        tool.write_text(STAND_IN.format(folder=self.scratch))
        tool.chmod(0o755)
        return list(properties_oracle.compare_all(str(tool), {}, made))

    def test_right_answers_agree_under_every_setting(self):
        self.assertEqual(self.disagreements(), [])
        settings = properties_oracle.SETTINGS + properties_oracle.MORE_SETTINGS
        self.assertGreater(len({user_language(setting) for setting in settings}), 4)

    def test_a_name_that_is_wrong_in_one_language_is_found(self):
        def spoil(setting, faces):
            if setting == {"LC_ALL": "ja_JP.UTF-8"}:
                faces[0]["names"]["familyName"].remove("書体")
        self.assertEqual([d.field for d in self.disagreements(spoil)], ["names.familyName"])

    def test_a_missing_face_is_found(self):
        found = self.disagreements(lambda setting, faces: faces.pop())
        self.assertIn("count", {d.field for d in found})

    def test_an_excuse_covers_its_own_and_an_idle_one_is_told(self):
        found = [properties_oracle.Disagreement("/fonts/a.ttf", "A", "flags", 0, 1),
                 properties_oracle.Disagreement("/fonts/a.ttf", "A", "traits", 0, 1)]
        used, idle = Excuse("*/a.ttf", "flags", "a reason"), Excuse("*/b.ttf", "*", "a reason")
        self.assertEqual(unexcused(found, [used, idle]), ([found[1]], [idle]))

    # ---- the program ----
    def run_program(self, *python, tool="/bin/false"):
        return subprocess.run([*python, properties_oracle.__file__, tool], capture_output=True, text=True)

    def test_missing_modules_fail_and_are_named(self):
        done = self.run_program(sys.executable, "-S")  # without the folders that packages are in
        self.assertEqual(done.returncode, 1)
        self.assertIn("python3-icu", done.stderr)

    def test_a_tool_that_fails_is_no_agreement(self):
        self.assertEqual(self.run_program(sys.executable).returncode, 1)

    def test_a_tool_that_finds_nothing_is_no_agreement(self):
        tool = self.scratch / "empty-tool"
        tool.write_text("#!/bin/sh\necho '{\"faces\": [], \"refused\": []}'\n")
        os.chmod(tool, 0o755)
        done = self.run_program(sys.executable, tool=str(tool))
        self.assertEqual(done.returncode, 1)
        self.assertIn("count", done.stdout)


if __name__ == "__main__":
    unittest.main()
