// SPDX-License-Identifier: MIT
#include "platform/loop/main_loop.hpp"

#include <glib.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <thread>
#include <vector>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

std::vector<int> fired;

template <int kNumber>
void Fire(void *) noexcept {
    fired.push_back(kNumber);
}

void FireAndAdd(void *) noexcept {
    fired.push_back(0);
    AddMainLoopTimer(Fire<1>, nullptr);
}

void FireInsideAnother(void *) noexcept {
    AddMainLoopTimer(Fire<2>, nullptr);
    g_main_context_iteration(nullptr, FALSE);
    fired.push_back(3);
}

bool IsReadable(int descriptor) {
    pollfd poll_entry{descriptor, POLLIN, 0};
    return ::poll(&poll_entry, 1, 0) == 1;
}

TEST(MainLoop, FiresATimerOnceAtTheNextPassAndNotBefore) {
    AddMainLoopTimer(Fire<7>, nullptr);
    EXPECT_TRUE(fired.empty());
    EXPECT_TRUE(g_main_context_iteration(nullptr, FALSE));
    EXPECT_THAT(fired, ElementsAre(7));
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
    EXPECT_THAT(fired, ElementsAre(7));
}

TEST(MainLoop, GivesTheInfoToTheAction) {
    int number = 0;
    AddMainLoopTimer([](void *info) noexcept { *static_cast<int *>(info) = 5; }, &number);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(number, 5);
}

TEST(MainLoop, FiresTimersInTheOrderOfAdding) {
    AddMainLoopTimer(Fire<1>, nullptr);
    AddMainLoopTimer(Fire<2>, nullptr);
    AddMainLoopTimer(Fire<3>, nullptr);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_THAT(fired, ElementsAre(1, 2, 3));
}

TEST(MainLoop, LeavesWhatATimerAddsToTheNextPass) {
    AddMainLoopTimer(FireAndAdd, nullptr);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_THAT(fired, ElementsAre(0));
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_THAT(fired, ElementsAre(0, 1));
}

TEST(MainLoop, GoesOnInALoopThatATimerRuns) {
    AddMainLoopTimer(FireInsideAnother, nullptr);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_THAT(fired, ElementsAre(2, 3));
}

TEST(MainLoop, IsWokenByATimerOfAnotherThread) {
    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    std::thread other([loop] {
        AddMainLoopTimer([](void *info) noexcept { g_main_loop_quit(static_cast<GMainLoop *>(info)); },
                         loop);
    });
    g_main_loop_run(loop); // for ever, unless it is woken
    other.join();
    g_main_loop_unref(loop);
}

// Once it has slept it may sleep again.
TEST(MainLoop, IsWokenByEveryTimerThatComesWhenTheLastHasFired) {
    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    std::thread other([loop] {
        for (int i = 0; i < 200; ++i) {
            std::promise<void> has_fired;
            AddMainLoopTimer(
                [](void *info) noexcept { static_cast<std::promise<void> *>(info)->set_value(); },
                &has_fired);
            has_fired.get_future().wait();
        }
        g_main_loop_quit(loop);
    });
    g_main_loop_run(loop); // for ever, unless it is woken each time
    other.join();
    g_main_loop_unref(loop);
}

TEST(MainLoop, HasADescriptorThatIsReadableWhileATimerWaits) {
    const int descriptor = MainLoopDescriptor();
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(MainLoopDescriptor(), descriptor);
    EXPECT_FALSE(IsReadable(descriptor));
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_TRUE(IsReadable(descriptor));
    FireMainLoopTimers();
    EXPECT_THAT(fired, ElementsAre(1));
    EXPECT_FALSE(IsReadable(descriptor));
}

TEST(MainLoop, HasADescriptorThatIsReadableForATimerAddedBeforeItWasAskedFor) {
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_TRUE(IsReadable(MainLoopDescriptor()));
}

TEST(MainLoop, MakesTheDescriptorReadableForWhatATimerAdds) {
    const int descriptor = MainLoopDescriptor();
    AddMainLoopTimer(FireAndAdd, nullptr);
    FireMainLoopTimers();
    EXPECT_THAT(fired, ElementsAre(0));
    EXPECT_TRUE(IsReadable(descriptor));
    FireMainLoopTimers();
    EXPECT_THAT(fired, ElementsAre(0, 1));
    EXPECT_FALSE(IsReadable(descriptor));
}

// Whether `check` is true in a process that is forked here.
template <class Check>
bool HoldsInAChild(Check check) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(check() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(MainLoop, OfAForkedProcessTakesNothingFromTheParents) {
    const int descriptor = MainLoopDescriptor();
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_TRUE(HoldsInAChild([] {
        FireMainLoopTimers();
        g_main_context_iteration(nullptr, FALSE);
        return fired.empty();
    }));
    EXPECT_TRUE(IsReadable(descriptor));
    FireMainLoopTimers();
    EXPECT_THAT(fired, ElementsAre(1));
}

TEST(MainLoop, OfAForkedProcessHasADescriptorOfItsOwnUnderTheSameNumber) {
    const int descriptor = MainLoopDescriptor();
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_TRUE(HoldsInAChild([descriptor] {
        if (MainLoopDescriptor() != descriptor || IsReadable(descriptor)) return false;
        AddMainLoopTimer(Fire<2>, nullptr);
        if (!IsReadable(descriptor)) return false;
        FireMainLoopTimers();
        return fired == std::vector{2} && !IsReadable(descriptor);
    }));
    EXPECT_TRUE(IsReadable(descriptor));
    FireMainLoopTimers();
    EXPECT_FALSE(IsReadable(descriptor));
    EXPECT_TRUE(HoldsInAChild([] { // whose timers the parent does not see
        AddMainLoopTimer(Fire<3>, nullptr);
        return true;
    }));
    EXPECT_FALSE(IsReadable(descriptor));
}

TEST(MainLoop, OfAForkedProcessIsGLibsToo) {
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_TRUE(HoldsInAChild([] {
        AddMainLoopTimer(Fire<2>, nullptr);
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        return fired == std::vector{2};
    }));
}

TEST(MainLoop, NeitherReadsNorWritesWhatAProgramOpenedInPlaceOfTheDescriptor) {
    const int descriptor = MainLoopDescriptor();
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::dup2(ends[1], descriptor), descriptor);
    AddMainLoopTimer(Fire<1>, nullptr);
    EXPECT_FALSE(IsReadable(ends[0]));
    EXPECT_NE(MainLoopDescriptor(), descriptor);
    EXPECT_TRUE(IsReadable(MainLoopDescriptor()));
    for (const int end : {ends[0], ends[1], descriptor}) ::close(end);
}

TEST(ConcurrentMainLoop, FiresEachTimerOfManyThreadsOnce) {
    constexpr int kThreads = 4, kTimers = 2000;
    static int count;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < kTimers; ++j) AddMainLoopTimer([](void *) noexcept { ++count; }, nullptr);
        });
    while (count < kThreads * kTimers) g_main_context_iteration(nullptr, TRUE);
    for (std::thread &thread : threads) thread.join();
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
    EXPECT_EQ(count, kThreads * kTimers);
}

} // namespace
} // namespace vellum::test
