// SPDX-License-Identifier: MIT
// A list of interned names in the order in which they were added.
#pragma once

#include "values/string_uniquer.hpp"
#include "values/val_array.hpp"

namespace vellum {

class NameList {
public:
    // Null and names that the list holds already are passed over.
    void Add(Ref<const ValString> name) {
        const auto unique = TValStringUniquer().GetUniqueString(name.Get());
        if (unique && !names_.ContainsIdentical(unique.Get())) names_.Append(unique.Get());
    }

    // An alias, or an array of them, whether the list holds them already or not; what is no string is
    // passed over, and so is what would make the list longer than any face's.
    void AddAliases(const void *aliases) {
        if (const auto *alias = Cast<ValString>(aliases)) AddAlias(alias);
        for (const void *alias : Elements(Cast<ValArray>(aliases))) AddAlias(Cast<ValString>(alias));
    }

    bool IsEmpty() const noexcept { return names_.IsEmpty(); }

    // The names, or null when there are none; the list is spent.
    Ref<const ValArray> Publish() { return names_.IsEmpty() ? nullptr : names_.Publish(); }

private:
    // More names than any face goes by.
    static constexpr size_t kMaximumNames = 1024;

    void AddAlias(const ValString *alias) {
        if (alias && names_.Count() < kMaximumNames)
            names_.Append(TValStringUniquer().GetUniqueString(alias).Get());
    }

    TValMutableArray names_;
};

} // namespace vellum
