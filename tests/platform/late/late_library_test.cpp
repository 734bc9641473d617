// SPDX-License-Identifier: MIT
// Expat stands for all libraries that are opened late: nothing else brings it into this program, of which
// ctest gives each test a process.
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

// A library with one function.
template <class Signature>
struct LibraryOfOne {
    LibraryOfOne(const char *soname, const char *name)
        : entry{name, function.Address()}, library(soname, {&entry, 1}) {}

    LateFunction<Signature> function;
    LateLibrary::Function entry;
    LateLibrary library;
};

TEST(LateLibraries, AreOpenedWithTheirFunctions) {
    LibraryOfOne<decltype(::XML_ExpatVersionInfo)> expat(kName, "XML_ExpatVersionInfo");
    EXPECT_FALSE(expat.library.IsOpen());
    ASSERT_FALSE(IsInProcess(kName));
    EXPECT_TRUE(expat.library.Open());
    EXPECT_TRUE(expat.library.IsOpen());
    EXPECT_TRUE(IsInProcess(kName));
    EXPECT_EQ(expat.function().major, XML_MAJOR_VERSION);
}

TEST(LateLibraries, ThatAreNotOpenGiveNothingAndCountAsPassingFailures) {
    LateFunction<int(int)> number;
    LateFunction<void()> nothing;
    LateFunction<decltype(::XML_ParserCreate)> pointer;
    const uint32_t failures = tPassingFailures;
    EXPECT_EQ(number(7), 0);
    EXPECT_EQ(pointer("UTF-8"), nullptr);
    nothing();
    EXPECT_EQ(tPassingFailures, failures + 3);
}

TEST(LateLibraries, ThatAreMissingAreAPassingFailure) {
    LibraryOfOne<int(int)> missing("libvellum-is-not-there.so.0", "number");
    const uint32_t failures = tPassingFailures;
    EXPECT_FALSE(missing.library.Open());
    EXPECT_FALSE(missing.library.IsOpen());
    EXPECT_EQ(tPassingFailures, failures + 1);
    EXPECT_EQ(missing.function(7), 0);
}

TEST(LateLibraries, ThatLackAFunctionAreNotOpen) {
    LibraryOfOne<int(int)> old(kName, "XML_IsNotThere");
    const uint32_t failures = tPassingFailures;
    EXPECT_FALSE(old.library.Open());
    EXPECT_EQ(tPassingFailures, failures + 1);
    EXPECT_EQ(old.function(7), 0);
}

TEST(LateLibraries, AreTriedAgainOnceDescriptorsAreToBeHad) {
    LibraryOfOne<decltype(::XML_ExpatVersion)> expat(kName, "XML_ExpatVersion");
    ASSERT_FALSE(IsInProcess(kName));
    {
        const NoDescriptors none;
        EXPECT_FALSE(expat.library.Open());
        EXPECT_EQ(expat.function(), nullptr);
    }
    EXPECT_TRUE(expat.library.Open());
    EXPECT_NE(expat.function(), nullptr);
}

TEST(LateLibrariesConcurrent, AreOpenedByManyThreadsAtOnce) {
    LibraryOfOne<decltype(::XML_ExpatVersion)> expat(kName, "XML_ExpatVersion");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { EXPECT_TRUE(expat.library.Open() && expat.function()); });
    for (std::thread &thread : threads) thread.join();
}

} // namespace
} // namespace vellum::test
