// SPDX-License-Identifier: MIT
#include "platform/log/system_log.hpp"
#include "platform/process/process.hpp"
#include "support/temp_dir.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>

namespace vellum::test {
namespace {

using namespace std::string_literals;

// What listens on a log's socket.
class Listener {
public:
    explicit Listener(const std::string &path)
        : descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path) throw std::runtime_error("too long: " + path);
        std::memcpy(address.sun_path, path.data(), path.size());
        if (::bind(descriptor_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot bind " + path);
    }
    ~Listener() { ::close(descriptor_); }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    // The next datagram, if one has come.
    std::optional<std::string> Receive() const {
        std::string bytes(1 << 18, '\0');
        const ssize_t size = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
        if (size < 0) return std::nullopt;
        bytes.resize(static_cast<size_t>(size));
        return bytes;
    }

private:
    const int descriptor_;
};

class SystemLog : public ::testing::Test {
protected:
    bool Send(const LogRecord &record) const {
        return SendToSystemLog({journal_.c_str(), syslog_.c_str()}, record);
    }

    const TempDir folder_;
    const std::string journal_ = folder_.File("journal");
    const std::string syslog_ = folder_.File("syslog");
};

size_t OpenDescriptors() {
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        count += !entry.path().empty();
    return count;
}

TEST_F(SystemLog, SendsTheJournalOneDatagramOfFields) {
    const Listener journal(journal_);
    const Listener syslog(syslog_);
    const LogField fields[] = {{"com.orrery.message.domain", "fonts"}, {"X9_y-é", ""}};
    ASSERT_TRUE(Send({"program", LogLevel::kError, "a text = text", fields}));
    EXPECT_EQ(journal.Receive(), "MESSAGE=a text = text\n"
                                 "PRIORITY=3\n"
                                 "SYSLOG_IDENTIFIER=program\n"
                                 "COM_ORRERY_MESSAGE_DOMAIN=fonts\n"
                                 "X9_Y___=\n");
    EXPECT_EQ(journal.Receive(), std::nullopt);
    EXPECT_EQ(syslog.Receive(), std::nullopt);
}

TEST_F(SystemLog, TellsTheJournalTheLengthOfValuesWithNewLines) {
    const Listener journal(journal_);
    const LogField fields[] = {
        {"one", "\n"}, {"two", "a\nPRIORITY=0\n"}, {"zero", std::string_view("\0", 1)}};
    const std::string long_text = std::string(299, 'x') + "\n";
    ASSERT_TRUE(Send({"program", LogLevel::kDebug, long_text, fields}));
    EXPECT_EQ(journal.Receive(), "MESSAGE\n\x2C\x01\0\0\0\0\0\0"s + long_text + "\n" +
                                     "PRIORITY=7\n"
                                     "SYSLOG_IDENTIFIER=program\n" +
                                     "ONE\n\x01\0\0\0\0\0\0\0\n\n"s +
                                     "TWO\n\x0D\0\0\0\0\0\0\0a\nPRIORITY=0\n\n"s + "ZERO=\0\n"s);
}

TEST_F(SystemLog, CutsKeysToWhatTheJournalTakesAndLeavesOutEmptyOnes) {
    const Listener journal(journal_);
    const std::string key(kMaximumLogKey, 'k');
    const std::string longer = key + "x";
    const LogField fields[] = {{"", "none"}, {key, "1"}, {longer, "2"}};
    ASSERT_TRUE(Send({"program", LogLevel::kInfo, "text", fields}));
    const std::string taken(kMaximumLogKey, 'K');
    EXPECT_EQ(journal.Receive(),
              "MESSAGE=text\nPRIORITY=6\nSYSLOG_IDENTIFIER=program\n" + taken + "=1\n" + taken + "=2\n");
}

TEST_F(SystemLog, SendsTheLargestRecordInOneDatagram) {
    const Listener journal(journal_);
    const std::string most(kMaximumLogText, '\n');
    const std::vector<LogField> fields(kMaximumLogFields, LogField{"key", most});
    ASSERT_TRUE(Send({"program", LogLevel::kInfo, most, fields}));
    const auto datagram = journal.Receive();
    ASSERT_TRUE(datagram);
    EXPECT_GT(datagram->size(), (kMaximumLogFields + 1) * kMaximumLogText);
    EXPECT_TRUE(datagram->ends_with(most + "\n"));
}

TEST_F(SystemLog, FallsBackOnSyslogWhereThereIsNoJournal) {
    const Listener syslog(syslog_);
    const LogField fields[] = {{"first.key", "1"}, {"second", ""}};
    ASSERT_TRUE(Send({"program", LogLevel::kWarning, "a text", fields}));
    const auto line = syslog.Receive();
    ASSERT_TRUE(line);
    EXPECT_TRUE(line->starts_with("<12>")) << *line; // a user's program, a warning
    const std::string end =
        " program[" + std::to_string(GetProcessID()) + "]: a text [first.key=1] [second=]";
    EXPECT_TRUE(line->ends_with(end)) << *line;
    EXPECT_EQ(line->size(), std::strlen("<12>Jan  1 00:00:00") + end.size());
    EXPECT_EQ(syslog.Receive(), std::nullopt);
}

TEST_F(SystemLog, FallsBackOnSyslogWhereNobodyListensToTheJournal) {
    { const Listener gone(journal_); } // leaves its socket behind
    const Listener syslog(syslog_);
    ASSERT_TRUE(Send({"program", LogLevel::kError, "text", {}}));
    EXPECT_TRUE(syslog.Receive());
}

TEST_F(SystemLog, LosesTheRecordWhereThereIsNoLog) {
    EXPECT_FALSE(Send({"program", LogLevel::kError, "text", {}}));
    const std::string too_long = folder_.File(std::string(200, 'x'));
    EXPECT_FALSE(
        SendToSystemLog({too_long.c_str(), too_long.c_str()}, {"program", LogLevel::kError, "text", {}}));
}

TEST_F(SystemLog, NeverWaitsForALogThatDoesNotRead) {
    const Listener journal(journal_);
    const Listener syslog(syslog_);
    int taken = 0;
    while (Send({"program", LogLevel::kError, "text", {}})) ASSERT_LT(++taken, 1'000'000);
    EXPECT_GT(taken, 0);
    ASSERT_TRUE(journal.Receive());
    EXPECT_TRUE(Send({"program", LogLevel::kError, "there is room again", {}}));
}

TEST_F(SystemLog, LeavesNoDescriptorOpen) {
    const Listener journal(journal_);
    const size_t before = OpenDescriptors();
    ASSERT_TRUE(Send({"program", LogLevel::kError, "text", {}}));
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_FALSE(SendToSystemLog({"/none", "/none"}, {"program", LogLevel::kError, "text", {}}));
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(SyslogRecord, HasTheLocalTimeInFixedForm) {
    setenv("TZ", "UTC-2", 1);
    const auto line = [](std::time_t time) {
        TextBuffer out;
        AppendSyslogRecord(out, {"p", LogLevel::kError, "t", {}}, time);
        return std::string(out.View());
    };
    const std::string end = " p[" + std::to_string(GetProcessID()) + "]: t";
    EXPECT_EQ(line(0), "<11>Jan  1 02:00:00" + end);
    EXPECT_EQ(line(951782399), "<11>Feb 29 01:59:59" + end);
    EXPECT_EQ(line(1798754399), "<11>Dec 31 23:59:59" + end);
}

TEST(SyslogRecord, IsOneLineOfBoundedLength) {
    TextBuffer out;
    const std::string value(kMaximumLogText, 'v');
    const LogField fields[] = {{"key", value}};
    AppendSyslogRecord(out, {"pro\ngram", LogLevel::kInfo, "a\n<0>b\x7F\tc", fields}, 0);
    const std::string_view line = out.View();
    const std::string process = std::to_string(GetProcessID());
    EXPECT_EQ(line.substr(19, 10 + process.size() + 3 + 8), " pro gram[" + process + "]: a <0>b  ");
    EXPECT_EQ(line.size(), 19 + std::strlen(" pro gram[]: ") + process.size() + kMaximumLogText);
}

TEST(CutText, EndsBetweenTwoCharacters) {
    EXPECT_EQ(CutText("abc", 3), "abc");
    EXPECT_EQ(CutText("abc", 2), "ab");
    EXPECT_EQ(CutText("a€", 4), "a€");
    EXPECT_EQ(CutText("a€", 3), "a");
    EXPECT_EQ(CutText("a€", 1), "a");
    EXPECT_EQ(CutText("€", 0), "");
    EXPECT_EQ(CutText("\x80\x80\x80", 2), "\x80\x80");
}

} // namespace
} // namespace vellum::test
