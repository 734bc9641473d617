// SPDX-License-Identifier: MIT
// The generation moves with every change of a register, and not before the change can be seen: caches
// hold what was asked within one generation to be the answer in all of it.
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/generation_seed.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>

namespace vellum::test {
namespace {

class Generation : public ::testing::Test {
protected:
    // How far `change` moves the generation.
    template <class Change>
    static uint32_t MovedBy(Change change) {
        const uint32_t before = TGenerationSeed::GetGeneration();
        change();
        return TGenerationSeed::GetGeneration() - before;
    }

    FontFolder folder;
    TLocalGlypharyImp registry;
};

TEST_F(Generation, MovesWhenAFileIsRegisteredDisabledEnabledAndUnregistered) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    EXPECT_GT(MovedBy([&] { registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.DisableFont(url.Get(), kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.EnableFont(url.Get(), kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.UnregisterFont(url.Get(), kVLScopeProcess); }), 0U);
}

TEST_F(Generation, MovesWithChangesOfSeveralFiles) {
    const auto urls = Array({folder.Add("a.ttf", MakeFont({"A"})), folder.Add("b.ttf", MakeFont({"B"}))});
    EXPECT_GT(MovedBy([&] { registry.RegisterFonts(urls.Get(), nullptr, 0, kVLScopeProcess, nullptr); }),
              0U);
    EXPECT_GT(MovedBy([&] { registry.DisableFonts(urls.Get(), kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.EnableFonts(urls.Get(), kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.UnregisterFonts(urls.Get(), kVLScopeProcess, nullptr); }), 0U);
}

TEST_F(Generation, MovesWhenAFontInMemoryComesAndGoes) {
    const Bytes bytes = MakeFont({"A"});
    const auto data = Adopt(ValDataCreate(bytes.data(), bytes.size()));
    EXPECT_GT(MovedBy([&] { registry.RegisterDataFont(data.Get(), 0, 0, kVLScopeProcess); }), 0U);
    EXPECT_GT(MovedBy([&] { registry.UnregisterDataFont(data.Get(), kVLScopeProcess); }), 0U);
}

TEST_F(Generation, StaysWhenNothingChanges) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    const auto missing = folder.URLOf("missing.ttf");
    registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess);
    EXPECT_EQ(MovedBy([&] { registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess); }), 0U);
    EXPECT_EQ(MovedBy([&] { registry.RegisterFont(missing.Get(), nullptr, 0, kVLScopeProcess); }), 0U);
    EXPECT_EQ(MovedBy([&] { registry.DisableFont(missing.Get(), kVLScopeProcess); }), 0U);
    EXPECT_EQ(MovedBy([&] { registry.EnableFont(url.Get(), kVLScopeProcess); }), 0U);
    EXPECT_EQ(MovedBy([&] { registry.CopyAvailableFontNames(kVLScopeProcess); }), 0U);
}

// One thread changes a font's state until another has asked often enough in undisturbed generations: of all
// that it asks within one, the answers are the same.
TEST(ConcurrentGeneration, HasOneAnswerInAllOfIt) {
    constexpr int kAnswers = 500;
    FontFolder folder;
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    std::atomic<bool> enough{false};
    std::thread changing([&] {
        while (!enough) {
            TLocalGlyphary().RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess);
            TLocalGlyphary().DisableFont(url.Get(), kVLScopeProcess);
            TLocalGlyphary().EnableFont(url.Get(), kVLScopeProcess);
            TLocalGlyphary().UnregisterFont(url.Get(), kVLScopeProcess);
        }
    });
    std::map<uint32_t, bool> answers;
    int disagreements = 0;
    for (int asked = 0; asked < kAnswers;) {
        const uint32_t before = TGenerationSeed::GetGeneration();
        const bool answer = TLocalGlyphary().IsFontEnabled(url.Get());
        if (TGenerationSeed::GetGeneration() != before) continue;
        ++asked;
        const auto [entry, added] = answers.emplace(before, answer);
        if (!added && entry->second != answer) ++disagreements;
    }
    enough = true;
    changing.join();
    EXPECT_EQ(disagreements, 0);
}

} // namespace
} // namespace vellum::test
