// SPDX-License-Identifier: MIT
// A register and the model of it, over the same files, and the questions that are put to both.
#pragma once

#include "query/model.hpp"
#include "query/model_requests.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"

#include <gtest/gtest.h>

namespace vellum::test {

constexpr size_t kGeneratedFaces = 500;
constexpr size_t kInstalledFaces = 300;

class ModelWorld {
public:
    // Both take these files in, in this order; true when they say the same of each.
    bool Register(const std::vector<Ref<const ValURL>> &files);

    // Whether register and model answer the same, order included; of a request, also how many faces
    // answer it, unless `count` is null.
    ::testing::AssertionResult AgreeOnRequest(const ValDictionary *request, size_t *count = nullptr) const;
    ::testing::AssertionResult AgreeOnName(const ValString *name) const;
    ::testing::AssertionResult AgreeOnCharacter(uint32_t character) const;
    ::testing::AssertionResult AgreeOnURL(const ValURL *url) const;

    // Of which face the properties are that are copied for a URL, and for all that answers a request.
    ::testing::AssertionResult AgreeOnFontDescribed(const ValURL *url) const;
    ::testing::AssertionResult AgreeOnFontsDescribed(const ValDictionary *request) const;

    // The lists that have no order.
    ::testing::AssertionResult AgreeOnListings() const;
    ::testing::AssertionResult AgreeOnLanguage(const ValString *language) const;

    TLocalGlypharyImp registry;
    Model model;
};

// Over the generated fonts.
class GeneratedWorld : public ModelWorld {
public:
    GeneratedWorld();

    FontFolder folder;
    std::vector<Ref<const ValURL>> files;
};

// Over some of the fonts of this machine; `error` says why there are not enough of them.
class InstalledWorld : public ModelWorld {
public:
    InstalledWorld();

    std::string error;
    std::vector<Ref<const ValURL>> files;
};

} // namespace vellum::test
