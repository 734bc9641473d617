// SPDX-License-Identifier: MIT
// The exported query for a character, and what it remembers.
#include "ipc/client/character_reject_cache.hpp"
#include "query_registers.hpp"

#include <functional>
#include <thread>

namespace vellum::test {
namespace {

using RejectedCharacters = QueryRegisters;

// ---- characters that no font has ----

TEST_F(RejectedCharacters, ACharacterIsDrawnByTheProcessOrElseByTheShared) {
    AddShared("s.ttf", FontWith({"A", "Regular", "A Regular", "Shared"}, 'A', 'Z').Build());
    Add("o.ttf", FontWith({"Z", "Regular", "Z Regular", "Own"}, 'A', 'B').Build());
    EXPECT_EQ(Drawing('A', kVLScopeAll), "Own");
    EXPECT_EQ(Drawing('Z', kVLScopeAll), "Shared");
    EXPECT_EQ(Drawing('B', kVLScopeUser), "Shared");
}

TEST_F(RejectedCharacters, ACharacterOnceRejectedIsRejectedForEveryScope) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    ASSERT_EQ(Drawing('B'), "A");
    EXPECT_EQ(Drawing('A', 0), "(null)"); // nobody was asked
    EXPECT_EQ(Drawing('A'), "(null)");
    EXPECT_EQ(Drawing('A', kVLScopeAll), "(null)");
    EXPECT_EQ(Drawing('B'), "A");
}

TEST_F(RejectedCharacters, ACharacterThatTheProcessLacksIsRejectedForTheSharedToo) {
    AddShared("s.ttf", FontWith({"A", "Regular", "A Regular", "Shared"}, 'A', 'Z').Build());
    EXPECT_EQ(Drawing('A', kVLScopeProcess), "(null)");
    EXPECT_EQ(Drawing('A', kVLScopeAll), "(null)");
    EXPECT_EQ(Drawing('B', kVLScopeAll), "Shared");
}

TEST_F(RejectedCharacters, ACharacterThatIsFoundIsNotRejected) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    EXPECT_EQ(Drawing('A'), "A");
    EXPECT_FALSE(TCharacterRejectCache().Contains('A'));
    EXPECT_EQ(Drawing('a'), "(null)");
    EXPECT_TRUE(TCharacterRejectCache().Contains('a'));
    EXPECT_FALSE(TCharacterRejectCache().Contains('A'));
}

TEST_F(RejectedCharacters, ACharacterIsRejectedOnItsThreadAlone) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    EXPECT_EQ(Drawing('A', 0), "(null)");
    std::string elsewhere;
    std::thread([&] { elsewhere = Drawing('A'); }).join();
    EXPECT_EQ(elsewhere, "A");
    EXPECT_EQ(Drawing('A'), "(null)");
}

TEST_F(RejectedCharacters, EveryChangeOfAFontEndsARejection) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    const auto other = folder.Add("o.ttf", FontWith({"O", "Regular", "O Regular", "O"}, '0', '9').Build());
    const auto others = Array({other});
    const auto data = AsData(FontWith({"D", "Regular", "D Regular", "D"}, 'a', 'z').Build());
    const std::vector<std::pair<const char *, std::function<void()>>> changes = {
        {"register", [&] { VLRegisterFont(other.Get(), 0, kVLScopeProcess); }},
        {"disable", [&] { VLDisableFonts(others.Get(), 0, kVLScopeProcess); }},
        {"enable", [&] { VLEnableFonts(others.Get(), 0, kVLScopeProcess); }},
        {"unregister", [&] { VLUnregisterFont(other.Get(), 0, kVLScopeProcess); }},
        {"register several", [&] { VLRegisterFonts(others.Get(), 0, kVLScopeProcess, nullptr); }},
        {"disable by table", [&] { VLGetFunctions()->disable_font(other.Get(), 0, kVLScopeProcess); }},
        {"enable by table", [&] { VLGetFunctions()->enable_font(other.Get(), 0, kVLScopeProcess); }},
        {"unregister several", [&] { VLUnregisterFonts(others.Get(), 0, kVLScopeProcess, nullptr); }},
        {"register data", [&] { VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess); }},
        {"unregister data", [&] { VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess); }},
    };
    for (const auto &[name, change] : changes) {
        ASSERT_EQ(Drawing('A', 0), "(null)") << name;
        ASSERT_EQ(Drawing('A'), "(null)") << name;
        change();
        EXPECT_EQ(Drawing('A'), "A") << name;
    }
}

TEST_F(RejectedCharacters, WhatChangesNothingEndsNoRejection) {
    const auto url = Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    ASSERT_EQ(Drawing('A', 0), "(null)");
    EXPECT_FALSE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_FALSE(VLRegisterFont(folder.URLOf("none.ttf").Get(), 0, kVLScopeProcess));
    EXPECT_EQ(NameIn(Adopt(VLCopyFontWithName(String("A").Get(), kVLScopeProcess, 0))), "A");
    EXPECT_EQ(Drawing('A'), "(null)");
}

TEST_F(RejectedCharacters, TheFontOfANewCharacterIsFoundAtOnceAndNoMoreWhenItGoes) {
    EXPECT_EQ(Drawing(0x1F600), "(null)");
    const auto url = Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 0x1F600, 0x1F600).Build());
    EXPECT_EQ(Drawing(0x1F600), "A");
    ASSERT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_EQ(Drawing(0x1F600), "(null)");
}

TEST_F(RejectedCharacters, WhatIsNoCharacterIsNeitherDrawnNorRemembered) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    for (const uint32_t number : {0x110000U, 0x110041U, 0x80000041U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Drawing(number, 0), "(null)") << number;
        EXPECT_EQ(Drawing(number), "(null)") << number;
        EXPECT_FALSE(TCharacterRejectCache().Contains(number)) << number;
    }
    EXPECT_EQ(Drawing('A'), "A");
}

TEST_F(RejectedCharacters, TheThirdWordOfACharacterIsNotRead) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'A', 'Z').Build());
    for (const uint32_t word : {0U, 0x30000U, 0xFFFFFFFFU})
        EXPECT_EQ(NameIn(Adopt(VLCopyFontForCharacter('A', kVLScopeProcess, word))), "A");
}

} // namespace
} // namespace vellum::test
