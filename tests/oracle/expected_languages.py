# SPDX-License-Identifier: MIT
# Languages as ICU knows them: canonical identifiers, the languages of name records and of the process,
# and which languages a face supports by its characters and by the bits of its OS/2 table.
import functools
import re

import icu
from fontTools.ttLib.tables._n_a_m_e import _MAC_LANGUAGES, _WINDOWS_LANGUAGES

from expected_tables import Table

# Where fontTools names another language than the registries of the numbers do (Estonian, Czech, Southern
# Sami) or says less: Norwegian beside Nynorsk is Bokmål, Uzbek was written in Cyrillic, Moldavian is not
# all Romanian, the Mongolian of China has a script of its own, and the Serbian of Bosnia has none to tell.
MAC_LANGUAGES = {**_MAC_LANGUAGES, 9: "nb", 27: "et", 38: "cs", 47: "uz-Cyrl", 53: "ro-MD", 57: "mn-Mong"}
WINDOWS_LANGUAGES = {**_WINDOWS_LANGUAGES, 0x850: "mn-Mong-CN", 0x1C1A: "sr-BA", 0x1C3B: "sma"}

FIRST_TAG = 0x8000  # from this language number on, the name table has the languages' tags itself

CODE_PAGE_LANGUAGES = {
    2: "ru", 3: "el", 4: "tr", 5: "he", 6: "ar", 8: "vi", 16: "th", 17: "ja", 18: "zh-Hans", 19: "ko", 20: "zh-Hant",
    21: "ko", 48: "el", 49: "ru", 51: "ar", 53: "he", 54: "is", 56: "tr", 57: "ru", 60: "el", 61: "ar", 63: "en"}
RANGE_LANGUAGES = {
    7: "el", 9: "ru", 10: "hy", 11: "he", 13: "ar", 17: "pa", 18: "gu", 24: "th", 25: "lo", 26: "ka", 28: "ko",
    49: "ja", 50: "ja", 70: "bo", 76: "chr", 77: "iu", 81: "mn"}


def likely(language, script="", country=""):
    locale = icu.Locale("_".join(part for part in (language, script, country) if part))
    return locale.addLikelySubtags()


@functools.lru_cache(maxsize=None)
def canonical(identifier):
    """BCP 47 without the language's principal region; Chinese is told apart by its script."""
    if identifier == "":
        return ""
    locale = icu.Locale.createCanonical(icu.Locale(identifier.replace("-", "_")).getName())
    language, script, country = locale.getLanguage(), locale.getScript(), locale.getCountry()
    if language == "zh" and not script:
        script = likely(language, "", country).getScript()
    if country and likely(language, script).getCountry() == country:
        country = ""
    variant = locale.getVariant().lower().replace("_", "-")
    return "-".join(part for part in (language, script, country, variant) if part)


def itself_and_parents(identifier):
    """Where a name in a language is looked for; a script is never dropped."""
    pieces = identifier.split("-")
    yield identifier
    while len(pieces) > 1 and len(pieces[-1]) != 4:
        pieces.pop()
        yield "-".join(pieces)


def language_of_record(record, tags):
    """The canonical language of a name record, empty for a platform without languages; None if unknown."""
    if record.platformID == 0:
        return ""
    if record.platformID not in (1, 3):
        return None
    if record.langID >= FIRST_TAG:
        place = record.langID - FIRST_TAG
        return canonical(tags[place]) if place < len(tags) else None
    languages = MAC_LANGUAGES if record.platformID == 1 else WINDOWS_LANGUAGES
    return canonical(languages[record.langID]) if record.langID in languages else None


def language_of_setting(setting):
    """The canonical language of a value of LC_ALL or LANG."""
    name = re.split("[.@]", setting)[0]
    return "en" if name in ("", "C", "POSIX") else canonical(name)


def user_language(environment):
    settings = (environment.get(name) for name in ("LC_ALL", "LC_MESSAGES", "LANG"))
    return language_of_setting(next(filter(None, settings), ""))


def system_language(files=("/etc/locale.conf", "/etc/default/locale")):
    """The language that the machine is set to."""
    for path in files:
        try:
            with open(path, encoding="utf-8") as file:
                lines = file.read().splitlines()
        except OSError:
            continue
        values = [line.partition("=")[2].strip().strip("\"'") for line in lines if line.strip().startswith("LANG=")]
        if values and values[-1]:
            return language_of_setting(values[-1])
    return "en"


@functools.lru_cache(maxsize=None)
def exemplars():
    """The standard exemplar characters of every language that ICU knows, by canonical identifier."""
    wanted = {*icu.Locale.getISOLanguages(), "zh_Hans", "zh_Hant"}
    known = sorted(name.replace("_", "-") for name in wanted & set(icu.Locale.getAvailableLocales()))
    sets = {}
    for name in known:
        characters = icu.LocaleData(name.replace("-", "_")).getExemplarSet(0, 0)
        sets.setdefault(canonical(name), frozenset(ord(text) for text in characters if len(text) == 1))
    return {name: characters for name, characters in sets.items() if characters}


def languages_of_characters(characters):
    return {language for language, needed in exemplars().items() if needed <= characters}


def _languages_of_bits(table, offset, rows):
    return {language for bit, language in rows.items()
            if table.u32(offset + 4 * (bit // 32)) >> bit % 32 & 1}


def languages_of_os2(font):
    """What the OS/2 table claims: by its code pages if it is long and new enough, and by its ranges."""
    os2 = Table(font, "OS/2")
    if os2.length < 78:
        return set()
    languages = _languages_of_bits(os2, 42, RANGE_LANGUAGES)
    if os2.length > 85 and os2.u16(0) != 0:
        languages |= _languages_of_bits(os2, 78, CODE_PAGE_LANGUAGES)
    return languages
