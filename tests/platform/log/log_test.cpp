// SPDX-License-Identifier: MIT
#include "platform/log/log.hpp"
#include "platform/log/log_record.hpp"
#include "support/captured_log.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <errno.h>
#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

TEST(LogSink, GetsTextLevelAndFieldsOfARecord) {
    const CapturedLog log;
    const LogField fields[] = {{"first", "1"}, {"second", ""}};
    SendLogRecord(LogLevel::kNotice, "a text", fields);
    const auto records = log.Records();
    ASSERT_THAT(records, SizeIs(1));
    EXPECT_EQ(records[0].level, LogLevel::kNotice);
    EXPECT_EQ(records[0].text, "a text");
    EXPECT_THAT(records[0].fields, ElementsAre(Pair("first", "1"), Pair("second", "")));
}

TEST(LogSink, GetsRecordsFromTheTimeItIsSetUntilItIsReplaced) {
    const CapturedLog outer;
    SendLogRecord(LogLevel::kInfo, "before", {});
    {
        const CapturedLog inner;
        SendLogRecord(LogLevel::kInfo, "meanwhile", {});
        EXPECT_THAT(inner.Lines(), ElementsAre("meanwhile"));
    }
    SendLogRecord(LogLevel::kInfo, "after", {});
    EXPECT_THAT(outer.Lines(), ElementsAre("before", "after"));
}

TEST(LogSink, IsReturnedByWhatReplacesIt) {
    const LogSink sink = [](void *, LogLevel, std::string_view, std::span<const LogField>) {};
    int context = 0;
    const LogSinkEntry none = SetLogSink({sink, &context});
    const LogSinkEntry former = SetLogSink({});
    EXPECT_EQ(none.sink, nullptr);
    EXPECT_EQ(former.sink, sink);
    EXPECT_EQ(former.context, &context);
    EXPECT_EQ(SetLogSink({}).sink, nullptr);
}

TEST(LogSink, MayLogAndReplaceItselfWithoutADeadlock) {
    const CapturedLog log;
    struct Context {
        LogSinkEntry next;
        int calls = 0;
    } context;
    const LogSink sink = [](void *bare, LogLevel level, std::string_view text, std::span<const LogField>) {
        auto *self = static_cast<Context *>(bare);
        if (++self->calls == 1) return Log(level, "from the sink");
        SetLogSink(self->next);
        Log(level, "%s, passed on", std::string(text).c_str());
    };
    context.next = SetLogSink({sink, &context});
    Log(LogLevel::kError, "from outside");
    EXPECT_EQ(context.calls, 2);
    EXPECT_THAT(log.Lines(), ElementsAre("from the sink, passed on"));
}

TEST(Log, FormatsTextAndValues) {
    const CapturedLog log;
    const auto value = String("Noto Sans");
    Log(LogLevel::kError, "%d fonts of %@, %s%%", 12, value.Get(), "100");
    EXPECT_THAT(log.Lines(), ElementsAre("12 fonts of Noto Sans, 100%"));
    EXPECT_EQ(log.Records()[0].level, LogLevel::kError);
    EXPECT_THAT(log.Records()[0].fields, IsEmpty());
}

TEST(Log, ReplacesBytesThatAreNoText) {
    const CapturedLog log;
    Log(LogLevel::kError, "a\xFF%s", "\xE2\x82");
    SendLogRecord(LogLevel::kError, "\xED\xA0\x80!", {}); // a lone surrogate
    EXPECT_THAT(log.Lines(), ElementsAre("a\uFFFD\uFFFD\uFFFD", "\uFFFD!"));
}

TEST(Log, CutsTextAtItsLimit) {
    const CapturedLog log;
    const std::string full(kMaximumLogText, 'x');
    Log(LogLevel::kError, "%s", full.c_str());
    Log(LogLevel::kError, "%s.", full.c_str());
    SendLogRecord(LogLevel::kError, full + full, {});
    Log(LogLevel::kError, "%2147483647d", 1);
    EXPECT_THAT(log.Lines(), ElementsAre(full, full, full, std::string(kMaximumLogText, ' ')));
}

