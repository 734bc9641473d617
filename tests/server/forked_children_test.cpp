// SPDX-License-Identifier: MIT
// What a child that was forked can do with the library, whatever its parent's other threads were doing.
#include "running_server.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <thread>

namespace vellum::test {
namespace {

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

// Whether a child does its work; one that does not come to an end in time is killed.
bool InAChild(const std::function<bool()> &work) {
    constexpr int kPatience = 20'000; // milliseconds
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work() ? 0 : 1);
    pollfd end = {static_cast<int>(::syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    const bool has_ended = ::poll(&end, 1, kPatience) == 1;
    ::close(end.fd);
    if (!has_ended) ::kill(child, SIGKILL);
    int status = -1;
    ::waitpid(child, &status, 0);
    return has_ended && status == 0;
}

std::string Find(const std::string &name, VLScope scope) {
    const auto url = Adopt(VLCopyFontWithName(String(name).Get(), scope, kNoActivation));
    return url ? std::filesystem::path(TextOf(ValURLGetString(url.Get()))).filename().string() : "";
}

class ForkedChildren : public ::testing::Test {
protected:
    ForkedChildren() {
        server.System().Write(RunningServer::SystemFolder() + "/shared.ttf", MakeFont({"Shared"}));
        EXPECT_TRUE(server.Start());
    }

    RunningServer server;
    FontFolder folder;
};

// Threads that do one thing over and over until the end.
class BusyThreads {
public:
    void Add(const std::function<void()> &work) {
        threads_.emplace_back([this, work] {
            while (!is_over_) {
                work();
                ++rounds_;
            }
        });
    }
    ~BusyThreads() {
        is_over_ = true;
        for (std::thread &thread : threads_) thread.join();
    }
    // Until every thread has done something since.
    void WaitForRounds(size_t count) const {
        for (const size_t before = rounds_; rounds_ < before + count;) std::this_thread::yield();
    }

private:
    std::atomic<bool> is_over_{false};
    std::atomic<size_t> rounds_{0};
    std::vector<std::thread> threads_;
};

TEST_F(ForkedChildren, FindFontsWhateverOtherThreadsOfTheirParentAskAndChange) {
    const auto own = folder.Add("own.ttf", MakeFont({"Own"})),
               other = folder.Add("other.ttf", MakeFont({"Other"})),
               lent = folder.Add("lent.ttf", MakeFont({"Lent"}));
    ASSERT_TRUE(VLRegisterFont(own.Get(), 0, kVLScopeProcess));
    BusyThreads threads;
    std::atomic<int> number{0};
    threads.Add([&] { Find("Missing-" + std::to_string(++number), kVLScopeAll); });
    threads.Add([&] {
        VLRegisterFont(other.Get(), 0, kVLScopeProcess);
        VLUnregisterFont(other.Get(), 0, kVLScopeProcess);
    });
    threads.Add([&] {
        VLRegisterFont(lent.Get(), 0, kVLScopeSession);
        VLUnregisterFont(lent.Get(), 0, kVLScopeSession);
    });
    threads.Add([] {
        const auto keys = Keys({kVLFontPropertyCharacterSet});
        const auto all = Adopt(VLCopyPropertiesForAllFonts(keys.Get(), kVLScopeAll));
    });
    threads.Add([&] {
        const auto tags = Adopt(VLCopyTableTagsForFont(own.Get()));
        VLDeliverNotifications();
    });
    for (int i = 0; i < 100; ++i) {
        threads.WaitForRounds(1);
        ASSERT_TRUE(InAChild([&] {
            return Find("Shared-Regular", kVLScopeUser) == "shared.ttf" &&
                   Find("Own-Regular", kVLScopeProcess) == "own.ttf" && Find("None", kVLScopeAll).empty();
        })) << i;
    }
}

TEST_F(ForkedChildren, AreNotKeptByAThreadThatWaitsForTheServer) {
    ASSERT_EQ(Find("Shared-Regular", kVLScopeUser), "shared.ttf");
    ::kill(server.Process(), SIGSTOP);
    std::promise<void> begins;
    std::thread asking([&] {
        begins.set_value();
        EXPECT_EQ(Find("Late-Regular", kVLScopeUser), "");
    });
    begins.get_future().wait();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(InAChild([] { return true; }));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    ::kill(server.Process(), SIGCONT);
    asking.join();
}

TEST_F(ForkedChildren, OfAThreadThatIsCalledByTheLibraryFindFonts) {
    struct Heard {
        bool child_found = false;
        static void Hear(void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            static_cast<Heard *>(observer)->child_found =
                InAChild([] { return Find("Shared-Regular", kVLScopeUser) == "shared.ttf"; });
        }
    } heard;
    ASSERT_TRUE(VLAddFontsChangedObserver(&heard, Heard::Hear));
    ASSERT_TRUE(VLRegisterFont(folder.Add("own.ttf", MakeFont({"Own"})).Get(), 0, kVLScopeProcess));
    pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
    while (::poll(&ready, 1, -1) != 1) {
    }
    VLDeliverNotifications();
    VLRemoveFontsChangedObserver(&heard);
    EXPECT_TRUE(heard.child_found);
}

TEST_F(ForkedChildren, AskOnConnectionsOfTheirOwnAndLeaveTheirParentItsOwn) {
    ASSERT_EQ(Find("Shared-Regular", kVLScopeUser), "shared.ttf");
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(InAChild([] {
            return Find("Shared-Regular", kVLScopeUser) == "shared.ttf" &&
                   InAChild([] { return Find("Shared-Regular", kVLScopeUser) == "shared.ttf"; });
        }));
        EXPECT_EQ(Find("Missing-" + std::to_string(i), kVLScopeUser), "");
        EXPECT_EQ(Find("Shared-Regular", kVLScopeUser), "shared.ttf");
    }
}

} // namespace
} // namespace vellum::test
