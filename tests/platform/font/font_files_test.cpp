// SPDX-License-Identifier: MIT
// Which files are opened at all, and what becomes of fonts whose file changes.
#include "asking.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <thread>

namespace vellum::test {
namespace {

using testing::ElementsAre;

TEST(FontFile, ThatIsAFolderIsRefused) {
    const TempDir folder;
    EXPECT_FALSE(FontsAt(folder.MakeFolder("folder.ttf")));
}

TEST(FontFile, ThatIsAFifoIsRefusedAtOnce) {
    const TempDir folder;
    const std::string path = folder.File("fifo.ttf");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(FontsAt(path));
}

TEST(FontFile, ThatIsASocketIsRefused) {
    const TempDir folder;
    const std::string path = folder.File("s.ttf");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_FALSE(FontsAt(path));
    close(listener);
}

TEST(FontFile, ThatIsADeviceIsRefused) {
    EXPECT_FALSE(FontsAt("/dev/zero"));
    EXPECT_FALSE(FontsAt("/dev/null"));
}

TEST(FontFile, ThatDoesNotExistIsRefused) {
    const TempDir folder;
    EXPECT_FALSE(FontsAt(folder.File("none.ttf")));
}

TEST(FontFile, BelowAFileIsRefused) {
    const TempDir folder;
    EXPECT_FALSE(FontsAt(folder.Write("a.ttf", FontBuilder().Build()) + "/b.ttf"));
}

TEST(FontFile, ThatIsEmptyIsRefused) {
    const TempDir folder;
    EXPECT_FALSE(FontsAt(folder.Write("a.ttf", Bytes())));
}

TEST(FontFile, ThatLeadsInACircleIsRefused) {
    const TempDir folder;
    std::filesystem::create_symlink("a.ttf", folder.File("a.ttf"));
    EXPECT_FALSE(FontsAt(folder.File("a.ttf")));
}

TEST(FontFile, IsReachedThroughASymbolicLink) {
    const TempDir folder;
    std::filesystem::create_symlink(folder.Write("real.ttf", FontBuilder().Build()),
                                    folder.File("link.ttf"));
    EXPECT_THAT(PostScriptNames(FontsAt(folder.File("link.ttf"))), ElementsAre("Test-Regular"));
}

// The child is nobody in particular, whoever runs the tests; its exit code is the answer.
bool IsRefusedToNobody(const std::string &path) {
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && (setegid(65534) != 0 || seteuid(65534) != 0)) _exit(2);
        _exit(FontsAt(path) ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(FontFile, ThatMayNotBeReadIsRefused) {
    const TempDir folder;
    chmod(folder.Path().c_str(), 0755);
    const std::string path = folder.Write("a.ttf", FontBuilder().Build());
    ASSERT_FALSE(IsRefusedToNobody(path));
    chmod(path.c_str(), 0);
    EXPECT_TRUE(IsRefusedToNobody(path));
}

TEST(FontFile, OfTheLargestSizeIsRead) {
    const TempDir folder;
    const std::string path = folder.Write("a.ttf", FontBuilder().Build());
    ASSERT_EQ(truncate(path.c_str(), 256 << 20), 0);
    EXPECT_TRUE(FontsAt(path));
}

TEST(FontFile, ThatIsLargerIsRefused) {
    const TempDir folder;
    const std::string path = folder.Write("a.ttf", FontBuilder().Build());
    ASSERT_EQ(truncate(path.c_str(), (256 << 20) + 1), 0);
    EXPECT_FALSE(FontsAt(path));
}

TEST(FontFile, MayHaveANameOfAnyBytes) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write("\xFF \xC3#%;.ttf", FontBuilder().Build()));
    ASSERT_TRUE(fonts);
    EXPECT_TRUE(FontsAt(GxFontCopyURL(FaceOf(fonts))));
}

TEST(FontFile, NeedsAFileURL) {
    EXPECT_FALSE(FontsAt(Ref<const ValURL>()));
    EXPECT_FALSE(FontsAt(MakeURL("http://example.org/a.ttf")));
    EXPECT_FALSE(FontsAt(MakeURL("file://inMemory_0x1234#postscript-name=A")));
}

size_t CountDescriptors() {
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

TEST(FontFile, IsNotKeptOpen) {
    const TempDir folder;
    const size_t before = CountDescriptors();
    const auto fonts = FontsAt(folder.Write("a.ttf", VariableFont().Build()));
    for (size_t i = 0; i < 3; ++i) AskEverything(FaceOf(fonts, i));
    EXPECT_EQ(CountDescriptors(), before);
}

class ChangedFile : public testing::Test {
protected:
    const TempDir folder_;
    const std::string path_ = folder_.Write("a.ttf", FontBuilder().Table("test", {1, 2, 3}).Build());
    const Ref<const ValArray> fonts_ = FontsAt(path_);
    const GxFont *const font_ = FaceOf(fonts_);
};

TEST_F(ChangedFile, KeepsWhatWasRead) {
    const std::string coverage = Coverage(font_);
    EXPECT_EQ(PostScriptName(font_), "Test-Regular");
    folder_.Write("a.ttf", FontBuilder().Characters({{'a', 'b'}}).Build());
    EXPECT_EQ(PostScriptName(font_), "Test-Regular");
    EXPECT_EQ(Coverage(font_), coverage);
}

TEST_F(ChangedFile, IsReadNoMore) {
    folder_.Write("a.ttf", FontBuilder().Names(PlainNames("Other", "Regular", "Other")).Build());
    EXPECT_EQ(PostScriptName(font_), kNull);
    EXPECT_EQ(Coverage(font_), "");
    EXPECT_FALSE(TableOf(font_, "test").present);
    EXPECT_EQ(Tags(font_).back(), "test"); // read when the font was made
}

TEST_F(ChangedFile, IsToldByItsTimeAlone) {
    const timespec times[] = {{1000, 0}, {1000, 5}};
    ASSERT_EQ(utimensat(AT_FDCWD, path_.c_str(), times, 0), 0);
    EXPECT_FALSE(TableOf(font_, "test").present);
}

TEST_F(ChangedFile, ThatIsAnotherOneUnderTheSameNameIsReadNoMore) {
    std::filesystem::rename(folder_.Write("b.ttf", FontBuilder().Build()), path_);
    EXPECT_FALSE(TableOf(font_, "test").present);
}

TEST_F(ChangedFile, ThatVanishedIsReadNoMore) {
    std::filesystem::remove(path_);
    EXPECT_FALSE(TableOf(font_, "test").present);
    EXPECT_EQ(Str(GxFontCopyURL(font_)), Str(FileURL(path_)));
    EXPECT_FALSE(FontsAt(path_));
}

TEST_F(ChangedFile, ThatComesBackIsReadAgain) {
    std::filesystem::rename(path_, folder_.File("away"));
    EXPECT_EQ(PostScriptName(font_), kNull);
    EXPECT_EQ(Coverage(font_), "");
    std::filesystem::rename(folder_.File("away"), path_);
    EXPECT_EQ(PostScriptName(font_), "Test-Regular");
    EXPECT_EQ(Coverage(font_), "41-5A");
}

TEST_F(ChangedFile, CutShortAtAnyLengthIsHarmless) {
    const Bytes whole = FontBuilder().Build();
    for (size_t size = 0; size <= whole.size(); size += 64) {
        const auto cut = whole.begin() + static_cast<std::ptrdiff_t>(size);
        const auto fonts = FontsAt(folder_.Write("cut.ttf", Bytes(whole.begin(), cut)));
        if (fonts) AskEverything(FaceOf(fonts));
    }
}

TEST(ConcurrentFontFile, CutShortWhileItIsReadIsHarmless) {
    const TempDir folder;
    const Bytes whole = FontBuilder().Table("last", Bytes(100000, 7)).Build();
    const std::string path = folder.Write("a.ttf", whole);
    std::jthread writer([&](const std::stop_token &stop) {
        while (!stop.stop_requested()) {
            folder.Write("a.ttf", Bytes(whole.begin(), whole.begin() + 600));
            folder.Write("a.ttf", whole);
        }
    });
    for (int i = 0; i < 300; ++i) {
        const auto fonts = FontsAt(path);
        if (fonts) AskEverything(FaceOf(fonts));
    }
}

} // namespace
} // namespace vellum::test
