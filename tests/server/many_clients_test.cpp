// SPDX-License-Identifier: MIT
// A server that many ask at once, and one of which somebody wants much: everybody gets the right answer,
// soon, and nothing is left of it.
#include "ipc/client/global_glyphary_imp.hpp"
#include "running_server.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <vellum/vellum.h>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace vellum::test {
namespace {

using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlowness = 5;
constexpr long kSpareMemory = 400'000; // a sanitizer keeps what was freed
#else
constexpr int kSlowness = 1;
constexpr long kSpareMemory = 4'000; // KiB
#endif

// How many requests there are in all; VELLUM_REQUESTS says otherwise.
size_t Requests() {
    const char *requests = std::getenv("VELLUM_REQUESTS");
    return requests ? std::strtoul(requests, nullptr, 10) : 10'000;
}

constexpr size_t kFonts = 50, kProcesses = 40, kThreads = 5;

std::string FamilyOf(size_t font) {
    return "F" + std::to_string(100 + font);
}

// Asks questions of several kinds, whose answers are known.
class Client {
public:
    explicit Client(std::string folder) : folder_(std::move(folder)) {
        for (size_t i = 0; i < kFonts; ++i) families_.push_back(FamilyOf(i));
    }

    bool Ask(size_t number) const {
        const size_t font = number % kFonts;
        switch (number % 5) {
        case 0:
            return Texts(proxy_.CopyAvailableFontFamilyNames(kVLScopeUser)) == families_;
        case 1:
            return !proxy_.CopyFontForName(String("Nobody-Regular").Get(), kVLScopeUser);
        case 2: {
            const auto properties = proxy_.CopyPropertiesForFont(
                URLOf(font).Get(), Keys({kVLFontPropertyFamilyName}).Get(), kVLScopeUser);
            return TextOf(ValDictionaryGetValue(properties.Get(), kVLFontPropertyFamilyName)) ==
                   FamilyOf(font);
        }
        default: {
            const auto url =
                proxy_.CopyFontForName(String(FamilyOf(font) + "-Regular").Get(), kVLScopeUser);
            return url && TextOf(ValURLGetString(url.Get())).ends_with("/" + FamilyOf(font) + ".ttf");
        }
        }
    }

private:
    Ref<const ValURL> URLOf(size_t font) const { return FileURL(folder_ + "/" + FamilyOf(font) + ".ttf"); }

    const TGlobalGlypharyImp proxy_; // which asks the server each time
    const std::string folder_;
    std::vector<std::string> families_;
};

class ManyClients : public ::testing::Test {
protected:
    ManyClients() {
        for (size_t i = 0; i < kFonts; ++i)
            server.System().Write(RunningServer::SystemFolder() + "/" + FamilyOf(i) + ".ttf",
                                  MakeFont({FamilyOf(i)}));
        folder = server.System().Path() + "/" + RunningServer::SystemFolder();
    }

    static pid_t Begin(const std::function<bool()> &work) {
        const pid_t process = ::fork();
        if (process == 0) ::_exit(work() ? 0 : 1);
        return process;
    }
    static bool EndsWell(pid_t process) {
        int status = -1;
        ::waitpid(process, &status, 0);
        return status == 0;
    }

    size_t Descriptors() const {
        const std::string path = "/proc/" + std::to_string(server.Process()) + "/fd";
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
    }

