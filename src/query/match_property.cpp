// SPDX-License-Identifier: MIT
// Whether a face fits what a request wants of one property; the property table says by which rule.
#include "describe/font_entity.hpp"
#include "describe/font_properties.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

namespace vellum {

namespace {

// One name, or one of several, to the letter.
bool MatchesNames(const void *requested, const void *own) {
    const auto *name = Cast<ValString>(requested);
    if (!name) return false;
    if (const auto *names = Cast<ValArray>(own)) return ValArrayContains(names, name);
    return ValEqual(own, name);
}

bool MatchesURL(const TFontEntity &font, const void *requested, const void *own) {
    const TValStr wanted(Adopt(ValURLCopyFileSystemPath(Cast<ValURL>(requested))));
    const TValStr path(Adopt(ValURLCopyFileSystemPath(Cast<ValURL>(own))));
    if (!wanted || !path || !ValEqual(wanted.Get(), path.Get())) return false;
    const auto fragment = Adopt(ValURLCopyDecodedFragment(Cast<ValURL>(requested)));
    return !fragment || font.MatchesFragment(fragment.Get());
}

bool MatchesCoverage(const TFontEntity &font, const void *requested, const void *own) {
    if (!Cast<ValCharacterSet>(requested)) return false;
    // A font of this name stands for the end of a list of fonts, and has a glyph for everything: it must
    // never be taken for one that draws a text.
    const auto name = font.CopyProperty(kVLFontPropertyName, false);
    if (const auto *text = Cast<ValString>(name.Get()); text && TValStr(Retain(text)).View() == "Endstop")
        return false;
    return ValCharacterSetIsSuperset(Cast<ValCharacterSet>(own), Cast<ValCharacterSet>(requested));
}

// One language, or each of several in an array or a set.
bool MatchesLanguages(const void *requested, const void *own) {
    const auto *languages = Cast<ValArray>(own);
    const auto is_there = [&](const void *language) { return ValArrayContains(languages, language); };
    if (const auto *language = Cast<ValString>(requested)) return is_there(language);
    if (const auto *array = Cast<ValArray>(requested))
        return std::ranges::all_of(Elements(array), is_there);
    if (const auto *set = Cast<ValSet>(requested)) {
        size_t cursor = 0;
        for (const void *language; ValSetNext(set, &cursor, &language);)
            if (!is_there(language)) return false;
        return true;
    }
    return false;
}

bool MatchesTraitsOf(const TFontEntity &font, const void *requested, const void *own) {
    const auto *wanted = Cast<ValDictionary>(requested);
    return wanted && font.MatchesTraits(wanted, Cast<ValDictionary>(own));
}

} // namespace

bool TFontEntity::MatchesProperty(const ValString *key, const void *requested) const {
    const PropertyRow *row = TFontProperties::Find(key);
    if (!row || row->match == MatchRule::kNever) return false;
    const auto own = CopyProperty(key, true);
    if (!own) return false;
    switch (row->match) {
    case MatchRule::kNever:
        return false;
    case MatchRule::kAlways:
        return true;
    case MatchRule::kName:
        return MatchesNames(requested, own.Get());
    case MatchRule::kTraits:
        return MatchesTraitsOf(*this, requested, own.Get());
    case MatchRule::kURL:
        return MatchesURL(*this, requested, own.Get());
    case MatchRule::kCharacterSet:
        return MatchesCoverage(*this, requested, own.Get());
    case MatchRule::kEqual:
        return ValEqual(requested, own.Get());
    case MatchRule::kLanguages:
        return MatchesLanguages(requested, own.Get());
    }
    return false;
}

bool TFontEntity::MatchesProperties(const ValDictionary *request) const {
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(request, &cursor, &key, &value);)
        if (!MatchesProperty(Cast<ValString>(key), value)) return false;
    return true;
}

} // namespace vellum
