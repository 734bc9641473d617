// SPDX-License-Identifier: MIT
// Copies of font files in stable storage, and registering them.
#include "platform/font/limits.hpp"
#include "store/local_glyphary_imp.hpp"
#include "store/stable_storage.hpp"
#include "suitcases.hpp"
#include "support/captured_log.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class StableStorage : public ::testing::Test {
protected:
    StableStorage() { ::setenv("XDG_RUNTIME_DIR", runtime.Path().c_str(), 1); }

    std::string StablePath(const std::string &name) const {
        return runtime.File("vellum/autoactivatedfonts-" + std::to_string(::getpid()) + "/" + name);
    }
    std::string Move(const Ref<const ValURL> &source) {
        Ref<const ValURL> copy;
        moved = registry.MoveFileToStableStorage(source.Get(), copy);
        return copy ? TextOf(Adopt(ValURLCopyFileSystemPath(copy.Get()))) : "(null)";
    }

    FontFolder folder;
    TempDir runtime;
    TLocalGlypharyImp registry;
    CapturedLog log;
    bool moved = false;
};

TEST_F(StableStorage, HoldsACopyOfTheFile) {
    const auto source = folder.Add("a.ttf", MakeFont({"A"}));
    EXPECT_EQ(Move(source), StablePath("a.ttf"));
    EXPECT_TRUE(moved);
    EXPECT_TRUE(std::filesystem::exists(StablePath("a.ttf")));
    EXPECT_TRUE(std::filesystem::exists(folder.File("a.ttf")));
    struct stat status {};
    ASSERT_EQ(::stat(StablePath("").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(StableStorage, LiesInTheFolderForAllWhereTheUserHasNone) {
    ::unsetenv("XDG_RUNTIME_DIR");
    const std::string stable = "/tmp/autoactivatedfonts-" + std::to_string(::getpid());
    EXPECT_EQ(StableStorageFolder(), stable);
    std::filesystem::remove(stable);
}

TEST_F(StableStorage, IsRefusedWhereItsFolderCannotBeMade) {
    ASSERT_EQ(::mkdir(runtime.File("vellum").c_str(), 0700), 0);
    runtime.Write("vellum/autoactivatedfonts-" + std::to_string(::getpid()), "a file in its place");
    EXPECT_EQ(Move(folder.Add("a.ttf", MakeFont({"A"}))), "(null)");
    EXPECT_FALSE(moved);
    const auto records = log.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(static_cast<int>(records[0].level), 6);
    EXPECT_EQ(records[0].text, "Auto-activation can't create temp directory <file://" + StablePath("") +
                                   "> (20 -- Not a directory)");
}

TEST_F(StableStorage, IsRefusedWhereItsFolderIsNotTheUsersAloneOrCannotBeWrittenTo) {
    ASSERT_EQ(::mkdir(runtime.File("vellum").c_str(), 0700), 0);
    ASSERT_EQ(::mkdir(StablePath("").c_str(), 0700), 0);
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    for (const mode_t mode : {0755U, 0770U, 0702U, 0500U}) {
        ASSERT_EQ(::chmod(StablePath("").c_str(), mode), 0);
        EXPECT_EQ(Move(url), "(null)") << std::oct << mode;
        EXPECT_FALSE(moved);
        EXPECT_THAT(log.Lines().back(), HasSubstr("(1 -- Operation not permitted)"));
    }
    EXPECT_EQ(log.Lines().size(), 4u);
}

// A font that was registered stably, and is registered again by the URL that it had then.
TEST_F(StableStorage, LeavesAFileThatIsItsOwnCopyWhereItIs) {
    const std::string copy = Move(folder.Add("a.ttf", MakeFont({"A"})));
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{100, RLIM_INFINITY}, all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    EXPECT_EQ(Move(FileURL(copy)), copy);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_TRUE(moved);
    EXPECT_TRUE(std::filesystem::exists(copy));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

// ---- suitcases ----

TEST_F(StableStorage, TakesTheOutlinesOfASuitcasesFontsAlongWithTheirForks) {
    const auto suitcase = folder.Add("Suitcase", Bytes());
    const Bytes fork = TwoFamilies();
    folder.Write(".rsrc/Suitcase", fork);
    folder.Write("GaramBol", "");
    folder.Write(".rsrc/GaramBol", ResourceFork({"POST"}));
    EXPECT_EQ(Move(suitcase), StablePath("Suitcase"));
    EXPECT_TRUE(std::filesystem::exists(StablePath("GaramBol")));
    EXPECT_EQ(std::filesystem::file_size(StablePath(".rsrc/GaramBol")), ResourceFork({"POST"}).size());
    EXPECT_EQ(std::filesystem::file_size(StablePath(".rsrc/Suitcase")), fork.size());
}

// Each that is not there is logged, too.
TEST_F(StableStorage, TakesAnOutlineThatASuitcaseNamesOftenOnce) {
    const auto suitcase = folder.Add("Suitcase", Bytes());
    const FamilyFields sizes = {{{0, 0, 1}, {9, 0, 2}, {12, 0, 3}, {24, 0, 4}}, {"Foo"}};
    folder.Write(".rsrc/Suitcase", ForkOf({Family(sizes), Family(sizes)}));
    Move(suitcase);
    EXPECT_THAT(log.Lines(), ElementsAre("Could not copy <file://" + folder.File("Foo") + "> to <file://" +
                                         StablePath("Foo") + "> -- No such file or directory (2)"));
}

TEST_F(StableStorage, TakesNoMoreOutlinesThanAFontFileMayBeLarge) {
    const auto suitcase = folder.Add("Suitcase", Bytes());
    const auto family = [](const char *name) { return Family(Face(name)); };
    folder.Write(".rsrc/Suitcase",
                 ForkOf({family("Large"), family("First"), family("Other"), family("Foo")}));
    std::filesystem::resize_file(folder.Write("Large", ""), limits::kFileSize + 1);
    std::filesystem::resize_file(folder.Write("First", ""), 1u << 20);
    std::filesystem::resize_file(folder.Write("Other", ""), limits::kFileSize);
    folder.Write("Foo", "x");
    Move(suitcase);
    EXPECT_FALSE(std::filesystem::exists(StablePath("Large")));
    EXPECT_TRUE(std::filesystem::exists(StablePath("First")));
    EXPECT_FALSE(std::filesystem::exists(StablePath("Other")));
    EXPECT_TRUE(std::filesystem::exists(StablePath("Foo")));
}

// ---- what fails ----

// That a failed copy is handed out all the same is deliberate: no file lies there that could be opened.
TEST_F(StableStorage, HandsOutTheURLOfACopyThatFailed) {
    const auto absent = folder.URLOf("absent.ttf");
    EXPECT_EQ(Move(absent), StablePath("absent.ttf"));
    EXPECT_TRUE(moved);
    EXPECT_FALSE(std::filesystem::exists(StablePath("absent.ttf")));
    const auto records = log.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(static_cast<int>(records[0].level), 3);
    EXPECT_EQ(records[0].text, "Could not copy <file://" + folder.File("absent.ttf") + "> to <file://" +
                                   StablePath("absent.ttf") + "> -- No such file or directory (2)");
}

TEST_F(StableStorage, HoldsNoHalfOfAFileWhenThereIsNoRoom) {
    const auto source = folder.Add("a.ttf", MakeFont({"A"}));
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{100, RLIM_INFINITY}, all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    EXPECT_EQ(Move(source), StablePath("a.ttf"));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_TRUE(moved);
    EXPECT_TRUE(std::filesystem::is_empty(StablePath("")));
    EXPECT_THAT(log.Lines(),
                ElementsAre("Could not copy <file://" + folder.File("a.ttf") + "> to <file://" +
                            StablePath("a.ttf") + "> -- File too large (27)"));
}

TEST_F(StableStorage, HoldsNoOlderCopyWhenCopyingFails) {
    const auto source = folder.Add("a.ttf", MakeFont({"A"}));
    Move(source);
    std::filesystem::remove(folder.File("a.ttf"));
    EXPECT_EQ(Move(source), StablePath("a.ttf"));
    EXPECT_FALSE(std::filesystem::exists(StablePath("a.ttf")));
}

TEST_F(StableStorage, NeverOverwritesACopyThatIsInUse) {
    Move(folder.Add("one/a.ttf", MakeFont({"A"})));
    ASSERT_TRUE(registry.RegisterFont(FileURL(StablePath("a.ttf")).Get(), nullptr, 0, kVLScopeProcess));
    EXPECT_EQ(Move(folder.Add("two/a.ttf", MakeFont({"B"}))), StablePath("1/a.ttf"));
    ASSERT_TRUE(registry.RegisterFont(FileURL(StablePath("1/a.ttf")).Get(), nullptr, 0, kVLScopeProcess));
    EXPECT_EQ(Move(folder.Add("three/a.ttf", MakeFont({"C"}))), StablePath("2/a.ttf"));
    EXPECT_EQ(Move(folder.Add("four/a.ttf", MakeFont({"B"}))), StablePath("1/a.ttf")); // the same bytes
}

TEST_F(StableStorage, NeverOverwritesACopyOfADisabledFont) {
    Move(folder.Add("one/a.ttf", MakeFont({"A"})));
    const auto stable = FileURL(StablePath("a.ttf"));
    ASSERT_TRUE(registry.RegisterFont(stable.Get(), nullptr, 0, kVLScopeProcess));
    ASSERT_TRUE(registry.DisableFont(stable.Get(), kVLScopeProcess));
    EXPECT_EQ(Move(folder.Add("two/a.ttf", MakeFont({"B"}))), StablePath("1/a.ttf"));
}

TEST_F(StableStorage, TakesNothingWithoutAPath) {
    EXPECT_EQ(Move(MakeURL("https://example.org/")), "(null)");
    EXPECT_FALSE(moved);
}

// ---- copying ----

TEST_F(StableStorage, CopyingNeedsTwoPaths) {
    const auto file = folder.Add("a.ttf", MakeFont({"A"})), none = MakeURL("https://example.org/a.ttf");
    EXPECT_EQ(VLCopyURLToURL(none.Get(), file.Get()), -667);
    EXPECT_EQ(VLCopyURLToURL(file.Get(), none.Get()), -667);
    EXPECT_EQ(VLCopyURLToURL(nullptr, file.Get()), -667);
    EXPECT_EQ(VLCopyURLToURL(file.Get(), nullptr), -667);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(StableStorage, CopyingIntoAFolderThatIsNotThereGivesTheErrorAndLogsIt) {
    const auto file = folder.Add("a.ttf", MakeFont({"A"}));
    EXPECT_EQ(VLCopyURLToURL(file.Get(), folder.URLOf("absent/a.ttf").Get()), ENOENT);
    EXPECT_THAT(log.Lines(),
                ElementsAre("Could not copy <file://" + folder.File("a.ttf") + "> to <file://" +
                            folder.File("absent/a.ttf") + "> -- No such file or directory (2)"));
}

TEST_F(StableStorage, CopyingIntoAReadOnlyFolderGivesTheError) {
    const auto file = folder.Add("a.ttf", MakeFont({"A"}));
    const std::string locked = folder.MakeFolder("locked");
    ASSERT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
    const bool is_root = ::geteuid() == 0; // whom no mode stops
    ASSERT_EQ(::seteuid(is_root ? 65534 : ::geteuid()), 0);
    EXPECT_EQ(VLCopyURLToURL(file.Get(), folder.URLOf("locked/a.ttf").Get()), EACCES);
    ASSERT_EQ(::seteuid(is_root ? 0 : ::geteuid()), 0);
    EXPECT_TRUE(std::filesystem::is_empty(locked));
    EXPECT_EQ(log.Lines().size(), 1u);
}

// ---- registering ----

// A folder on another volume than the root's: shared memory is one.
std::unique_ptr<FontFolder> MakeFolderElsewhere() {
    ::setenv("TMPDIR", "/dev/shm", 1);
    auto folder = std::make_unique<FontFolder>();
    ::unsetenv("TMPDIR");
    return folder;
}

class RegisteringStably : public StableStorage {
protected:
    bool Register(const Ref<const ValURL> &url) {
        return registry.RegisterFont(url.Get(), nullptr, kVLFontFlagCopyToStable, kVLScopeProcess);
    }
    std::vector<std::string> URLs() { return Texts(registry.CopyAvailableFontURLs(kVLScopeProcess)); }

    void SetUp() override {
        ASSERT_FALSE(VLGetDirectoryFlags(FileURL(other->Path()).Get()) & kVLFontFlagRootVolume);
    }

    const std::unique_ptr<FontFolder> other = MakeFolderElsewhere();
};

TEST_F(RegisteringStably, RegistersTheCopyOfAFileOfAnotherVolume) {
    EXPECT_TRUE(Register(other->Add("a.ttf", MakeFont({"A"}))));
    EXPECT_THAT(URLs(), ElementsAre("file://" + StablePath("a.ttf")));
}

TEST_F(RegisteringStably, RegistersEqualFilesOnceAndOthersOfTheirNameBesideThem) {
    EXPECT_TRUE(Register(other->Add("a.ttf", MakeFont({"A"}))));
    EXPECT_FALSE(Register(other->Add("a.ttf", MakeFont({"A"}))));
    EXPECT_TRUE(Register(other->Add("a.ttf", MakeFont({"B"}))));
    EXPECT_THAT(URLs(), ElementsAre("file://" + StablePath("a.ttf"), "file://" + StablePath("1/a.ttf")));
    EXPECT_EQ(registry.GetChangeCount(), 2u);
}

TEST_F(RegisteringStably, FailsWhereThereIsNoStableStorage) {
    runtime.Write("vellum/autoactivatedfonts-" + std::to_string(::getpid()), "a file in its place");
    ASSERT_EQ(::chmod(runtime.File("vellum").c_str(), 0700), 0);
    EXPECT_FALSE(Register(other->Add("a.ttf", MakeFont({"A"}))));
    EXPECT_THAT(URLs(), IsEmpty());
}

TEST_F(RegisteringStably, FailsWhenTheFileIsGoneOrThereIsNoRoomForIt) {
    const auto url = other->Add("a.ttf", MakeFont({"A"}));
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{100, RLIM_INFINITY}, all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    EXPECT_FALSE(Register(url));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_THAT(URLs(), IsEmpty());
    EXPECT_EQ(registry.GetChangeCount(), 0u);
}

} // namespace
} // namespace vellum::test
