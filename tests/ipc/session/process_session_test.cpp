// SPDX-License-Identifier: MIT
// The session of the process: each test is a process of its own, and sets the environment before the
// first handle reads it.
#include "ipc/session/session_manager.hpp"
#include "support/temp_dir.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <set>

namespace vellum::test {
namespace {

std::string Resolve(const TSessionManager &session) {
    char buffer[64];
    return session.ResolveServiceName(buffer, sizeof buffer, "base");
}

double Now() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

TEST(SessionManager, ReadsTheEnvironmentOnce) {
    const TempDir folder;
    const std::string first = folder.MakeFolder("first/Fount.framework/Resources");
    const std::string second = folder.MakeFolder("second/Fount.framework/Resources");
    setenv("VL_SERVICE_NAME_SUFFIX", "one_VALIDATOR_%V1", 1);
    setenv("VL_FRAMEWORK_RESOURCES_PATH", first.c_str(), 1);
    EXPECT_EQ(Resolve(TSessionManager()), "base_one");
    setenv("VL_SERVICE_NAME_SUFFIX", "two", 1);
    setenv("VL_FRAMEWORK_RESOURCES_PATH", second.c_str(), 1);
    const TSessionManager session;
    EXPECT_EQ(Resolve(session), "base_one");
    EXPECT_EQ(TextOf(session.GetFrameworkDirPath()), folder.File("first/Fount.framework"));
    EXPECT_EQ(TextOf(session.GetFrameworkResourcesDirPath()), first);
}

TEST(SessionManager, HasTheFrameworkOfTheBuildWithoutTheEnvironment) {
    unsetenv("VL_SERVICE_NAME_SUFFIX");
    unsetenv("VL_FRAMEWORK_RESOURCES_PATH");
    const TSessionManager session;
    EXPECT_EQ(Resolve(session), "base");
    EXPECT_EQ(TextOf(session.GetFrameworkDirPath()), VELLUM_FRAMEWORK_DIR);
}

TEST(SessionManager, KnowsTheUserAndWhenItWasMade) {
    const double before = Now();
    const TSessionManager session;
    const double after = Now();
    EXPECT_EQ(session.GetEffectiveUserID(), ::geteuid());
    EXPECT_GE(session.GetCreationTime(), before);
    EXPECT_LE(session.GetCreationTime(), after);
    EXPECT_EQ(TSessionManager().GetCreationTime(), session.GetCreationTime());
}

TEST(ConcurrentSessionManager, IsOneForAllThreads) {
    setenv("VL_SERVICE_NAME_SUFFIX", "threads", 1);
    std::string names[kThreads];
    const ValString *frameworks[kThreads];
    OnEveryThread([&](size_t thread) {
        const TSessionManager session;
        names[thread] = Resolve(session);
        frameworks[thread] = session.GetFrameworkDirPath();
    });
    EXPECT_EQ(std::set<std::string>(std::begin(names), std::end(names)),
              std::set<std::string>{"base_threads"});
    EXPECT_EQ(std::set<const ValString *>(std::begin(frameworks), std::end(frameworks)).size(), 1u);
}

} // namespace
} // namespace vellum::test
