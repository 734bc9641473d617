#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# The oracle of languages must miss no wrong answer: each kind of line that the program prints is spoiled
# once, by a stand-in that hands the program's own lines on.
import os
import pathlib
import stat
import tempfile
import unittest

import languages_oracle

STAND_IN = """#!/usr/bin/python3
import re, subprocess, sys
lines = subprocess.run([{program!r}], stdin=sys.stdin, capture_output=True, text=True, check=True).stdout
spoiled = re.sub({pattern!r}, {replacement!r}, lines, flags=re.MULTILINE)
if spoiled == lines:
    sys.exit("nothing to spoil")
print(spoiled, end="")
"""


class Oracle(unittest.TestCase):
    def faults_after(self, pattern, replacement):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "stand_in"
            program.write_text(STAND_IN.format(program=os.environ["VELLUM_PRINT_LANGUAGES"], pattern=pattern,
                                               replacement=replacement), encoding="utf-8")
            program.chmod(program.stat().st_mode | stat.S_IXUSR)
            return list(languages_oracle.faults(str(program)))

    def expect_fault(self, pattern, replacement, *beginnings):
        faults = self.faults_after(pattern, replacement)
        for beginning in beginnings:
            self.assertTrue(any(fault.startswith(beginning) for fault in faults), (beginning, faults[:5]))

    def test_finds_a_missing_supported_language(self):
        self.expect_fault("^supported chr\n", "", "supported: ['chr']")

    def test_finds_an_unknown_supported_language(self):
        self.expect_fault("^supported chr\n", "supported chq\nsupported chr\n", "supported: ['chq']")

    def test_finds_a_missing_character(self):
        self.expect_fault("^(zu\tzu\t)61-7A$", r"\g<1>61-79", "zu: wrong exemplars: [122]")

    def test_finds_a_character_too_many(self):
        self.expect_fault("^(zu\tzu\t)61-7A$", r"\g<1>61-7A 100-100", "zu: wrong exemplars: [256]")

    def test_finds_a_locale_without_its_exemplars(self):
        self.expect_fault("^(zh_Hant_HK\tzh-Hant-HK\t).*$", r"\g<1>", "zh_Hant_HK: wrong exemplars")

    def test_finds_another_language(self):
        self.expect_fault("^(sh\t)sr-Latn\t", r"\g<1>sr\t", "sh: sr is another language")

    def test_finds_a_region_that_says_nothing(self):
        self.expect_fault("^(fur_IT\t)fur\t", r"\g<1>fur-IT\t", "fur-IT: fur, but fur_IT: fur-IT")
        self.expect_fault("^(jpn\t)ja\t", r"\g<1>ja-JP\t", "jpn: ja-JP says more than it must")

    def test_finds_chinese_without_its_script(self):
        self.expect_fault("^(zho\t)zh-Hans\t", r"\g<1>zh\t", "zho: zh should begin with zh-Hans")

    def test_finds_a_spelling_that_is_read_otherwise(self):
        self.expect_fault("^(en_GB.UTF-8\t)en-GB\t", r"\g<1>en\t", "en_GB.UTF-8: en, but en_GB: en-GB")

    def test_finds_nothing_wrong_in_what_is_right(self):
        self.assertEqual(list(languages_oracle.faults(os.environ["VELLUM_PRINT_LANGUAGES"])), [])


if __name__ == "__main__":
    unittest.main()
