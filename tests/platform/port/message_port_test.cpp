// SPDX-License-Identifier: MIT
// Ports that processes open for each other; each test has a folder of services of its own.
#include "platform/loop/main_loop.hpp"
#include "platform/port/message_port.hpp"
#include "platform/port/port_address.hpp"
#include "platform/port/service_address.hpp"
#include "support/other_process.hpp"
#include "support/temp_dir.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace vellum::test {
namespace {

using Port = std::unique_ptr<LocalMessagePort>;
using Handler = LocalMessagePort::Handler;

Ref<const ValData> Data(std::string_view text) {
    return Adopt(ValDataCreate(text.data(), text.size()));
}
std::string TextOf(const ValData *data) {
    return {reinterpret_cast<const char *>(ValDataGetBytes(data)), ValDataGetLength(data)};
}

Handler Echo() {
    return [](int32_t, const ValData *data) { return Data("heard " + TextOf(data)); };
}

// Runs the main loop until something has happened, or for ever.
void RunLoopUntil(const std::function<bool()> &is_done) {
    while (!is_done()) {
        pollfd ready = {MainLoopDescriptor(), POLLIN, 0};
        ::poll(&ready, 1, -1);
        FireMainLoopTimers();
    }
}

// One that answers under a name until it is killed.
void Serve(const char *name, const Handler &handler) {
    const Port port = LocalMessagePort::Create(name, handler);
    if (port) OtherProcess::IsReady();
    RunLoopUntil([] { return false; });
}

pid_t GoneProcess() {
    const pid_t process = ::fork();
    if (process == 0) ::_exit(0);
    ::waitpid(process, nullptr, 0);
    return process;
}

bool Answers(const char *service) {
    return ConnectToService(service).IsOpen();
}

class MessagePort : public ::testing::Test {
protected:
    MessagePort() {
        ::chmod(home.Path().c_str(), 0700);
        ::setenv("XDG_RUNTIME_DIR", home.Path().c_str(), 1);
        ServicesFolder(IfMissing::kMake);
    }

    std::string File(const std::string &service) const { return home.Path() + "/vellum/" + service; }
    static std::string Own(const char *name) { return std::to_string(::getpid()) + "." + name; }

    // A socket's file that nobody listens on.
    void LeaveBehind(const std::string &service) { ListenAsService(service.c_str()); }
    void MakeOld(const std::string &service) const {
        const timespec long_ago[] = {{1'000'000, 0}, {1'000'000, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, File(service).c_str(), long_ago, AT_SYMLINK_NOFOLLOW), 0);
    }

