// SPDX-License-Identifier: MIT
// Whether comparing with the model can fail, and whether the generated fonts are what it needs.
#include "query/model_world.hpp"

#include <algorithm>
#include <set>

namespace vellum::test {
namespace {

std::string TextOf(const ModelFace &face, size_t kind) {
    return face.preferred[kind] ? face.preferred[kind]->text : "";
}

std::string KeyOf(const ModelFace &face, size_t kind) {
    return face.preferred[kind] ? face.preferred[kind]->key : "";
}

class ModelCheck : public ::testing::Test {
protected:
    // Of so many requests, how many are answered differently.
    size_t CountDisagreements(size_t requests) const {
        ModelRequests maker(world.model.AllFaces(), 3);
        size_t disagreements = 0;
        for (size_t i = 0; i < requests; ++i) {
            if (!world.AgreeOnRequest(maker.Next().Get())) ++disagreements;
        }
        return disagreements;
    }

    size_t CountFaces(const auto &is) const {
        return static_cast<size_t>(
            std::ranges::count_if(world.model.Enabled(), [&](const ModelFace *face) { return is(*face); }));
    }

    size_t CountPairs(const auto &are) const {
        size_t pairs = 0;
        for (const ModelFace *a : world.model.Enabled())
            pairs += CountFaces([&](const ModelFace &b) { return a < &b && are(*a, b); });
        return pairs;
    }

    GeneratedWorld world;
};

TEST_F(ModelCheck, FindsNothingInARightModel) {
    EXPECT_EQ(CountDisagreements(200), 0u);
}

TEST_F(ModelCheck, FindsFacesInAnotherOrderOfRegistration) {
    const auto &faces = world.model.Enabled();
    for (size_t a = 0; a < faces.size(); ++a) {
        for (size_t b = a + 1; b < faces.size(); ++b) {
            if (ModelCompare(*faces[a], *faces[b], {}) == 0) {
                world.model.Swap(a, b);
                EXPECT_GT(CountDisagreements(200), 0u);
                return;
            }
        }
    }
    FAIL() << "no two faces are equal in the order";
}

TEST_F(ModelCheck, FindsOneFaceTooFew) {
    world.model.Disable(world.model.Enabled()[250]->url.Get());
    EXPECT_GT(CountDisagreements(200), 0u);
}

TEST_F(ModelCheck, HasFacesThatShareNamesAndDifferInTraits) {
    EXPECT_GT(CountPairs([](const ModelFace &a, const ModelFace &b) {
                  return ModelCompare(a, b, {}) > 0 && ModelCompare(b, a, {}) > 0;
              }),
              5u); // each comes after the other
    EXPECT_GT(CountPairs([](const ModelFace &a, const ModelFace &b) {
                  return TextOf(a, kModelPostScript) == TextOf(b, kModelPostScript) &&
                         ModelCompare(a, b, {}) != 0;
              }),
              50u);
    EXPECT_GT(
        CountPairs([](const ModelFace &a, const ModelFace &b) { return ModelCompare(a, b, {}) == 0; }),
        20u);
    EXPECT_GT(CountPairs([](const ModelFace &a, const ModelFace &b) {
                  return TextOf(a, kModelFamily) != TextOf(b, kModelFamily) &&
                         KeyOf(a, kModelFamily) == KeyOf(b, kModelFamily);
              }),
              20u);
    std::set<double> weights;
    std::set<uint32_t> classes;
    for (const ModelFace *face : world.model.Enabled()) {
        weights.insert(face->traits->weight);
        classes.insert(face->traits->symbolic >> 28);
    }
    EXPECT_GT(weights.size(), 8u);
    EXPECT_GT(classes.size(), 8u);
}

TEST_F(ModelCheck, HasFacesOfEveryKindThatTheRulesTellApart) {
    const auto is_named = [](const char *name) {
        return [=](const ModelFace &face) { return TextOf(face, kModelPostScript) == name; };
    };
    EXPECT_GT(CountFaces(is_named("Endstop")), 0u);
    EXPECT_GT(CountFaces(is_named("endstop")), 0u);
    EXPECT_GT(CountFaces([](const ModelFace &face) { return !face.preferred[kModelSubfamily]; }), 0u);
    EXPECT_GT(CountFaces([](const ModelFace &face) { return face.variations.has_value(); }), 60u);
    EXPECT_GT(CountFaces([](const ModelFace &face) { return face.names[kModelFamily].size() > 1; }), 60u);
    EXPECT_GT(
        CountFaces([](const ModelFace &face) { return face.url_text.find('#') != std::string::npos; }),
        100u);
    EXPECT_GT(CountFaces([](const ModelFace &face) { return face.languages && !face.languages->empty(); }),
              100u);
}

} // namespace
} // namespace vellum::test
