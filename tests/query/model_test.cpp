// SPDX-License-Identifier: MIT
// Requests made by chance, answered by a register and by the model of it.
#include "query/model_world.hpp"

#include <memory>

namespace vellum::test {
namespace {

constexpr size_t kRequestsOfASeed = 1000;

// Tests of one suite share a world that none of them changes. A parameter seeds the generator.
template <class World>
class ModelRequestsTest : public ::testing::TestWithParam<int> {
protected:
    static void SetUpTestSuite() { sWorld = std::make_unique<World>(); }
    static void TearDownTestSuite() { sWorld.reset(); }

    static void Ask(int seed) {
        ModelRequests requests(sWorld->model.Enabled(), static_cast<uint64_t>(seed));
        size_t answered = 0, ordered = 0;
        for (size_t i = 0; i < kRequestsOfASeed; ++i) {
            const auto request = requests.Next();
            size_t faces = 0;
            ASSERT_TRUE(sWorld->AgreeOnRequest(request.Get(), &faces))
                << "seed " << seed << ", number " << i;
            answered += faces != 0 ? 1 : 0;
            ordered += faces > 1 ? 1 : 0;
        }
        // Requests that nothing answers tell little.
        EXPECT_GT(answered, kRequestsOfASeed / 4);
        EXPECT_GT(ordered, kRequestsOfASeed / 8);
    }

    static std::unique_ptr<World> sWorld;
};

template <class World>
std::unique_ptr<World> ModelRequestsTest<World>::sWorld;

using ModelOfGeneratedFonts = ModelRequestsTest<GeneratedWorld>;
using ModelOfInstalledFonts = ModelRequestsTest<InstalledWorld>;

TEST_P(ModelOfGeneratedFonts, AnswersRequestsAsTheRegisterDoes) {
    ASSERT_GE(sWorld->model.Enabled().size(), kGeneratedFaces);
    Ask(GetParam());
}

TEST_P(ModelOfInstalledFonts, AnswersRequestsAsTheRegisterDoes) {
    ASSERT_EQ(sWorld->error, "");
    Ask(GetParam() + 1000);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelOfGeneratedFonts, ::testing::Range(1, 11));
INSTANTIATE_TEST_SUITE_P(Seeds, ModelOfInstalledFonts, ::testing::Range(1, 11));

} // namespace
} // namespace vellum::test
