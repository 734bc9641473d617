// SPDX-License-Identifier: MIT
// Programs that fork, and programs of several threads, while the index of font files is searched.
#include "autoactivation/auto_activation_manager.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "machine.hpp"
#include "platform/port/service_address.hpp"
#include "support/other_process.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace vellum::test {
namespace {

size_t CountActivatable() {
    TValMutableDict request;
    request.Set(kVLFontPropertyFamilyName, String("Foo").Get());
    return ValArrayGetCount(
        TAutoActivationManager(request.Get(), true, false).CopyActivatableFonts().Get());
}

void WaitFor(const TDescriptor &descriptor) {
    pollfd ready = {descriptor.Get(), POLLIN, 0};
    ::poll(&ready, 1, -1);
}

// Whether a fork goes on at once, and its child can search, while another thread waits for an index that
// does not answer.
bool ForksWhileAnotherThreadSearches() {
    const TDescriptor index = ListenAsService(ServerName(kBeaconName).Get(), IfTaken::kReplace);
    std::thread searching(CountActivatable);
    WaitFor(index);
    TDescriptor peer = AcceptFromOwnUser(index.Get(), nullptr);
    WaitFor(peer);
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        TAutoActivationManager::sPatience.query = std::chrono::milliseconds(20);
        ::_exit(CountActivatable() == 0 ? 0 : 1);
    }
    const bool is_prompt = std::chrono::steady_clock::now() - begin < std::chrono::seconds(3);
    int status = -1;
    ::waitpid(child, &status, 0);
    peer = TDescriptor(); // the index goes away
    searching.join();
    return is_prompt && status == 0;
}

TEST(ForksDuringASearch, AreNotHeldUpAndHaveChildrenThatSearch) {
    Machine machine;
    ASSERT_TRUE(machine.Server().Start());
    OtherProcess process([] {
        OtherProcess::IsReady();
        ::alarm(60);
        TAutoActivationManager::sPatience.query = std::chrono::seconds(30);
        ::_exit(ForksWhileAnotherThreadSearches() ? 0 : 1);
    });
    EXPECT_EQ(process.Wait(), 0);
}

TEST(SearchesOfSeveralThreads, EachFindWhatTheySearch) {
    Machine machine;
    machine.Files().Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    OtherProcess process([] {
        OtherProcess::IsReady();
        std::atomic<size_t> found{0};
        OnEveryThread([&](size_t) {
            for (int i = 0; i < 10; ++i) found += CountActivatable();
        });
        ::_exit(found == kThreads * 10 && TAutoActivationManager::sNumUnknownBeaconErrors == 0 ? 0 : 1);
    });
    EXPECT_EQ(process.Wait(), 0);
}

} // namespace
} // namespace vellum::test
