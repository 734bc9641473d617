// SPDX-License-Identifier: MIT
// Changes while memory runs out: each face is enabled or disabled, and is found as what it is.
#include "frame/registry/generation_seed.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/allocations.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <optional>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

// A register with two fonts, of which the second is disabled, and every index made.
class ChangesWithoutMemory : public ExhaustedMemoryTest {
protected:
    void StartAnew() {
        registry.emplace();
        for (const auto &url : {a, b})
            ASSERT_TRUE(registry->RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
        ASSERT_TRUE(registry->DisableFont(b.Get(), kVLScopeProcess));
        for (uint16_t id = 0; id < kIndexCount; ++id) registry->GetIndex(id);
        ASSERT_THAT(Names(), ElementsAre("A-Regular"));
    }

    std::vector<std::string> Names() const {
        return Texts(registry->CopyAvailableFontNames(kVLScopeProcess));
    }
    bool IsEnabled(const Ref<const ValURL> &url) const { return registry->IsFontEnabled(url.Get()); }
    static std::vector<std::string> TextsOf(const std::vector<Ref<const ValURL>> &urls) {
        return Texts(Array(urls));
    }

    // Lets the first allocation of change() fail, then the second, and looks with all(memory is back).
    template <class Change, class Look>
    int FailEachOf(Change change, Look look) {
        for (int n = 0;; ++n) {
            StartAnew();
            const uint32_t generation = TGenerationSeed::GetGeneration();
            Ref<const ValArray> changed;
            const bool failed = FailAfter(n, [&] {
                try {
                    changed = change();
                } catch (const std::bad_alloc &) {
                }
            });
            SCOPED_TRACE(n);
            const bool told = static_cast<bool>(changed);
            EXPECT_EQ(TGenerationSeed::GetGeneration() != generation, told);
            look(told, failed);
            if (HasFatalFailure() || !failed) return n;
        }
    }

    // Whatever happened before, all can be enabled now.
    void ExpectThatNothingIsLost() {
        registry->EnableFonts(Array({a, b}).Get(), kVLScopeProcess);
        EXPECT_TRUE(IsEnabled(a));
        EXPECT_TRUE(IsEnabled(b));
        EXPECT_THAT(Names(), UnorderedElementsAre("A-Regular", "B-Regular"));
        for (const char *name : {"A Regular", "B Regular"})
            EXPECT_EQ(
                References(registry->GetIndex(kFullNameIndex)->CopyFontsForKey(String(name).Get())).size(),
                1u)
                << name;
    }

    FontFolder folder;
    const Ref<const ValURL> a = folder.Add("a.ttf", MakeFont({"A"}));
    const Ref<const ValURL> b = folder.Add("deep/b.ttf", MakeFont({"B"}));
    std::optional<TLocalGlypharyImp> registry;
};

TEST_F(ChangesWithoutMemory, DisablingLosesNoFontAndTellsWhetherItChangedAny) {
    const auto urls = Array({a});
    const int allocations = FailEachOf([&] { return registry->DisableFonts(urls.Get(), kVLScopeProcess); },
                                       [&](bool told, bool failed) {
                                           EXPECT_EQ(IsEnabled(a), !told);
                                           EXPECT_FALSE(IsEnabled(b));
                                           EXPECT_TRUE(told || failed);
                                           ExpectThatNothingIsLost();
                                       });
    EXPECT_GT(allocations, 10);
}

TEST_F(ChangesWithoutMemory, EnablingLosesNoFontAndTellsWhetherItChangedAny) {
    const auto urls = Array({b});
    const int allocations = FailEachOf([&] { return registry->EnableFonts(urls.Get(), kVLScopeProcess); },
                                       [&](bool told, bool failed) {
                                           EXPECT_EQ(IsEnabled(b), told);
                                           EXPECT_TRUE(IsEnabled(a));
                                           EXPECT_TRUE(told || failed);
                                           ExpectThatNothingIsLost();
                                       });
    EXPECT_GT(allocations, 10);
}

// What was disabled before stays where it can be found, too.
TEST_F(ChangesWithoutMemory, UnregisteringOneFontLosesNoOther) {
    for (int n = 0;; ++n) {
        StartAnew();
        const bool failed = FailAfter(n, [&] {
            try {
                registry->UnregisterFont(a.Get(), kVLScopeProcess);
            } catch (const std::bad_alloc &) {
            }
        });
        SCOPED_TRACE(n);
        EXPECT_TRUE(registry->EnableFont(b.Get(), kVLScopeProcess));
        EXPECT_TRUE(IsEnabled(b));
        const FontReference reference = registry->GetFontReference(a.Get());
        EXPECT_EQ(reference != 0, IsEnabled(a));
        if (!failed) break;
    }
}

TEST_F(ChangesWithoutMemory, TheURLsThatChangedAreToldBesideOneThatFailed) {
    const auto c = folder.Add("c.ttf", MakeFont({"C"}));
    for (int n = 0;; ++n) {
        StartAnew();
        ASSERT_TRUE(registry->RegisterFont(c.Get(), nullptr, 0, kVLScopeProcess));
        Ref<const ValArray> changed;
        const auto urls = Array({a, c});
        const bool failed = FailAfter(n, [&] {
            try {
                changed = registry->DisableFonts(urls.Get(), kVLScopeProcess);
            } catch (const std::bad_alloc &) {
            }
        });
        SCOPED_TRACE(n);
        std::vector<Ref<const ValURL>> disabled;
        for (const auto &url : {a, c})
            if (!IsEnabled(url)) disabled.push_back(url);
        EXPECT_EQ(Texts(changed), TextsOf(disabled));
        if (!failed) break;
    }
}

TEST_F(ChangesWithoutMemory, WhatFailsIsToldBesideWhatIsRegistered) {
    const auto c = folder.Add("c.ttf", MakeFont({"C"})), d = folder.Add("d.ttf", MakeFont({"D"}));
    const auto urls = Array({c, d});
    for (int n = 0;; ++n) {
        StartAnew();
        Ref<const ValArray> errors;
        bool succeeded = false, thrown = false;
        const bool failed = FailAfter(n, [&] {
            try {
                succeeded = registry->RegisterFonts(urls.Get(), nullptr, 0, kVLScopeProcess, &errors);
            } catch (const std::bad_alloc &) {
                thrown = true;
            }
        });
        SCOPED_TRACE(n);
        std::vector<Ref<const ValURL>> missing;
        for (const auto &url : {c, d})
            if (!IsEnabled(url)) missing.push_back(url);
        EXPECT_EQ(succeeded, missing.empty());
        if (thrown)
            EXPECT_EQ(missing.size(), 2u);
        else
            EXPECT_EQ(Texts(errors), TextsOf(missing));
        if (!failed) break;
    }
}

} // namespace
} // namespace vellum::test
