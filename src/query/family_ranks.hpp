// SPDX-License-Identifier: MIT
// Family names as numbers in the same order: comparing names by the user's language is slow, so it is done
// once for each name, and not again while others come and go.
#pragma once

#include <vellum/values.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace vellum {

class FamilyRanks {
public:
    struct Family {
        Ref<const ValString> name;
        int prefix = -1;      // TFontEntity::FoundryPrefix
        std::string sort_key; // the order of names with one prefix
        uint32_t rank = 0;    // equal for equal names; moves when a name is added
    };

    // The family of each name (null: the one of faces without a family, before all others), in their
    // order; the families live as long as this. Names are told apart by identity first.
    std::vector<const Family *> FindOrAdd(const std::vector<const ValString *> &names);

    // Names stay when their fonts are gone: who has this many more of them than fonts clears.
    static constexpr size_t kSpareFamilies = 256;

    size_t Count() const noexcept { return families_.size(); }
    void Clear() noexcept;

private:
    void Insert(std::vector<std::unique_ptr<Family>> fresh);

    std::vector<std::unique_ptr<Family>> families_; // in order
    std::unordered_map<const ValString *, const Family *> by_name_;
    Family nameless_;
};

} // namespace vellum
