// SPDX-License-Identifier: MIT
// Which files the fonts of a set lie in, without walking it for each question.
#pragma once

#include "fontconfig.hpp"

#include <string>
#include <unordered_map>

namespace vellum::legacy {

// Follows one set of whatever configuration is current: fonts are added at its end, or the whole set is
// replaced. It may be replaced by one at the same address between calls: nothing is remembered of a set
// that is not looked up in it again before it is believed.
class TFontSetIndex {
public:
    // Whether a font of the set lies in this file. `set` may be null.
    bool Has(const FcFontSet *set, const std::string &path);

private:
    bool Continues(const FcFontSet &set) const;
    void Follow(const FcFontSet &set);

    const FcFontSet *set_ = nullptr; // what was read, never followed but as an argument
    const FcPattern *last_ = nullptr;
    int count_ = 0;
    std::unordered_map<std::string, int> places_; // the first font of each file
};

} // namespace vellum::legacy
