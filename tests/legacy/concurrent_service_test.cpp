// SPDX-License-Identifier: MIT
// Several threads that tell the service of changes.
#include "service_fixture.hpp"
#include "support/threads.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ConcurrentLegacyService : public LegacyTest {
protected:
    static int CountMatchesBeside(const char *family, const std::function<void()> &work);
};

TEST_F(ConcurrentLegacyService, KeepsWhatIsRegisteredOnEachThread) {
    const std::string stays = WriteFont("stays.ttf", "Stays");
    Register(stays);
    OnEveryThread([&](size_t thread) {
        const std::string name = "Thread" + std::to_string(thread);
        const std::string path = WriteFont(name + ".ttf", name);
        const auto data = AsData(FontNamed(name));
        for (int i = 0; i < 20; ++i) {
            Register(path);
            const uint32_t container = service_.register_data(data.Get(), 0, 0, kVLScopeProcess);
            EXPECT_NE(container, 0u);
            uint32_t font = 0;
            EXPECT_EQ(service_.find_from_container(container, 1, &font), 1u);
            EXPECT_EQ(service_.get_container(font), container);
            service_.font_notify(1, 0);
            EXPECT_EQ(service_.register_data(nullptr, container, 0, kVLScopeProcess), container);
            Withdraw(path);
        }
    });
    EXPECT_THAT(Fonts(), ElementsAre("Stays"));
}

// How many descriptors of this process lead to a file.
size_t CountDescriptors(const std::string &path) {
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored; // one may have been closed meanwhile
        if (std::filesystem::read_symlink(entry.path(), ignored) == path) ++count;
    }
    return count;
}

TEST_F(ConcurrentLegacyService, ServesThisProcessWhileAnotherHoldsTheUsersFiles) {
    const std::string system = WriteSystemFont("system.ttf", "System");
    const std::string path = WriteFont("a.ttf", "Ours");
    const auto data = AsData(FontNamed("Memory"));
    ASSERT_THAT(Fonts(), ElementsAre("System"));
    const std::string lock = home_.Write("config/vellum/disabled-fonts.lock", "");
    const int held = open(lock.c_str(), O_RDWR | O_CLOEXEC); // locks are by open file, not by process
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);

    std::atomic<bool> is_done{false};
    std::thread waits([&] {
        Disable(system, kVLScopeUser);
        is_done = true;
    });
    while (CountDescriptors(lock) < 2 && !is_done) std::this_thread::yield();
    Register(path);
    const uint32_t container = service_.register_data(data.Get(), 0, 0, kVLScopeProcess);
    EXPECT_EQ(service_.find_from_container(container, 0, nullptr), 1u);
    EXPECT_THAT(Fonts(), ElementsAre("Memory", "Ours", "System"));
    service_.register_data(nullptr, container, 0, kVLScopeProcess);
    EXPECT_EQ(CountDescriptors(lock), 2u); // it waits still
    close(held);
    waits.join();
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

// The new configuration has a file that takes as long to be read as somebody takes to write it.
TEST_F(ConcurrentLegacyService, ServesThisProcessWhileAConfigurationIsRead) {
    const std::string system = WriteSystemFont("system.ttf", "System");
    const std::string path = WriteFont("a.ttf", "Ours");
    const auto data = AsData(FontNamed("Memory"));
    ASSERT_THAT(Fonts(), ElementsAre("System"));
    home_.MakeFolder("config/fontconfig/conf.d");
    const std::string pipe = ConfigFile("fontconfig/conf.d/90-pipe.conf");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

    auto reads = std::async(std::launch::async, [&] { Disable(system, kVLScopeUser); });
    int writer = -1;
    while ((writer = open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0) std::this_thread::yield();
    auto registers = std::async(std::launch::async, [&] {
        Register(path);
        return service_.register_data(data.Get(), 0, 0, kVLScopeProcess);
    });
    const bool is_served = registers.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    EXPECT_TRUE(is_served);
    constexpr std::string_view kEmpty = "<fontconfig/>";
    EXPECT_EQ(write(writer, kEmpty.data(), kEmpty.size()), static_cast<ssize_t>(kEmpty.size()));
    std::filesystem::remove(pipe);
    close(writer);
    reads.get();
    registers.get();
    EXPECT_THAT(Fonts(), ElementsAre("Memory", "Ours")); // what came meanwhile is in the new one
}

// How often a font is found by another thread while `work` is done; less than nothing when it was missed.
int ConcurrentLegacyService::CountMatchesBeside(const char *family, const std::function<void()> &work) {
    std::atomic<bool> is_done{false};
    std::atomic<int> matches{0};
    std::thread reader([&] {
        bool is_missed = false;
        while (!is_done && !is_missed) {
            is_missed = MatchFamily(family) != family;
            ++matches;
        }
        if (is_missed) matches = -1;
    });
    while (matches == 0) std::this_thread::yield();
    work();
    is_done = true;
    reader.join();
    return matches;
}

TEST_F(ConcurrentLegacyService, WithdrawsFontsThatAnotherThreadIsLookingAt) {
    WriteSystemFont("system.ttf", "System");
    Names files;
    for (int i = 0; i < 200; ++i) {
        const std::string name = "Font" + std::to_string(i);
        files.push_back(WriteFont(name + ".ttf", name));
    }
    for (int round = 0; round < 3; ++round) {
        for (const std::string &file : files) Register(file);
        const int matches = CountMatchesBeside("System", [&] {
            for (const std::string &file : files) Withdraw(file);
        });
        EXPECT_GT(matches, 0);
        EXPECT_THAT(Fonts(), ElementsAre("System"));
    }
}

TEST_F(ConcurrentLegacyService, KeepsWhatIsDisabledOnEachThread) {
    for (size_t i = 0; i < kThreads; ++i) WriteSystemFont(std::to_string(i) + ".ttf", std::to_string(i));
    OnEveryThread([&](size_t thread) {
        const std::string path = system_.File(std::to_string(thread) + ".ttf");
        for (int i = 0; i < 3; ++i) {
            Disable(path, kVLScopeUser);
            if (i < 2) Enable(path, kVLScopeUser);
        }
        if (thread == 0) Enable(path, kVLScopeUser);
    });
    EXPECT_THAT(Fonts(), ElementsAre("0"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("0"));
}

} // namespace
} // namespace vellum::test