    TempDir home;
};

TEST_F(MessagePort, OfAnotherProcessAnswers) {
    const OtherProcess other([] { Serve("p", Echo()); });
    const RemoteMessagePort port(other.ID(), "p");
    Ref<const ValData> reply;
    ASSERT_TRUE(port.IsValid());
    ASSERT_EQ(port.Send(1, Data("this").Get(), 10, 10, reply), MessagePortResult::kDone);
    EXPECT_EQ(TextOf(reply.Get()), "heard this");
}

TEST_F(MessagePort, IsGoneFromTheMomentThatItEnds) {
    Port port = LocalMessagePort::Create("p", Echo());
    const RemoteMessagePort remote(::getpid(), "p");
    ASSERT_TRUE(remote.IsValid());
    port = nullptr;
    EXPECT_FALSE(remote.IsValid());
    EXPECT_FALSE(std::filesystem::exists(File(Own("p"))));
}

TEST_F(MessagePort, IsNotWaitedForLongerThanTheAskerSays) {
    const OtherProcess deaf([] {
        const Port port = LocalMessagePort::Create("p", Echo());
        OtherProcess::IsReady();
        ::pause();
    });
    Ref<const ValData> reply;
    EXPECT_EQ(RemoteMessagePort(deaf.ID(), "p").Send(1, Data("?").Get(), 10, 0.02, reply),
              MessagePortResult::kReceiveTimedOut);
}

TEST_F(MessagePort, IsGoneWithItsProcessThoughAChildOfThatKeepsItOpen) {
    int life[2]; // of the child: it ends with this process
    ASSERT_EQ(::pipe2(life, O_CLOEXEC), 0);
    const OtherProcess other([&] {
        ::close(life[1]);
        Serve("p", [&](int32_t, const ValData *) -> Ref<const ValData> {
            char byte;
            if (::fork() == 0) ::_exit(static_cast<int>(::read(life[0], &byte, 1)));
            ::_exit(0);
        });
    });
    const RemoteMessagePort port(other.ID(), "p");
    Ref<const ValData> reply;
    EXPECT_EQ(port.Send(1, Data("?").Get(), 1000, 1000, reply), MessagePortResult::kGone);
    EXPECT_FALSE(port.IsValid());
    EXPECT_EQ(port.Send(1, Data("?").Get(), 1000, 1000, reply), MessagePortResult::kGone);
}

TEST_F(MessagePort, IsNotAskedWhereAnotherProcessAnswers) {
    const std::string service = Own("p");
    const OtherProcess other([&] {
        const TDescriptor socket = ListenAsService(service.c_str());
        OtherProcess::IsReady();
        ::pause();
    });
    ASSERT_TRUE(Answers(service.c_str()));
    EXPECT_FALSE(RemoteMessagePort(::getpid(), "p").IsValid());
}

TEST_F(MessagePort, DoesNotTakeTheNameOfOneThatAnswers) {
    const std::string service = Own("p");
    const OtherProcess other([&] {
        const TDescriptor socket = ListenAsService(service.c_str());
        OtherProcess::IsReady();
        ::pause();
    });
    EXPECT_FALSE(LocalMessagePort::Create("p", Echo()));
    EXPECT_TRUE(Answers(service.c_str()));
}

TEST_F(MessagePort, TakesANameThatNobodyAnswersTo) {
    LeaveBehind(Own("p"));
    const Port port = LocalMessagePort::Create("p", Echo());
    EXPECT_TRUE(port);
    EXPECT_TRUE(RemoteMessagePort(::getpid(), "p").IsValid());
}

TEST_F(MessagePort, ThatEndsLeavesWhatAnotherHasPutInItsPlace) {
    Port port = LocalMessagePort::Create("p", Echo());
    const TDescriptor another = ListenAsService(Own("p").c_str());
    port = nullptr;
    EXPECT_TRUE(Answers(Own("p").c_str()));
}

TEST_F(MessagePort, OfAProcessThatIsGoneIsClearedAwayByTheNext) {
    const pid_t gone = GoneProcess();
    const std::string old = std::to_string(gone) + ".old", young = std::to_string(gone) + ".young",
                      heard = std::to_string(gone) + ".heard", own = Own("old"),
                      service = "com.some.Service";
    for (const auto &left : {old, young, own, service}) LeaveBehind(left);
    const TDescriptor listener = ListenAsService(heard.c_str());
    for (const auto &aged : {old, heard, own, service}) MakeOld(aged);
    const Port port = LocalMessagePort::Create("p", Echo());
    EXPECT_FALSE(std::filesystem::exists(File(old)));
    EXPECT_TRUE(std::filesystem::exists(File(young))) << "it may be about to listen";
    EXPECT_TRUE(std::filesystem::exists(File(heard)))
        << "its process may be one that is not seen from here";
    EXPECT_TRUE(std::filesystem::exists(File(own)));
    EXPECT_TRUE(std::filesystem::exists(File(service)));
}

// ---- ends ----

// Asks this process's own port on a thread of its own.
class Asking {
public:
    explicit Asking(const char *name)
        : thread_([this, port = RemoteMessagePort(::getpid(), name)] {
              Ref<const ValData> reply;
              result_ = port.Send(1, Data("?").Get(), 1000, 1000, reply);
          }) {}
    ~Asking() { Result(); }

    MessagePortResult Result() {
        if (thread_.joinable()) thread_.join();
        return result_;
    }

private:
    MessagePortResult result_ = MessagePortResult::kNoMemory;
    std::thread thread_;
};

// Until a question stands before the main loop.
void WaitForAQuestion() {
    pollfd ready = {MainLoopDescriptor(), POLLIN, 0};
    while (::poll(&ready, 1, -1) != 1) {
    }
}

TEST_F(MessagePort, ThatHasEndedCallsNothingEvenForAQuestionThatWaits) {
    const auto held = std::make_shared<int>(0);
    Port port = LocalMessagePort::Create("p", [held](int32_t, const ValData *) {
        ++*held;
        return Data("late");
    });
    {
        Asking asking("p");
        WaitForAQuestion();
        port = nullptr;
        EXPECT_EQ(asking.Result(), MessagePortResult::kGone);
        EXPECT_EQ(held.use_count(), 1) << "the handler ends with the port";
    }
    FireMainLoopTimers();
    EXPECT_EQ(*held, 0);
}

TEST_F(MessagePort, ThatIsEndedByItsHandlerKeepsItUntilTheCallReturns) {
    const auto held = std::make_shared<int>(0);
    Port port;
    port = LocalMessagePort::Create("p", [held, &port](int32_t, const ValData *) {
        port = nullptr;
        *held = static_cast<int>(held.use_count());
        return Data("last");
    });
    {
        Asking asking("p");
        WaitForAQuestion();
        FireMainLoopTimers();
    }
    EXPECT_GT(*held, 1);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(MessagePort, IsLeftAloneByAChildOfItsProcess) {
    const auto held = std::make_shared<int>(0);
    Port port = LocalMessagePort::Create("p", [held](int32_t, const ValData *) { return Data("still"); });
    const pid_t child = ::fork();
    if (child == 0) {
        port = nullptr;
        ::_exit(held.use_count() > 1 ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the child has ended what is its parent's";
    Asking asking("p");
    WaitForAQuestion();
    FireMainLoopTimers();
    EXPECT_EQ(asking.Result(), MessagePortResult::kDone);
}

} // namespace
} // namespace vellum::test
