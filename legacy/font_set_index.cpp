// SPDX-License-Identifier: MIT
// Reads what has come to a set since it was last asked of.
#include "font_set_index.hpp"

namespace vellum::legacy {

bool TFontSetIndex::Has(const FcFontSet *set, const std::string &path) {
    if (!set) return false;
    Follow(*set);
    auto found = places_.find(path);
    if (found == places_.end()) return false;
    if (FileOf(set->fonts[found->second]) == path) return true;
    set_ = nullptr;
    Follow(*set);
    return places_.contains(path);
}

bool TFontSetIndex::Continues(const FcFontSet &set) const {
    if (&set != set_ || set.nfont < count_) return false;
    if (count_ == 0) return true;
    const FcPattern *last = set.fonts[count_ - 1];
    return last == last_ && places_.contains(std::string(FileOf(last)));
}

void TFontSetIndex::Follow(const FcFontSet &set) {
    if (!Continues(set)) {
        places_.clear();
        count_ = 0;
    }
    set_ = &set;
    for (; count_ < set.nfont; ++count_) {
        last_ = set.fonts[count_];
        places_.emplace(FileOf(last_), count_);
    }
}

} // namespace vellum::legacy
