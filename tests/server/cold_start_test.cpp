// SPDX-License-Identifier: MIT
// A server that has much to read before it can answer, and the clients that come meanwhile.
#include "ipc/client/stubs.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <vellum/vellum.h>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>

namespace vellum::test {
namespace {

constexpr char kFonts[] = "com.orrery.FontServer";

class ColdStart : public ::testing::Test {
protected:
    static constexpr size_t kCount = 10'000;

    // One font under many names: reading them takes a while, making them does not.
    ColdStart() {
        const std::string folder = RunningServer::SystemFolder() + "/";
        const std::string first = server.System().Write(folder + "0.ttf", MakeFont({"F"}));
        for (size_t i = 1; i < kCount; ++i)
            std::filesystem::create_hard_link(first,
                                              server.System().File(folder + std::to_string(i) + ".ttf"));
    }

    ~ColdStart() override { End(SIGKILL); }

    // What waitpid says of the server.
    int End(int signal) {
        int status = -1;
        if (process_ <= 0) return status;
        ::kill(process_, signal);
        ::waitpid(process_, &status, 0);
        process_ = -1;
        return status;
    }

    // Starts the server, and returns as soon as somebody could connect to it.
    void Begin() {
        process_ = ::fork();
        if (process_ == 0) {
            ::execl(VELLUM_FONTSERVER, VELLUM_FONTSERVER, "--foreground", nullptr);
            ::_exit(127);
        }
        while (!VLFontServerAnswers()) ASSERT_EQ(::waitpid(process_, nullptr, WNOHANG), 0);
    }

    // How many fonts a client finds that begins now, in a process of its own.
    static size_t CountOfAClient() {
        std::array<int, 2> ends;
        if (::pipe(ends.data()) != 0) return 0;
        const pid_t client = ::fork();
        if (client == 0) {
            const size_t count = ValArrayGetCount(Adopt(VLCopyAvailableFontURLs(kVLScopeUser)).Get());
            ::_exit(::write(ends[1], &count, sizeof count) == sizeof count ? 0 : 1);
        }
        ::close(ends[1]);
        size_t count = 0;
        if (::read(ends[0], &count, sizeof count) != sizeof count) count = 0;
        ::close(ends[0]);
        ::waitpid(client, nullptr, 0);
        return count;
    }

    RunningServer server; // its folders; it is started otherwise here
    pid_t process_ = -1;
};

TEST_F(ColdStart, ClientThatComesBeforeAllFontsAreThereFindsThemAll) {
    Begin();
    EXPECT_EQ(CountOfAClient(), kCount);
}

TEST_F(ColdStart, ServerSaysSoonThatItCannotAnswerYet) {
    MachCode code = kMachSuccess;
    PortName port = kPortNull;
    for (int i = 0; i < 10 && code != kMachAskAgain; ++i) { // this machine may be slow to ask
        End(SIGKILL);
        Begin();
        ASSERT_EQ(bootstrap_look_up(kFonts, port), kMachSuccess);
        const MessageRow &row = *FindMessageRow(kRendezvous);
        IncomingMessage message;
        ReceivedReply reply;
        ASSERT_EQ(mach_msg(WriteRequest(row, port, mig_get_reply_port(), {}), message, 3), kMachSuccess);
        code = ReadReply(row, message, reply);
    }
    EXPECT_EQ(code, kMachAskAgain);
    ReplyMemory fonts; // and this asks again
    EXPECT_EQ(VLSendCopyAvailableFonts(port, kVLScopeUser, fonts), kMachSuccess);
}

TEST_F(ColdStart, ServerEndsWhenItIsToldToBeforeAllFontsAreThere) {
    Begin();
    EXPECT_EQ(End(SIGTERM), 0);
    EXPECT_FALSE(ServiceHasSocket(kFonts));
}

} // namespace
} // namespace vellum::test
