// SPDX-License-Identifier: MIT
// TFontEntity: the view of one face that every query and every property copy works on.
//
// Matching and ordering are defined in query/, derivation here.
#pragma once

#include <vellum/values.hpp>

namespace vellum {

class TFontEntity {
public:
    virtual ~TFontEntity() = default;

    virtual Ref<const ValURL> CopyURL() const = 0;

    // The face's value for a property key, or null. For the names, `all` asks for every known one
    // (an array of distinct strings) instead of the preferred one (a string).
    virtual Ref<const void> CopyProperty(const ValString *key, bool all) const = 0;

    // The values for a set of keys, those that are there: a dictionary, possibly empty.
    virtual Ref<const ValDictionary> CopyProperties(const ValSet *keys, bool all) const;

    // The values that describe a face to a register, those that are there: what font-info files hold.
    Ref<const ValDictionary> CopyRegistrationProperties() const;

    // True when the face fits every parameter of a URL's (decoded) fragment that selects anything.
    virtual bool MatchesFragment(const ValString *fragment) const;

    // The orders of names: negative, 0 or positive; a missing name comes first. Families by foundry,
    // then as the user's language sorts them; PostScript names by code points.
    static int CompareFamilyNames(const ValString *a, const ValString *b);
    static int ComparePostScriptNames(const ValString *a, const ValString *b);
};

} // namespace vellum
