// SPDX-License-Identifier: MIT
// TFontEntity: the view of one face that every query and every property copy works on.
//
// Matching and ordering are defined in query/, derivation here.
#pragma once

#include <vellum/values.hpp>

namespace vellum {

// What a request says about the order of the faces that answer it.
class TFontEntityComparisonContext {
public:
    TFontEntityComparisonContext() noexcept = default;

    // From a request: a dictionary, or the set of its keys; borrowed, it must outlive the context.
    explicit TFontEntityComparisonContext(const void *request) noexcept;

    // That of a lookup by name.
    static TFontEntityComparisonContext ForPostScriptName() noexcept {
        TFontEntityComparisonContext context;
        context.names_postscript_name_ = true;
        return context;
    }

    bool NamesPostScriptName() const noexcept { return names_postscript_name_; }

    // The very object that the request holds (borrowed), or null. That an equal string is not meant is
    // deliberate: it acts on names that the library handed out, and on requests that a server has read.
    const ValString *PreferredSubfamily() const noexcept { return preferred_subfamily_; }

private:
    bool names_postscript_name_ = false;
    const ValString *preferred_subfamily_ = nullptr; // only where no PostScript name is named
};

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

    // True when the face fits every key of a request, by the rule of the key in the property table; the
    // first that it does not fit ends the test. It fits an empty request, and null.
    virtual bool MatchesProperties(const ValDictionary *request) const;
    virtual bool MatchesProperty(const ValString *key, const void *requested) const;

    // True when `variations`, where the face stands on each axis, has what is requested: by the axes'
    // names, or by their identifiers, which the face's own axes translate.
    virtual bool MatchesVariations(const ValDictionary *requested, const ValDictionary *variations) const;

    // True when the face fits every parameter of a URL's (decoded) fragment that selects anything.
    virtual bool MatchesFragment(const ValString *fragment) const;

    // True when traits (null: the face's own) have every bit and, within a tolerance, every value that is
    // requested. Null requests nothing; but a face without traits matches nothing.
    virtual bool MatchesTraits(const ValDictionary *requested, const ValDictionary *traits) const;

    // The order in which faces answer a request: -1 when this one comes before `other`, 0, or 1. It is no
    // strict weak order: of two faces, each may come after the other. To be sorted with MergeSort only.
    int Compare(const TFontEntity &other, const TFontEntityComparisonContext *context) const;

    // The same, but for what a request for a PostScript name adds.
    static int CompareFontEntities(const TFontEntity &a, const TFontEntity &b,
                                   const TFontEntityComparisonContext *context);

    static int CompareTraits(const ValDictionary *a, const ValDictionary *b);

    // The orders of names: negative, 0 or positive; a missing name comes first. Families by foundry,
    // then as the user's language sorts them; PostScript names by code points.
    static int CompareFamilyNames(const ValString *a, const ValString *b);
    static int ComparePostScriptNames(const ValString *a, const ValString *b);

    // Which foundry's name, or "#", a family's name begins with: its place in a table, the last one that
    // fits; -1 for none. Families are ordered by it first.
    static int FoundryPrefix(const ValString *name);
};

} // namespace vellum
