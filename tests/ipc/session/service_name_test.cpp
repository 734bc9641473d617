// SPDX-License-Identifier: MIT
// The names of services, as a table: base, suffix, buffer and what stands in it afterwards.
#include "ipc/session/session_manager.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vellum::test {
namespace {

constexpr const char *kServer = "com.orrery.FontServer";
constexpr size_t kSize = 64; // of the callers' buffers

std::string Resolve(const char *suffix, const char *base, size_t size = kSize) {
    const TSessionManagerImp session({suffix, nullptr, nullptr});
    std::vector<char> buffer(size + 1, '#');
    EXPECT_EQ(session.ResolveServiceName(buffer.data(), size, base), buffer.data());
    EXPECT_EQ(buffer.back(), '#') << "written behind the buffer";
    return buffer.data();
}

struct Case {
    const char *suffix;
    const char *name;
};

void ExpectNames(const char *base, std::initializer_list<Case> cases) {
    for (const Case &c : cases)
        EXPECT_EQ(Resolve(c.suffix, base), c.name) << (c.suffix ? c.suffix : "none");
}

TEST(ServiceName, IsTheBaseWithoutASuffix) {
    ExpectNames(kServer, {{nullptr, "com.orrery.FontServer"}, {"", "com.orrery.FontServer"}});
}

TEST(ServiceName, IsJoinedWithTheSuffixByAnUnderscore) {
    ExpectNames(kServer, {{"test", "com.orrery.FontServer_test"},
                          {"_", "com.orrery.FontServer__"},
                          {"a_b", "com.orrery.FontServer_a_b"},
                          {"VALIDATOR_V", "com.orrery.FontServer_VALIDATOR_V"},
                          {"validator_%v", "com.orrery.FontServer_validator_%v"}});
}

TEST(ServiceName, IsTheBaseWhenTheMarkerBeginsTheSuffix) {
    ExpectNames(kServer, {{"VALIDATOR_%V", "com.orrery.FontServer"},
                          {"VALIDATOR_%V1", "com.orrery.FontServer"},
                          {"VALIDATOR_%V_more", "com.orrery.FontServer"}});
}

TEST(ServiceName, EndsBeforeTheUnderscoreInFrontOfTheMarker) {
    ExpectNames(kServer, {{"test_VALIDATOR_%V1", "com.orrery.FontServer_test"},
                          {"test_VALIDATOR_%V", "com.orrery.FontServer_test"},
                          {"a_b_VALIDATOR_%Vxyz", "com.orrery.FontServer_a_b"},
                          {"test__VALIDATOR_%V", "com.orrery.FontServer_test_"},
                          {"__VALIDATOR_%V", "com.orrery.FontServer__"}});
}

TEST(ServiceName, IsTheBaseWhenOnlyAnUnderscoreIsInFrontOfTheMarker) {
    ExpectNames(kServer,
                {{"_VALIDATOR_%V", "com.orrery.FontServer"}, {"_VALIDATOR_%V12", "com.orrery.FontServer"}});
}

TEST(ServiceName, EndsBeforeAMarkerInTheMiddleOfAWord) {
    ExpectNames(kServer, {{"testVALIDATOR_%V", "com.orrery.FontServer_test"},
                          {"testVALIDATOR_%V_more", "com.orrery.FontServer_test"},
                          {"t-VALIDATOR_%V", "com.orrery.FontServer_t-"}});
}

TEST(ServiceName, EndsBeforeTheFirstOfSeveralMarkers) {
    ExpectNames(kServer, {{"a_VALIDATOR_%V_b_VALIDATOR_%V", "com.orrery.FontServer_a"},
                          {"VALIDATOR_%VALIDATOR_%V", "com.orrery.FontServer"}});
}

TEST(ServiceName, LosesNothingWhereTheMarkerWouldTakeAllOfIt) {
    ExpectNames(
        "", {{"VALIDATOR_%V", "_VALIDATOR_%V"}, {"_VALIDATOR_%V", "__VALIDATOR_%V"}, {"test", "_test"}});
    ExpectNames("b", {{"VALIDATOR_%V", "b"}, {"_VALIDATOR_%V", "b"}});
}

TEST(ServiceName, TakesNoBaseForTheEmptyOne) {
    EXPECT_EQ(Resolve(nullptr, nullptr), "");
    EXPECT_EQ(Resolve("test", nullptr), "_test");
}

TEST(ServiceName, IsCutToTheBuffer) {
    EXPECT_EQ(Resolve("test", "base", 10), "base_test");
    EXPECT_EQ(Resolve("test", "base", 9), "base_tes");
    EXPECT_EQ(Resolve("test", "base", 6), "base_");
    EXPECT_EQ(Resolve("test", "base", 5), "base");
    EXPECT_EQ(Resolve("test", "base", 3), "ba");
    EXPECT_EQ(Resolve("test", "base", 1), "");
    const std::string base(100, 'b');
    EXPECT_EQ(Resolve(nullptr, base.c_str()), std::string(63, 'b'));
    const std::string suffix(100, 's');
    EXPECT_EQ(Resolve(suffix.c_str(), "base"), "base_" + std::string(58, 's'));
}

// What the marker takes away is taken from the whole name, not from the part that fits.
TEST(ServiceName, IsCutLast) {
    const std::string suffix = std::string(40, 's') + "_VALIDATOR_%V1";
    EXPECT_EQ(Resolve(suffix.c_str(), kServer), "com.orrery.FontServer_" + std::string(40, 's'));
    EXPECT_EQ(Resolve("test_VALIDATOR_%V1", "base", 9), "base_tes");
    const std::string longer = std::string(200, 's') + "VALIDATOR_%V";
    EXPECT_EQ(Resolve(longer.c_str(), "base"), "base_" + std::string(58, 's'));
}

TEST(ServiceName, WritesNothingToABufferWithoutRoom) {
    const TSessionManagerImp session({"test", nullptr, nullptr});
    char untouched = '#';
    EXPECT_EQ(session.ResolveServiceName(&untouched, 0, "base"), &untouched);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(session.ResolveServiceName(nullptr, 0, "base"), nullptr);
}

TEST(ServiceName, IsRefusedWhenItWouldLeadElsewhere) {
    for (const char *suffix : {"/", "a/b", "../x", "a/b_VALIDATOR_%V"})
        EXPECT_EQ(Resolve(suffix, kServer), "");
    for (const char *base : {".", "..", ".hidden", "/", "a/b", "/run/a"}) {
        EXPECT_EQ(Resolve(nullptr, base), "");
        EXPECT_EQ(Resolve("test", base), "");
    }
}

TEST(ServiceName, IsJudgedByWhatIsLeftOfIt) {
    EXPECT_EQ(Resolve("test_VALIDATOR_%V/x", kServer), "com.orrery.FontServer_test");
    EXPECT_EQ(Resolve("t/x", "base", 7), "base_t");
    EXPECT_EQ(Resolve("t/x", "base", 8), "");
    EXPECT_EQ(Resolve(".x", "base"), "base_.x");
}

} // namespace
} // namespace vellum::test
