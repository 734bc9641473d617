// SPDX-License-Identifier: MIT
// The languages that the locale service knows, and which of them a set of characters covers.
#pragma once

#include <vellum/values.hpp>

#include <mutex>
#include <string>
#include <vector>

namespace vellum {

// One for a process. Every operation is called with the mutex held, which is what TLocaleManager is for,
// and throws std::bad_alloc when memory is exhausted; it can then be tried again.
class TLocaleManagerImp {
public:
    TLocaleManagerImp() noexcept { MakeCaches(); }

    // The identifiers of the languages that are known, sorted (borrowed). They are as the locale service
    // spells them: "zh" is among them, whose canonical identifier is "zh-Hans".
    const ValArray *GetSupportedLanguages();

    // The characters that a language is written with, by any of its identifiers; each set is asked for
    // once in a process. Null for null, where the characters are not known, and where there is no memory
    // for remembering that.
    Ref<const ValCharacterSet> CopyExamplarSetForLanguage(const ValString *language);

    // The same, but only if it has been asked for before.
    Ref<const ValCharacterSet> CopyCachedExamplarSet(const ValString *language) const;

    // A new array: `languages` (null: none) as it stands, then the canonical identifier of each supported
    // language all of whose characters are in `set`, in the order of the supported languages and each
    // once. They are also added to `language_set` (null: not wanted). They are interned. Coverage is all
    // or nothing: who lacks one character of a language cannot write it.
    Ref<const ValArray> CopyLanguagesFromCharacterSet(const ValCharacterSet *set, const ValArray *languages,
                                                      ValSet *language_set);

private:
    friend class TLocaleManager;

    // A supported language with exemplars, ready to be compared with a face.
    struct TCoverage {
        Ref<const ValString> language; // canonical
        Ref<const ValCharacterSet> exemplars;
    };

    bool MakeCaches() noexcept;
    Ref<const ValCharacterSet> CopyExemplarsOf(const ValString *canonical, const std::string &text);
    const std::vector<TCoverage> &Coverages();

    std::mutex mutex_; // guards what follows
    Ref<const ValArray> supported_languages_;
    Ref<ValDictionary> exemplars_;  // from canonical identifiers
    Ref<ValSet> without_exemplars_; // canonical identifiers that are not asked for again
    std::vector<TCoverage> coverages_;
};

// A handle on the manager of this process, which is made by the first handle and never torn down. It
// holds the manager's mutex as long as it lives: ask, and let go. Who holds a register's lock may take a
// handle; who has a handle must not wait for a register.
class TLocaleManager {
public:
    TLocaleManager();
    TLocaleManager(const TLocaleManager &) = delete;
    TLocaleManager &operator=(const TLocaleManager &) = delete;

    const ValArray *GetSupportedLanguages() { return imp_.GetSupportedLanguages(); }
    Ref<const ValCharacterSet> CopyExamplarSetForLanguage(const ValString *language) {
        return imp_.CopyExamplarSetForLanguage(language);
    }
    Ref<const ValCharacterSet> CopyCachedExamplarSet(const ValString *language) const {
        return imp_.CopyCachedExamplarSet(language);
    }
    Ref<const ValArray> CopyLanguagesFromCharacterSet(const ValCharacterSet *set, const ValArray *languages,
                                                      ValSet *language_set) {
        return imp_.CopyLanguagesFromCharacterSet(set, languages, language_set);
    }

private:
    TLocaleManagerImp &imp_;
    const std::lock_guard<std::mutex> lock_;
};

} // namespace vellum
