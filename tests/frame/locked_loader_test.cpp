// SPDX-License-Identifier: MIT
// Code that is loaded, with the loader's lock held, may ask for fonts and then waits for the register: so
// nobody who has the register may wait for the loader.
#include "platform/late/freetype.hpp"
#include "platform/late/harfbuzz.hpp"
#include "support/named_font.hpp"
#include "support/sleeping_threads.hpp"
#include "support/type1_font.hpp"
#include "support/values.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <thread>

extern "C" void WhileLoaderIsLocked();

namespace vellum::test {
namespace {

using namespace std::chrono_literals;

std::function<void()> sWhileLoaderIsLocked;

// A process without a legacy font service and a font server.
class LockedLoader : public ::testing::Test {
protected:
    LockedLoader() {
        ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
        ::setenv("VELLUM_FONTS_ROOT", folder.MakeFolder("root").c_str(), 1);
        ::setenv("VL_FRAMEWORK_RESOURCES_PATH", folder.MakeFolder("framework").c_str(), 1);
    }

    // Whether another thread gets through `work` while a library is being loaded in this one.
    bool IsDone(std::function<void()> work) {
        std::promise<void> done;
        bool is_done = false;
        sWhileLoaderIsLocked = [&] {
            other_ = std::thread([&, work = std::move(work)] {
                work();
                done.set_value();
            });
            is_done = done.get_future().wait_for(20s) == std::future_status::ready;
        };
        EXPECT_TRUE(::dlopen(VELLUM_CALLING_BUNDLE, RTLD_NOW)) << ::dlerror();
        other_.join();
        return is_done;
    }

    FontFolder folder;
    std::thread other_;
};

TEST_F(LockedLoader, KeepsNoThreadFromReadingFonts) {
    const auto missing = folder.URLOf("missing.ttf");
    EXPECT_FALSE(VLRegisterFont(missing.Get(), 0, kVLScopeProcess)); // which makes the register
    ASSERT_TRUE(sHarfBuzz.IsOpen() && sFreeType.IsOpen());
    const auto variable = folder.Add("variable.ttf", MakeVariableFont({"Variable"}, {700}));
    const std::string text = BuildPfa();
    const auto type1 = folder.Add("type1.pfa", Bytes(text.begin(), text.end()));
    const auto keys = Keys({kVLFontPropertyLocalizedNames, kVLFontPropertyTraits, kVLFontPropertyBookmark,
                            kVLFontPropertyVariationAxes, kVLFontPropertySupportedLanguages,
                            kVLFontPropertyUnicodeRanges, kVLFontPropertyPrimaryLanguage});
    EXPECT_TRUE(IsDone([&] {
        for (const auto &font : {variable, type1}) {
            EXPECT_TRUE(VLRegisterFont(font.Get(), 0, kVLScopeProcess));
            EXPECT_TRUE(Adopt(VLCopyPropertiesForFont(font.Get(), keys.Get(), kVLScopeProcess)));
        }
        EXPECT_TRUE(Adopt(VLCopyFontForCharacter('A', kVLScopeProcess, 0)));
        EXPECT_TRUE(Adopt(VLCopyAvailableFamilyNames(kVLScopeProcess)));
        EXPECT_TRUE(VLUnregisterFont(type1.Get(), 0, kVLScopeProcess));
    }));
}

// Loaded code asks for shared fonts when another thread has just begun to, and waits for the loader.
TEST_F(LockedLoader, IsNoneThatWhoMakesTheSharedRegisterWaitsForWithIt) {
    std::atomic<pid_t> asking = 0;
    sWhileLoaderIsLocked = [&] {
        other_ = std::thread([&] {
            asking = ::gettid();
            EXPECT_FALSE(Adopt(VLCopyAvailableFontNames(kVLScopeSession)));
        });
        while (asking == 0 || !IsAsleep(asking)) std::this_thread::yield();
        ::alarm(20); // the end of this process, if the two wait for each other
        EXPECT_FALSE(Adopt(VLCopyAvailableFontNames(kVLScopeSession)));
        ::alarm(0);
    };
    EXPECT_TRUE(::dlopen(VELLUM_CALLING_BUNDLE, RTLD_NOW)) << ::dlerror();
    other_.join();
}

} // namespace
} // namespace vellum::test

void WhileLoaderIsLocked() {
    vellum::test::sWhileLoaderIsLocked();
}
