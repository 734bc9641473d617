// SPDX-License-Identifier: MIT
#include "ipc/encoding/recent_strings.hpp"

#include "platform/val/string.hpp"
#include "values/string_uniquer.hpp"

#include <utility>

namespace vellum {

Ref<const ValString> TRecentStrings::GetUniqueString(std::string_view text) noexcept {
    const uint64_t hash = HashText(text);
    Ref<const ValString> *const places = &strings_[hash % kPlaces & ~size_t{1}];
    for (size_t i = 0; i < 2; ++i) {
        if (places[i] && Text(*places[i].Get()) == text) return places[i];
    }
    Ref<const ValString> string = TValStringUniquer().GetUniqueString(text);
    places[1] = std::exchange(places[0], string); // the newest first
    return string;
}

} // namespace vellum
