// SPDX-License-Identifier: MIT
// The answers for names that the server keeps: when they are found anew, and that they are few.
#include "frame/registry/generation_seed.hpp"
#include "platform/process/passing_failures.hpp"
#include "running_server.hpp"
#include "server/kept_names.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

class KeptNamesOfFonts : public ::testing::Test {
protected:
    // What is answered for a name whose font is at `url` by now.
    std::string Ask(std::string_view name, const std::string &url) {
        return names_.Get(name, [&] {
            ++found_;
            return url;
        });
    }

    KeptNames names_;
    int found_ = 0;
};

TEST_F(KeptNamesOfFonts, AreFoundOnceUntilAFontChanges) {
    EXPECT_EQ(Ask("A", "file:///a"), "file:///a");
    EXPECT_EQ(Ask("", "file:///none"), "file:///none");
    EXPECT_EQ(Ask("A", "file:///b"), "file:///a");
    EXPECT_EQ(Ask("", "file:///b"), "file:///none");
    EXPECT_EQ(found_, 2);
    TGenerationSeed::UpdateGeneration();
    EXPECT_EQ(Ask("A", "file:///b"), "file:///b");
    EXPECT_EQ(Ask("A", "file:///c"), "file:///b");
    EXPECT_EQ(found_, 3);
}

TEST_F(KeptNamesOfFonts, DifferByEachLetter) {
    EXPECT_EQ(Ask("Ab", "file:///1"), "file:///1");
    EXPECT_EQ(Ask("AB", "file:///2"), "file:///2");
    EXPECT_EQ(Ask("A", "file:///3"), "file:///3");
    EXPECT_EQ(Ask("Abf", "file:///4"), "file:///4");
    EXPECT_EQ(Ask("AB", "file:///5"), "file:///2");
}

TEST_F(KeptNamesOfFonts, AreSoughtAgainWhereNothingWasFound) {
    EXPECT_EQ(Ask("A", ""), "");
    EXPECT_EQ(Ask("A", "file:///a"), "file:///a");
    EXPECT_EQ(found_, 2);
}

TEST_F(KeptNamesOfFonts, AreSoughtAgainWhereAFontCouldNotBeRead) {
    const auto fails = [] {
        ++tPassingFailures;
        return std::string("file:///second-best");
    };
    EXPECT_EQ(names_.Get("A", fails), "file:///second-best");
    EXPECT_EQ(Ask("A", "file:///best"), "file:///best");
    EXPECT_EQ(Ask("A", "file:///other"), "file:///best");
}

TEST_F(KeptNamesOfFonts, StayRightHoweverManyAndLongTheyAre) {
    for (const size_t length : {size_t{1}, size_t{900}})
        for (int round = 0; round < 2; ++round)
            for (int i = 0; i < 5000; ++i) {
                const std::string name = std::string(length, 'n') + std::to_string(i),
                                  url = "file:///" + name;
                ASSERT_EQ(Ask(name, url), url);
                ASSERT_EQ(Ask(name, ""), url);
            }
    EXPECT_GE(found_, 5000 * 3); // the first have been forgotten meanwhile
}

// Each change of this process has it ask the server again, which has kept the answer of before.
TEST(NamesOfARunningServer, AreThoseOfTheFontsThatAreEnabledNow) {
    RunningServer server;
    ASSERT_TRUE(server.Start());
    const FontFolder folder;
    const auto font = folder.Add("kept.ttf", NamedFace{"Kept"});
    const auto is_found = [] {
        constexpr VLActivationOptions kNone = kVLActivationNotFromProviders | kVLActivationNotFromSearch;
        const auto name = String("Kept-Regular");
        return static_cast<bool>(Adopt(VLCopyFontWithName(name.Get(), kVLScopeUser, kNone)));
    };
    for (const VLScope scope : {kVLScopeSession, kVLScopeUser}) {
        ASSERT_TRUE(VLRegisterFont(font.Get(), 0, scope));
        EXPECT_TRUE(is_found()) << scope;
        VLDisableFonts(Array({font}).Get(), 0, scope);
        EXPECT_FALSE(is_found()) << scope;
        VLEnableFonts(Array({font}).Get(), 0, scope);
        EXPECT_TRUE(is_found()) << scope;
        ASSERT_TRUE(VLUnregisterFont(font.Get(), 0, scope));
        EXPECT_FALSE(is_found()) << scope;
    }
}

} // namespace
} // namespace vellum::test
