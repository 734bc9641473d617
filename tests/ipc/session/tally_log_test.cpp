// SPDX-License-Identifier: MIT
#include "ipc/session/tally_log.hpp"
#include "support/allocations.hpp"
#include "support/captured_log.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <climits>
#include <optional>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

constexpr const char *kDomain = "com.orrery.message.domain";
constexpr const char *kResult = "com.orrery.message.result";
constexpr const char *kSignature = "com.orrery.message.signature";
constexpr const char *kValue = "com.orrery.message.value";

TEST(TallyLog, SendsItsTextWithDomainAndSignatureAtErrorLevel) {
    const CapturedLog log;
    TTallyLog tally("com.orrery.fonts", "find fonts");
    tally.Log("retry:%d %lX", 2, 0xABul);
    const auto records = log.Records();
    ASSERT_THAT(records, SizeIs(1));
    EXPECT_EQ(records[0].level, LogLevel::kError);
    EXPECT_EQ(records[0].text, "retry:2 AB");
    EXPECT_THAT(records[0].fields,
                ElementsAre(Pair(kDomain, "com.orrery.fonts"), Pair(kSignature, "find fonts")));
}

TEST(TallyLog, SendsItsValueInDecimals) {
    const CapturedLog log;
    TTallyLog tally("domain", "signature");
    for (int value : {0, 3, -1, INT_MIN, INT_MAX}) {
        tally.SetValue(value);
        tally.Log("text");
        EXPECT_EQ(log.Records().back().fields.at(kValue), std::to_string(value));
    }
}

TEST(TallyLog, SendsItsResultAsAWord) {
    const CapturedLog log;
    TTallyLog tally("domain", "signature");
    tally.SetResult(TTallyLog::Result::kSuccess);
    tally.Log("one");
    tally.SetResult(TTallyLog::Result::kFailure);
    tally.SetValue(7);
    tally.Log("two");
    const auto records = log.Records();
    ASSERT_THAT(records, SizeIs(2));
    EXPECT_THAT(records[0].fields, ElementsAre(Pair(kDomain, "domain"), Pair(kResult, "success"),
                                               Pair(kSignature, "signature")));
    EXPECT_THAT(records[1].fields, ElementsAre(Pair(kDomain, "domain"), Pair(kResult, "failure"),
                                               Pair(kSignature, "signature"), Pair(kValue, "7")));
}

TEST(TallyLog, FormatsValuesAndReplacesBytesThatAreNoText) {
    const CapturedLog log;
    const TTallyLog tally("domain", "signature");
    tally.Log("%@ %s", String("Noto").Get(), "\xFF");
    EXPECT_THAT(log.Lines(), ElementsAre("Noto \uFFFD"));
}

TEST(TallyLog, TakesItsArgumentsAsAList) {
    const CapturedLog log;
    const TTallyLog tally("domain", "signature");
    const auto send = [&tally](const char *format, ...) {
        va_list arguments;
        va_start(arguments, format);
        tally.Logv(format, arguments);
        va_end(arguments);
    };
    send("%d-%s", 5, "x");
    EXPECT_THAT(log.Lines(), ElementsAre("5-x"));
}

TEST(TallyLog, CopiesDomainAndSignature) {
    const CapturedLog log;
    std::string domain = "a domain";
    const TTallyLog tally(domain.c_str(), "signature");
    domain = "another!";
    tally.Log("text");
    EXPECT_EQ(log.Records()[0].fields.at(kDomain), "a domain");
}

TEST(TallyLog, SendsNothingUnlessItIsLogged) {
    const CapturedLog log;
    {
        TTallyLog tally("domain", "signature");
        tally.SetValue(1);
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TallyLog, MovesItsRecordAndIsThenWithoutOne) {
    const CapturedLog log;
    TTallyLog first("domain", "signature");
    first.SetValue(1);
    TTallyLog second = std::move(first);
    first.SetValue(2); // NOLINT(bugprone-use-after-move): what is left does nothing
    first.Log("from the first");
    second.Log("from the second");
    EXPECT_THAT(log.Lines(), ElementsAre("from the second"));
    EXPECT_EQ(log.Records()[0].fields.at(kValue), "1");
}

// Sets everything of a log that has no record, and sends it.
void ExpectNothing(TTallyLog tally) {
    const CapturedLog log;
    tally.SetValue(1);
    tally.SetResult(TTallyLog::Result::kSuccess);
    tally.Log("text");
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(TallyLog, DoesNothingWithoutADomainOrASignature) {
    ExpectNothing(TTallyLog(nullptr, "signature"));
    ExpectNothing(TTallyLog("domain", nullptr));
}

using TallyLogInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(TallyLogInExhaustedMemory, DoesNothing) {
    std::optional<TTallyLog> tally;
    EXPECT_TRUE(FailAfter(0, [&] { tally.emplace("domain", "signature"); }));
    ExpectNothing(std::move(*tally));
}

} // namespace
} // namespace vellum::test
