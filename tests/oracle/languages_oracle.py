#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Holds what the library knows of languages against ICU: all supported languages, the exemplar sets of all
# locales that ICU has, and the canonical identifiers of locales, ISO languages and spellings of them.
# languages_oracle.py PRINT_LANGUAGES
import functools
import subprocess
import sys

import icu


# Names that were replaced, with and without a region.
REPLACED = ["iw", "in", "ji", "jw", "mo", "sh", "tl", "tlw", "hbs", "cnr", "prs", "prs_IR", "swc", "mo_MD", "sh_ME", "sr_YU",
            "uk_SU", "az_SU", "my_BU", "en_826"]


@functools.lru_cache(maxsize=None)
def locales():
    return sorted(icu.Locale.getAvailableLocales())


@functools.lru_cache(maxsize=None)
def maximal(name):
    """Language, script and region of a locale as ICU reads it, with what goes without saying."""
    locale = icu.Locale.createCanonical(name)
    locale.addLikelySubtags()
    return locale.getLanguage(), locale.getScript(), locale.getCountry()


def supported_languages():
    codes = {*icu.Locale.getISOLanguages(), "zh_Hans", "zh_Hant"}
    return sorted(name.replace("_", "-") for name in locales() if name in codes)


@functools.lru_cache(maxsize=None)
def exemplars(name):
    """The single code points of a locale's standard exemplar set."""
    found = icu.LocaleData(name).getExemplarSet(0, icu.ULocaleDataExemplarSetType.ES_STANDARD)
    return frozenset(ord(item) for item in found if len(item) == 1)


def spellings(name):
    """A locale, as one may find it written."""
    return [name, name.replace("_", "-"), name.lower().replace("_", "-"), name.upper(), name + ".UTF-8",
            name + "@currency=EUR"]


def languages_to_ask():
    """Locales without exemplars of ICU's: every language by its codes, in the regions that it may be in."""
    names = list(REPLACED)
    for code in icu.Locale.getISOLanguages():
        names += [code, icu.Locale(code).getISO3Language()]
        names += [f"{code}_{region}" for region in ("US", "IN", "CN", "TW", "RU", "IQ", "840", "SU", "UK")]
        names += [f"{code}_{script}" for script in ("Latn", "Cyrl", "Arab", "Hans", "Hant")]
    return [name for name in names if name and not name.startswith(("root", "und"))]


@functools.lru_cache(maxsize=None)
def members_of(ranges):
    """The members of a set as the program prints it."""
    bounds = ([int(part, 16) for part in text.split("-")] for text in ranges.split())
    return frozenset(member for first, last in bounds for member in range(first, last + 1))


class Answers:
    """What the program prints."""

    def __init__(self, program, names):
        done = subprocess.run([program], input="\n".join(names) + "\n", capture_output=True, text=True, check=True)
        self.supported = []
        self.of = {}
        for line in done.stdout.splitlines():
            if line.startswith("supported "):
                self.supported.append(line.split(" ", 1)[1])
            else:
                given, canonical, ranges = line.split("\t")
                self.of[given] = canonical, members_of(ranges)


def faults_of_name(name, canonical):
    """A canonical identifier says what the given one says, and no more than it must."""
    if maximal(canonical.replace("-", "_")) != maximal(name):
        yield f"{name}: {canonical} is another language"
    language, script, region = maximal(name)
    region_is_usual = maximal(f"{language}_{script}")[2] == region
    script_is_usual = maximal(language)[1] == script and (
        region_is_usual or maximal(f"{language}_{region}")[1] == script)
    says = [part for part, is_said in ((language, True), (script, language == "zh" or not script_is_usual),
                                       (region, not region_is_usual)) if part and is_said]
    subtags = canonical.split("-")
    if subtags[:len(says)] != says:
        yield f"{name}: {canonical} should begin with {'-'.join(says)}"
    elif any(len(subtag) < 5 and not subtag[0].isdigit() for subtag in subtags[len(says):]):
        yield f"{name}: {canonical} says more than it must"


def faults(program):
    asked = languages_to_ask()
    answers = Answers(program, [spelling for name in locales() for spelling in spellings(name)] + asked)
    if answers.supported != supported_languages():
        yield f"supported: {sorted(set(answers.supported) ^ set(supported_languages()))}"
    for name in locales():
        right = exemplars(name)
        for spelling in spellings(name):
            canonical, members = answers.of[spelling]
            if canonical != answers.of[name][0]:
                yield f"{spelling}: {canonical}, but {name}: {answers.of[name][0]}"
            if members != right:
                yield f"{spelling}: wrong exemplars: {sorted(members ^ right)[:10]}"
    for name in locales() + asked:
        yield from faults_of_name(name, answers.of[name][0])


def main(program):
    found = list(faults(program))
    for fault in found[:50]:
        print(fault)
    print(f"{len(locales())} locales, {len(supported_languages())} supported languages, "
          f"{len(languages_to_ask())} other identifiers, {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
