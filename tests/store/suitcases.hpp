// SPDX-License-Identifier: MIT
// Suitcases for tests, and the files that one names as short texts.
#pragma once

#include "store/suitcase.hpp"
#include "support/resource_fork.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vellum::test {

using Names = std::vector<std::string>;

inline constexpr char kFolder[] = "file:///fonts/of/mine/";

// The files that a fork names, less the folder that each must be in.
inline Names FilesOf(const Bytes &fork) {
    const auto folder = MakeURL(kFolder);
    const auto urls = CreatePlatenFontURLsFromFork(TReading(TBytes(fork), nullptr), folder.Get());
    if (!urls) return {"(null)"};
    Names names = Texts(urls);
    for (std::string &name : names) {
        if (!name.starts_with(kFolder)) ADD_FAILURE() << name;
        name.erase(0, sizeof kFolder - 1);
        if (name.empty() || name.find('/') != name.npos) ADD_FAILURE() << name;
    }
    return names;
}

inline Resource Family(const FamilyFields &fields) {
    return {"FOND", 128, FamilyResource(fields)};
}

inline Names FilesOf(const FamilyFields &family) {
    return FilesOf(ForkOf({Family(family)}));
}

// A family of one face whose PostScript name is given.
inline FamilyFields Face(const std::string &name) {
    return {{{0, 0, 1}}, {name}};
}

// Regular, bold, italic and both.
inline FamilyFields FourStyles(const std::string &name) {
    return {{{0, 0, 1}, {0, 1, 2}, {0, 2, 3}, {0, 3, 4}},
            {name, "\5\6", "\5\7", "\5\6\7", "-", "Bold", "Italic"},
            {{0, 1}, {1, 2}, {2, 3}, {3, 4}}};
}

inline Bytes TwoFamilies(ForkOrder order = ForkOrder::kResourcesFirst) {
    return ForkOf({{"vers", 1, {1, 2, 3}},
                   Family(FourStyles("Garamond")),
                   {"NFNT", 300, Bytes(40)},
                   Family(FourStyles("TimesNew"))},
                  order);
}

inline const Names kTwoFamilies = {"Garam",    "GaramBol",    "GaramIta",    "GaramBolIta",
                                   "TimesNew", "TimesNewBol", "TimesNewIta", "TimesNewBolIta"};

} // namespace vellum::test