    // What of the server lies in memory, in KiB.
    long Memory() const {
        std::ifstream status("/proc/" + std::to_string(server.Process()) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmRSS:")) return std::strtol(line.c_str() + 6, nullptr, 10);
        return 0;
    }

    // Has all clients ask so much together, once all of them are connected. How many processes had nothing
    // but right answers; `connected` gets the server's descriptors when all were there.
    size_t RunAll(size_t requests, size_t &connected) const {
        std::array<int, 2> ready, go;
        if (::pipe(ready.data()) != 0 || ::pipe(go.data()) != 0) return 0;
        std::vector<pid_t> processes;
        for (size_t i = 0; i < kProcesses; ++i)
            processes.push_back(Begin([&] {
                ::close(go[1]);
                return RunThreads(requests / (kProcesses * kThreads), ready[1], go[0]);
            }));
        ::close(ready[1]);
        char byte;
        for (size_t i = 0; i < kProcesses * kThreads && ::read(ready[0], &byte, 1) == 1; ++i) {
        }
        connected = Descriptors();
        for (const int end : {ready[0], go[0], go[1]}) ::close(end);
        return static_cast<size_t>(std::ranges::count_if(processes, EndsWell));
    }

    bool RunThreads(size_t requests, int ready, int go) const {
        const Client client(folder);
        std::atomic<size_t> wrong{0};
        std::vector<std::thread> threads;
        for (size_t i = 0; i < kThreads; ++i)
            threads.emplace_back([&, first = i * 7] {
                wrong += !client.Ask(first);
                char byte = 0;
                wrong += ::write(ready, &byte, 1) != 1;
                wrong += ::read(go, &byte, 1) != 0; // until its other end is closed
                for (size_t number = first; number < first + requests; ++number)
                    wrong += !client.Ask(number);
            });
        for (std::thread &thread : threads) thread.join();
        return wrong == 0;
    }

    RunningServer server;
    std::string folder;
};

TEST_F(ManyClients, AreAllAnsweredRightlyAndLeaveNothingConcurrently) {
    ASSERT_TRUE(server.Start());
    const size_t at_first = Descriptors();
    size_t connected = 0;
    ASSERT_EQ(RunAll(Requests() / 10, connected), kProcesses); // what is made once for all is there now
    const long memory = Memory();
    EXPECT_EQ(RunAll(Requests(), connected), kProcesses);
    EXPECT_GE(connected, at_first + kProcesses * kThreads);
    constexpr size_t kKeptAnswers = 8; // and what is opened when it is first needed
    while (Descriptors() > at_first + kKeptAnswers) std::this_thread::yield(); // it notices one by one
    const long more = Memory() - memory;
    RecordProperty("KiB_more_in_memory", std::to_string(more));
    EXPECT_LT(more, kSpareMemory);
}

TEST_F(ManyClients, AreNotHeldUpByOneThatRegistersThousandsOfFonts) {
    constexpr size_t kNewFonts = 5000, kCalls = 5;
    const TempDir added;
    const Bytes font = MakeFont({"Added"});
    std::vector<Ref<const ValURL>> urls;
    for (size_t i = 0; i < kNewFonts; ++i)
        urls.push_back(FileURL(added.Write(std::to_string(i) + ".ttf", font)));
    ASSERT_TRUE(server.Start());
    const pid_t registrar = Begin([&] {
        bool is_done = true;
        for (size_t call = 0; call < kCalls; ++call) {
            const auto first = urls.begin() + static_cast<ptrdiff_t>(call * kNewFonts / kCalls);
            const std::vector<Ref<const ValURL>> some(first, first + kNewFonts / kCalls);
            is_done &= VLRegisterFonts(Array(some).Get(), 0, kVLScopeSession, nullptr);
        }
        return is_done;
    });
    const Client client(folder);
    std::vector<Clock::duration> times;
    int status = -1;
    for (size_t number = 3; ::waitpid(registrar, &status, WNOHANG) == 0; number += 5) {
        const auto begin = Clock::now();
        ASSERT_TRUE(client.Ask(number));
        times.push_back(Clock::now() - begin);
    }
    EXPECT_EQ(status, 0);
    ASSERT_GT(times.size(), 100u);
    const auto rare = times.begin() + static_cast<ptrdiff_t>(times.size() * 99 / 100);
    std::ranges::nth_element(times, rare);
    RecordProperty("microseconds_at_the_99th_percentile",
                   std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(*rare).count()));
    EXPECT_LT(*rare, std::chrono::milliseconds(20) * kSlowness);
}

} // namespace
} // namespace vellum::test
