// SPDX-License-Identifier: MIT
// The characters that languages are written with, and the languages for which they are known.
#pragma once

#include <vellum/values.hpp>

#include <cstddef>
#include <string_view>

namespace vellum {

// The languages that are known by their bare codes, and "zh-Hans" and "zh-Hant", in ascending order of
// their identifiers. They are spelled as BCP 47 has them and not all canonical: "zh" is among them.
size_t CountSupportedLanguages() noexcept;
std::string_view SupportedLanguageAt(size_t index) noexcept; // empty past the end

// Whether it is known what a language is written with. A language without a set of its own is
// written with that of its nearest parent: "de-AT" with that of "de".
bool HasExemplars(std::string_view canonical);

// The standard characters, without those that only foreign words need, and in no other letter case
// than they are listed in. Null where they are not known. Throws std::bad_alloc when memory is exhausted.
Ref<const ValCharacterSet> CreateExemplarSet(std::string_view canonical);

} // namespace vellum
