// SPDX-License-Identifier: MIT
#include "query/family_ranks.hpp"

#include "describe/font_entity.hpp"
#include "platform/val/sort_key.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vellum {

namespace {

using FamilyPointer = std::unique_ptr<FamilyRanks::Family>;

// The order of TFontEntity::CompareFamilyNames.
bool ComesBefore(const FamilyPointer &a, const FamilyPointer &b) noexcept {
    return a->prefix != b->prefix ? a->prefix < b->prefix : a->sort_key < b->sort_key;
}

FamilyPointer MakeFamily(const ValString *name) {
    auto family = std::make_unique<FamilyRanks::Family>();
    family->name = Retain(name);
    family->prefix = TFontEntity::FoundryPrefix(name);
    family->sort_key = MakeSortKey(*name);
    return family;
}

} // namespace

std::vector<const FamilyRanks::Family *>
FamilyRanks::FindOrAdd(const std::vector<const ValString *> &names) {
    std::vector<FamilyPointer> fresh;
    for (const ValString *name : names) {
        if (!name || by_name_.contains(name)) continue;
        fresh.push_back(MakeFamily(name));
        by_name_.emplace(name, fresh.back().get());
    }
    if (!fresh.empty()) Insert(std::move(fresh));
    std::vector<const Family *> found;
    found.reserve(names.size());
    for (const ValString *name : names) found.push_back(name ? by_name_.at(name) : &nameless_);
    return found;
}

void FamilyRanks::Insert(std::vector<FamilyPointer> fresh) {
    std::ranges::sort(fresh, ComesBefore);
    std::vector<FamilyPointer> merged(families_.size() + fresh.size());
    std::merge(std::move_iterator(families_.begin()), std::move_iterator(families_.end()),
               std::move_iterator(fresh.begin()), std::move_iterator(fresh.end()), merged.begin(),
               ComesBefore);
    families_ = std::move(merged);
    uint32_t rank = 0;
    const FamilyPointer *former = nullptr;
    for (const FamilyPointer &family : families_) {
        if (!former || ComesBefore(*former, family)) ++rank;
        family->rank = rank;
        former = &family;
    }
}

void FamilyRanks::Clear() noexcept {
    by_name_.clear();
    families_.clear();
}

} // namespace vellum
