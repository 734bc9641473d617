// SPDX-License-Identifier: MIT
#include "describe/locale_manager.hpp"

#include "platform/locale/exemplars.hpp"
#include "platform/locale/locale_names.hpp"
#include "platform/val/character_set.hpp"
#include "values/out_of_memory.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_array.hpp"
#include "values/val_cast.hpp"

#include <algorithm>
#include <cstddef>
#include <new>
#include <string_view>
#include <utility>

namespace vellum {
namespace {

// Identifiers come from strangers. Past so many of them, answers are worked out anew each time.
constexpr size_t kMaximumRemembered = 2048;

// Made by the first call and never destroyed: threads may outlive the end of the program.
TLocaleManagerImp &Manager() noexcept {
    alignas(TLocaleManagerImp) static std::byte sStorage[sizeof(TLocaleManagerImp)];
    static auto *const sManager = new (sStorage) TLocaleManagerImp();
    return *sManager;
}

Ref<const ValString> Unique(std::string_view text) {
    return OrBadAlloc(TValStringUniquer().GetUniqueString(text));
}

std::string CanonicalText(const ValString *language) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(language, &length);
    return CanonicalLanguageIdentifier({bytes, length});
}

const ValCharacterSet *FindSet(const ValDictionary *sets, const ValString *canonical) noexcept {
    return Cast<ValCharacterSet>(ValDictionaryGetValue(sets, canonical));
}

} // namespace

// Where memory was exhausted, the next who needs them tries again.
bool TLocaleManagerImp::MakeCaches() noexcept {
    if (!exemplars_)
        exemplars_ = Adopt(ValDictionaryCreateMutable(0, &kValValueCallbacks, &kValValueCallbacks));
    if (!without_exemplars_) without_exemplars_ = Adopt(ValSetCreateMutable(0, &kValValueCallbacks));
    return exemplars_ && without_exemplars_;
}

const ValArray *TLocaleManagerImp::GetSupportedLanguages() {
    if (supported_languages_) return supported_languages_.Get();
    TValMutableArray languages(kValValueCallbacks, CountSupportedLanguages());
    for (size_t i = 0; i < CountSupportedLanguages(); ++i)
        languages.Append(Unique(SupportedLanguageAt(i)).Get());
    supported_languages_ = languages.Publish();
    return supported_languages_.Get();
}

Ref<const ValCharacterSet> TLocaleManagerImp::CopyExamplarSetForLanguage(const ValString *language) {
    if (!language || !MakeCaches()) return nullptr;
    const std::string text = CanonicalText(language);
    return text.empty() ? nullptr : CopyExemplarsOf(Unique(text).Get(), text);
}

Ref<const ValCharacterSet> TLocaleManagerImp::CopyCachedExamplarSet(const ValString *language) const {
    if (!language || !exemplars_) return nullptr;
    const std::string text = CanonicalText(language);
    return text.empty() ? nullptr : Retain(FindSet(exemplars_.Get(), Unique(text).Get()));
}

Ref<const ValCharacterSet> TLocaleManagerImp::CopyExemplarsOf(const ValString *canonical,
                                                              const std::string &text) {
    if (ValSetContains(without_exemplars_.Get(), canonical)) return nullptr;
    if (const ValCharacterSet *known = FindSet(exemplars_.Get(), canonical)) return Retain(known);
    if (auto set = CreateExemplarSet(text)) {
        set = ShareCharacterSet(std::move(set)); // with the languages that are written alike
        if (ValDictionaryGetCount(exemplars_.Get()) < kMaximumRemembered)
            OrBadAlloc(ValDictionarySetValue(exemplars_.Get(), canonical, set.Get()));
        return set;
    }
    if (ValSetGetCount(without_exemplars_.Get()) < kMaximumRemembered)
        OrBadAlloc(ValSetAdd(without_exemplars_.Get(), canonical));
    return nullptr;
}

// Canonicalising and looking up again for each face would take longer than comparing does.
const std::vector<TLocaleManagerImp::TCoverage> &TLocaleManagerImp::Coverages() {
    if (!coverages_.empty()) return coverages_;
    if (!MakeCaches()) throw std::bad_alloc();
    std::vector<TCoverage> coverages;
    for (const void *language : Elements(GetSupportedLanguages())) {
        const std::string text = CanonicalText(static_cast<const ValString *>(language));
        auto canonical = Unique(text);
        const auto is_same = [&](const TCoverage &other) {
            return ValEqual(other.language.Get(), canonical.Get());
        };
        if (std::ranges::any_of(coverages, is_same)) continue;
        if (auto exemplars = CopyExemplarsOf(canonical.Get(), text))
            coverages.push_back({std::move(canonical), std::move(exemplars)});
    }
    coverages_ = std::move(coverages);
    return coverages_;
}

Ref<const ValArray> TLocaleManagerImp::CopyLanguagesFromCharacterSet(const ValCharacterSet *set,
                                                                     const ValArray *languages,
                                                                     ValSet *language_set) {
    const std::vector<TCoverage> &coverages = Coverages();
    TValMutableArray result(kValValueCallbacks, ValArrayGetCount(languages) + coverages.size());
    if (languages) result.AppendArray(languages);
    for (const auto &[language, exemplars] : coverages) {
        if (!ValCharacterSetIsSuperset(set, exemplars.Get())) continue;
        result.Append(language.Get());
        if (language_set) OrBadAlloc(ValSetAdd(language_set, language.Get()));
    }
    return result.Publish();
}

TLocaleManager::TLocaleManager() : imp_(Manager()), lock_(imp_.mutex_) {}

} // namespace vellum
