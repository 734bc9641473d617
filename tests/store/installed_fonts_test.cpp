// SPDX-License-Identifier: MIT
// A register that takes in every font of the machine, is asked by every index, and lets them go.
#include "store/local_glyphary_imp.hpp"
#include "support/installed_fonts.hpp"
#include "support/temp_dir.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::IsEmpty;

// Asks an index for every `step`th of its keys, each time under the register's lock.
void AskIndex(const TLocalGlypharyImp &registry, uint16_t id, size_t first, size_t step) {
    Ref<const ValArray> keys;
    {
        const std::lock_guard lock(registry.Mutex());
        keys = registry.GetIndex(id)->CopyAllKeys();
    }
    for (size_t i = first; i < ValArrayGetCount(keys.Get()); i += step) {
        const void *key = ValArrayGetValue(keys.Get(), i);
        const auto url = id == kPathIndex ? FileURL(TextOf(key)) : nullptr;
        const std::lock_guard lock(registry.Mutex());
        const auto found = References(registry.GetIndex(id)->CopyFontsForKey(url ? url.Get() : key));
        ASSERT_FALSE(found.empty()) << TextOf(key);
        for (const FontReference reference : found)
            ASSERT_TRUE(registry.GetPossiblyDisabledFont(reference));
    }
}

TEST(ConcurrentRegister, TakesAllInstalledFontsAnswersByEveryIndexAndLetsThemGo) {
    const auto fonts = InstalledFonts();
    ASSERT_GT(fonts.size(), 500u);
    const auto urls = Array(fonts);
    TLocalGlypharyImp registry;
    Ref<const ValArray> errors;
    registry.RegisterFonts(urls.Get(), nullptr, 0, kVLScopeProcess, &errors);
    EXPECT_THAT(Texts(errors), IsEmpty());

    OnEveryThread([&](size_t thread) {
        for (uint16_t id = kPathIndex; id < kDisabledPathIndex; ++id)
            AskIndex(registry, id, thread, kThreads);
    });

    EXPECT_TRUE(registry.UnregisterFonts(urls.Get(), kVLScopeProcess, nullptr));
    for (uint16_t id = 0; id < kIndexCount; ++id)
        EXPECT_EQ(ValArrayGetCount(registry.GetIndex(id)->CopyAllKeys().Get()), 0u) << id;
    EXPECT_FALSE(registry.CopyAvailableFontURLs(kVLScopeProcess));
}

} // namespace
} // namespace vellum::test
