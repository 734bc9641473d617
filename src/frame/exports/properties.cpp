// SPDX-License-Identifier: MIT
// Exported: copies of font properties.
#include "frame/exports/arguments.hpp"
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <iterator>

using namespace vellum;

namespace {

// `answers`, with what `more` has beside it.
void MergeInto(TValMutableDict &answers, const ValDictionary *more) {
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(more, &cursor, &key, &value);)
        if (!ValDictionaryContainsKey(answers.Get(), key)) answers.Set(key, value);
}

// Each font's answer from the process's register, else from the shared one; null when there is none.
template <class Ask>
Ref<const ValDictionary> AskBothForEachFont(VLScope scope, Ask ask) {
    TValMutableDict answers;
    if (AsksProcess(scope)) MergeInto(answers, ask(ProcessRegister()).Get());
    if (AsksShared(scope)) MergeInto(answers, ask(SharedRegister()).Get());
    return answers.IsEmpty() ? nullptr : answers.Publish();
}

// Where the summary has its fonts, and what it says of each.
constexpr int32_t kSummaryOfFonts = 1;

Ref<const ValSet> SummaryProperties() {
    const void *const keys[] = {
        kVLFontPropertyURL,
        kVLFontPropertyName,
        kVLFontPropertyFamilyName,
        kVLFontPropertyLocalizedNames,
        kVLFontPropertySupportedLanguages,
        kVLFontPropertyDesignLanguages,
        kVLFontPropertySubfamilyName,
        kVLFontPropertyEnabled,
        kVLFontPropertyTraits,
    };
    return OrBadAlloc(Adopt(ValSetCreate(keys, std::size(keys))));
}

} // namespace

const ValDictionary *VLCopyPropertiesForFont(const ValURL *font, const ValSet *keys,
                                             VLScope scope) noexcept {
    if (!IsArgument<ValURL>(font) || !IsArgument<ValSet>(keys)) return nullptr;
    return GuardCopy([&] {
        return AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyPropertiesForFont(font, keys, scope);
        });
    });
}

const ValDictionary *VLCopyPropertiesForFonts(const ValArray *fonts, const ValSet *keys,
                                              VLScope scope) noexcept {
    if (!IsArgument<ValArray>(fonts) || !IsArgument<ValSet>(keys)) return nullptr;
    return GuardCopy([&] {
        return AskBothForEachFont(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyPropertiesForFonts(fonts, keys, scope);
        });
    });
}

const ValDictionary *VLCopyPropertyForFonts(const ValArray *fonts, const ValString *key,
                                            VLScope scope) noexcept {
    if (!IsArgument<ValArray>(fonts) || !IsArgument<ValString>(key)) return nullptr;
    return GuardCopy([&] {
        return AskBothForEachFont(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyPropertyForFonts(fonts, key, scope);
        });
    });
}

const ValArray *VLCopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) noexcept {
    if (!IsArgument<ValSet>(keys)) return nullptr;
    return GuardCopy([&]() -> Ref<const ValArray> {
        TValMutableArray all;
        if (AsksProcess(scope))
            all.AppendArray(ProcessRegister().CopyPropertiesForAllFonts(keys, scope).Get());
        if (AsksShared(scope))
            all.AppendArray(SharedRegister().CopyPropertiesForAllFonts(keys, scope).Get());
        return all.IsEmpty() ? nullptr : all.Publish();
    });
}

const ValDictionary *VLExperimentalDataFunnel(const ValDictionary *query, VLScope scope) noexcept {
    return GuardCopy([&] {
        TValMutableDict summary;
        if (AsksProcess(scope)) {
            const auto fonts =
                ProcessRegister().CopyPropertiesForAllFonts(SummaryProperties().Get(), kVLScopeProcess);
            if (fonts) summary.Set(MakeNumber(kSummaryOfFonts).Get(), fonts.Get());
        }
        if (AsksShared(scope)) {
            const auto shared = SharedRegister().ExperimentalDataFunnel(query, scope);
            for (const auto &[key, value] : TValDict(shared)) summary.Set(key, value);
        }
        return summary.Publish();
    });
}

VLScope VLGetScopeForFont(const ValURL *font) noexcept {
    if (!IsArgument<ValURL>(font)) return 0;
    return Guard([&] {
        const VLScope own = ProcessRegister().GetFontScope(font); // the handle goes before the other comes
        return own | SharedRegister().GetFontScope(font);
    });
}

// Properties come from the fonts themselves: nothing is set or removed.

void VLSetPropertiesForFonts(const ValArray *, const ValDictionary *, VLScope) noexcept {}

void VLRemovePropertiesForFonts(const ValArray *, const ValSet *, VLScope) noexcept {}