TEST(Log, CutsTextBetweenTwoCharacters) {
    const CapturedLog log;
    for (const char *character : {"é", "€", "😀"}) {
        const std::string_view last = character;
        for (size_t over = 0; over <= last.size(); ++over) {
            const std::string before(kMaximumLogText - last.size() + over, 'x');
            Log(LogLevel::kError, "%s%s behind", before.c_str(), character);
            const bool fits = over == 0;
            EXPECT_EQ(log.Lines().back(), fits ? before + character : before.substr(0, kMaximumLogText));
        }
    }
}

TEST(Log, StaysWithinItsLimitWhenReplacementsMakeTextLonger) {
    const CapturedLog log;
    SendLogRecord(LogLevel::kError, std::string(kMaximumLogText, '\xFF'), {});
    const std::string text = log.Lines()[0];
    EXPECT_EQ(text.size(), kMaximumLogText / 3 * 3);
    EXPECT_EQ(text.substr(text.size() - 3), "\uFFFD");
}

TEST(Log, CutsFieldsAtTheirLimits) {
    const CapturedLog log;
    std::vector<std::string> keys;
    for (size_t i = 0; i <= kMaximumLogFields; ++i) keys.push_back("key" + std::to_string(i));
    const std::string value = std::string(kMaximumLogText - 1, 'x') + "é";
    std::vector<LogField> fields;
    for (const std::string &key : keys) fields.push_back({key, value});
    SendLogRecord(LogLevel::kError, "text", fields);
    const auto taken = log.Records()[0].fields;
    EXPECT_THAT(taken, SizeIs(kMaximumLogFields));
    EXPECT_FALSE(taken.contains(keys.back()));
    EXPECT_EQ(taken.at("key0"), std::string(kMaximumLogText - 1, 'x'));
}

TEST(Log, KeepsErrno) {
    const LogSink sink = [](void *, LogLevel, std::string_view, std::span<const LogField>) { errno = EIO; };
    SetLogSink({sink, nullptr});
    errno = ENOENT;
    Log(LogLevel::kError, "with a sink");
    EXPECT_EQ(errno, ENOENT);
    SendLogRecord(LogLevel::kError, "with a sink", {});
    EXPECT_EQ(errno, ENOENT);
}

TEST(ConcurrentLog, LosesNoRecordOfAnyThread) {
    constexpr int kRecords = 200;
    const CapturedLog log;
    OnEveryThread([](size_t thread) {
        for (int i = 0; i < kRecords; ++i) Log(LogLevel::kInfo, "%zu:%d", thread, i);
    });
    std::vector<int> next(kThreads, 0);
    for (const std::string &line : log.Lines()) {
        const size_t thread = std::stoul(line);
        EXPECT_EQ(line, std::to_string(thread) + ":" + std::to_string(next[thread]++));
    }
    EXPECT_THAT(next, ::testing::Each(kRecords));
}

TEST(ConcurrentLog, MayBeCapturedWhileOthersLog) {
    static std::atomic<size_t> sTaken{0};
    const LogSink one = [](void *, LogLevel, std::string_view, std::span<const LogField>) { ++sTaken; };
    const LogSink two = [](void *context, LogLevel, std::string_view, std::span<const LogField>) {
        ++*static_cast<std::atomic<size_t> *>(context);
    };
    std::atomic<size_t> taken{0};
    SetLogSink({one, nullptr});
    OnEveryThread([&](size_t thread) {
        for (int i = 0; i < 200; ++i) {
            if (thread == 0)
                SetLogSink(i % 2 ? LogSinkEntry{one, nullptr} : LogSinkEntry{two, &taken});
            else
                Log(LogLevel::kInfo, "a record");
        }
    });
    SetLogSink({});
    EXPECT_EQ(sTaken + taken, (kThreads - 1) * 200);
}

} // namespace
} // namespace vellum::test
