// SPDX-License-Identifier: MIT
// A register and the model of it while fonts come, go, and are disabled and enabled.
#include "query/model_world.hpp"
#include "support/values.hpp"
#include "values/val_cast.hpp"

#include <algorithm>

namespace vellum::test {
namespace {

constexpr size_t kSteps = 60;
constexpr size_t kQuestionsAfterAStep = 20;

// Changes both sides alike, and then puts questions to both.
class Changer {
public:
    Changer(ModelWorld &world, const std::vector<Ref<const ValURL>> &files, uint64_t seed)
        : world_(world), files_(files), requests_(world.model.AllFaces(), seed) {}

    void Step() {
        switch (Random().Below(8)) {
        case 0:
        case 1:
            return Disable(requests_.AnyFace().url);
        case 2:
            return Disable(requests_.NextURL());
        case 3:
            return Enable(AnyDisabled());
        case 4:
            return Enable(requests_.NextURL());
        case 5:
            return Unregister(Random().Of(files_));
        case 6:
            return Unregister(requests_.AnyFace().url);
        default:
            for (size_t i = 0; i < 5; ++i) Register(Random().Of(files_));
        }
    }

    void Ask() {
        for (size_t i = 0; i < kQuestionsAfterAStep; ++i) ASSERT_NO_FATAL_FAILURE(AskOnce(i));
    }

private:
    ModelRandom &Random() { return requests_.Random(); }

    // To disable a whole folder would leave too few faces to ask about.
    bool IsTooMuch(const Ref<const ValURL> &url) const {
        return world_.model.FontsForURL(url.Get()).size() > 30;
    }

    Ref<const ValURL> AnyDisabled() {
        const auto &disabled = world_.model.Disabled();
        if (disabled.empty()) return requests_.AnyFace().url;
        const ModelFace *face = Random().Of(disabled);
        return Random().OneIn(2) ? face->url : FileURL(face->path);
    }

    void Disable(const Ref<const ValURL> &url) {
        if (IsTooMuch(url)) return;
        world_.registry.DisableFont(url.Get(), kVLScopeProcess);
        world_.model.Disable(url.Get());
    }

    void Enable(const Ref<const ValURL> &url) {
        world_.registry.EnableFont(url.Get(), kVLScopeProcess);
        world_.model.Enable(url.Get());
    }

    void Unregister(const Ref<const ValURL> &url) {
        EXPECT_TRUE(world_.registry.UnregisterFont(url.Get(), kVLScopeProcess));
        world_.model.Unregister(url.Get());
    }

    void Register(const Ref<const ValURL> &url) { EXPECT_TRUE(world_.Register({url})); }

    void AskOnce(size_t number) {
        const ModelFace &face = requests_.AnyFace();
        switch (number % 10) {
        case 0:
            ASSERT_TRUE(world_.AgreeOnURL(requests_.NextURL().Get()));
            ASSERT_TRUE(world_.AgreeOnURL(face.url.Get()));
            ASSERT_TRUE(world_.AgreeOnFontDescribed(requests_.NextURL().Get()));
            ASSERT_TRUE(world_.AgreeOnFontDescribed(AnyDisabled().Get()));
            break;
        case 1: {
            const auto name = requests_.Name(Random().Below(4), face);
            if (const auto *string = Cast<ValString>(name.Get())) {
                ASSERT_TRUE(world_.AgreeOnName(string));
            }
            break;
        }
        case 2:
            ASSERT_TRUE(world_.AgreeOnCharacter(face.coverage.empty() ? 'A' : face.coverage[0].first));
            break;
        case 3:
            ASSERT_TRUE(world_.AgreeOnListings());
            ASSERT_TRUE(world_.AgreeOnLanguage(String("en").Get()));
            break;
        default:
            ASSERT_TRUE(world_.AgreeOnRequest(requests_.Next().Get()));
        }
    }

    ModelWorld &world_;
    const std::vector<Ref<const ValURL>> &files_;
    ModelRequests requests_;
};

template <class World>
class ModelChangesTest : public ::testing::TestWithParam<int> {
protected:
    // Every other seed asks nothing for a while, so that the indexes are made late.
    void Change() {
        const auto seed = static_cast<uint64_t>(GetParam());
        Changer changer(world, world.files, seed);
        size_t most_disabled = 0;
        for (size_t i = 0; i < kSteps; ++i) {
            changer.Step();
            most_disabled = std::max(most_disabled, world.model.Disabled().size());
            if (seed % 2 == 0 && i < kSteps / 3) continue;
            changer.Ask();
            ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << i;
        }
        EXPECT_GT(world.model.Enabled().size(), 50u);
        EXPECT_GT(most_disabled, 5u);
    }

    World world;
};

using ModelOfChangingGeneratedFonts = ModelChangesTest<GeneratedWorld>;
using ModelOfChangingInstalledFonts = ModelChangesTest<InstalledWorld>;

TEST_P(ModelOfChangingGeneratedFonts, AnswersAsTheRegisterDoes) {
    Change();
}

TEST_P(ModelOfChangingInstalledFonts, AnswersAsTheRegisterDoes) {
    ASSERT_EQ(world.error, "");
    Change();
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelOfChangingGeneratedFonts, ::testing::Range(1, 7));
INSTANTIATE_TEST_SUITE_P(Seeds, ModelOfChangingInstalledFonts, ::testing::Range(1, 5));

} // namespace
} // namespace vellum::test
