// SPDX-License-Identifier: MIT
// Folders with more files of a family than the parser keeps in mind.
#include "machine.hpp"
#include "platform/font/limits.hpp"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <string>

namespace vellum::test {
namespace {

// How often the files of a folder are opened from now on.
class Openings {
public:
    explicit Openings(const std::string &folder) : queue_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(queue_, folder.c_str(), IN_OPEN), 0);
    }
    ~Openings() { ::close(queue_); }
    Openings(const Openings &) = delete;
    Openings &operator=(const Openings &) = delete;

    size_t SoFar() {
        alignas(inotify_event) std::array<char, 16384> events;
        for (ssize_t length; (length = ::read(queue_, events.data(), events.size())) > 0;)
            for (size_t at = 0; at < static_cast<size_t>(length); ++count_)
                at += sizeof(inotify_event) + reinterpret_cast<inotify_event *>(events.data() + at)->len;
        return count_;
    }

private:
    const int queue_;
    size_t count_ = 0;
};

TEST(MissingFontsOfManyFiles, AreEachReadAFewTimesToFindTheBest) {
    constexpr size_t kFiles = 4 * limits::kCachedFiles;
    Machine machine;
    for (size_t i = kFiles; i > 0; --i)
        machine.Files().Add("foo" + std::to_string(i) + ".ttf",
                            NamedFace{"Foo", "Style " + std::to_string(i)});
    machine.Start();
    Application application("org.example.App");
    Openings openings(machine.Files().Path());
    EXPECT_EQ(application.Do("best Foo"), machine.Files().File("foo1.ttf"));
    EXPECT_GE(openings.SoFar(), kFiles);
    EXPECT_LE(openings.SoFar(), 5 * kFiles);
}

} // namespace
} // namespace vellum::test
