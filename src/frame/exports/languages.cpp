// SPDX-License-Identifier: MIT
// Exported: which languages are known, and what they are written with.
#include "describe/locale_manager.hpp"
#include "frame/exports/guard.hpp"
#include "platform/locale/exemplars.hpp"
#include "platform/locale/locale_names.hpp"
#include "values/val_array.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

#include <set>
#include <string>

using namespace vellum;

const ValArray *VLCopyExemplarLanguages() noexcept {
    return GuardCopy([] {
        // Some languages are known under two identifiers, one of which is not canonical.
        std::set<std::string> languages;
        for (size_t i = 0; i < CountSupportedLanguages(); ++i) {
            std::string language = CanonicalLanguageIdentifier(SupportedLanguageAt(i));
            if (HasExemplars(language)) languages.insert(std::move(language));
        }
        TValMutableArray array;
        for (const std::string &language : languages) array.Append(TValStr(language).Unique().Get());
        return array.Publish();
    });
}

const ValCharacterSet *VLCopyExemplarCharacterSet(const ValString *language) noexcept {
    if (!language) return nullptr;
    return GuardCopy([&] { return TLocaleManager().CopyExamplarSetForLanguage(language); });
}
