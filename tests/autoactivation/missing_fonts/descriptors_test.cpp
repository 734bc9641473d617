// SPDX-License-Identifier: MIT
// Programs that have no descriptor left when the index is to be searched.
#include "autoactivation/auto_activation_manager.hpp"
#include "machine.hpp"
#include "support/other_process.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace vellum::test {
namespace {

// How a process ends that has so many descriptors left for some work: by 0 where that found something, by 1
// where it found nothing.
int EndWithDescriptors(int left, const std::function<bool()> &finds) {
    OtherProcess process([&] {
        OtherProcess::IsReady();
        const int next = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
        const auto most = static_cast<rlim_t>(next + left);
        const rlimit limit = {most, most};
        ::close(next);
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) ::_exit(2);
        ::_exit(finds() ? 0 : 1);
    });
    return process.Wait();
}

bool FindsInIndex() {
    return Adopt(VLCopyIndexedFontFiles(String("com_orrery_fount_name_family == \"Foo\"").Get())).Get();
}

bool FindsActivatable() {
    TValMutableDict request;
    request.Set(kVLFontPropertyFamilyName, String("Foo").Get());
    return TAutoActivationManager(request.Get(), true, false).CopyActivatableFonts().Get();
}

TEST(ProgramsWithoutDescriptors, FindNothingInTheIndexAndGoOn) {
    Machine machine;
    machine.Files().Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    constexpr int kFound = 0, kNothing = 1 << 8;
    for (bool (*finds)() : {FindsInIndex, FindsActivatable}) {
        std::vector<int> ends;
        for (int left = 0; left < 12; ++left) ends.push_back(EndWithDescriptors(left, finds));
        EXPECT_EQ(ends.front(), kNothing);
        EXPECT_EQ(ends.back(), kFound);
        EXPECT_EQ(std::ranges::count(ends, kFound) + std::ranges::count(ends, kNothing), 12);
    }
}

} // namespace
} // namespace vellum::test
