// SPDX-License-Identifier: MIT
// Expat stands for all libraries that are opened late: nothing else brings it into this program.
#include "platform/late/late_library.hpp"
#include "platform/process/passing_failures.hpp"

#include <dlfcn.h>
#include <expat.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <thread>
#include <vector>

namespace vellum::test {
namespace {

constexpr const char *kName = "libexpat.so.1";

bool IsInProcess(const char *library) {
    void *handle = ::dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle) ::dlclose(handle);
    return handle;
}

// This process gets no descriptor while it lives.
class NoDescriptors {
public:
    NoDescriptors() {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &former_), 0);
        const rlimit none = {0, former_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    }
    ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &former_); }

private:
    rlimit former_ = {};
};

TEST(LateLibraries, AreOpenedByTheFirstCallOfTheirFunctions) {
    LateLibrary library(kName);
    LateFunction<decltype(::XML_ExpatVersionInfo)> version(library, "XML_ExpatVersionInfo");
    ASSERT_FALSE(IsInProcess(kName));
    EXPECT_EQ(version().major, XML_MAJOR_VERSION);
    EXPECT_TRUE(IsInProcess(kName));
    EXPECT_EQ(version().major, XML_MAJOR_VERSION);
}

TEST(LateLibraries, ThatAreMissingGiveNothingAndCountAsPassingFailures) {
    LateLibrary library("libvellum-is-not-there.so.0");
    LateFunction<int(int)> number(library, "number");
    LateFunction<void()> nothing(library, "nothing");
    LateFunction<decltype(::XML_ParserCreate)> pointer(library, "XML_ParserCreate");
    const uint32_t failures = tPassingFailures;
    EXPECT_FALSE(library.Open());
    EXPECT_EQ(tPassingFailures, failures + 1);
    EXPECT_EQ(number(7), 0);
    EXPECT_EQ(pointer("UTF-8"), nullptr);
    nothing();
    EXPECT_EQ(tPassingFailures, failures + 4);
}

TEST(LateLibraries, WithoutAFunctionGiveNothingForItAlone) {
    LateLibrary library(kName);
    LateFunction<int(int)> missing(library, "XML_IsNotThere");
    LateFunction<decltype(::XML_ExpatVersion)> version(library, "XML_ExpatVersion");
    EXPECT_EQ(missing(7), 0);
    EXPECT_NE(version(), nullptr);
}

TEST(LateLibraries, AreTriedAgainOnceDescriptorsAreToBeHad) {
    LateLibrary library(kName);
    LateFunction<decltype(::XML_ExpatVersion)> version(library, "XML_ExpatVersion");
    ASSERT_FALSE(IsInProcess(kName));
    {
        const NoDescriptors none;
        EXPECT_FALSE(library.Open());
        EXPECT_EQ(version(), nullptr);
    }
    EXPECT_NE(version(), nullptr);
}

TEST(LateLibrariesConcurrent, AreOpenedByManyThreadsAtOnce) {
    LateLibrary library(kName);
    LateFunction<decltype(::XML_ExpatVersion)> version(library, "XML_ExpatVersion");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) threads.emplace_back([&] { EXPECT_NE(version(), nullptr); });
    for (std::thread &thread : threads) thread.join();
}

} // namespace
} // namespace vellum::test
