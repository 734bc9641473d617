// SPDX-License-Identifier: MIT
// What the crawler finds, what it passes over, what it reads, and how the index follows the folders.
#include "beacon/crawler.hpp"
#include "beacon/font_names.hpp"
#include "beacon/name_lookup.hpp"
#include "support/captured_log.hpp"
#include "support/font_builder.hpp"
#include "support/name_records.hpp"
#include "support/named_font.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

class Crawls : public ::testing::Test {
protected:
    Crawls() {
        ::setenv("VELLUM_INDEX_ROOTS", files.Path().c_str(), 1);
        ::setenv("HOME", home.Path().c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", home.File("config").c_str(), 1);
    }

    void Finish() {
        while (crawler.HasWork()) crawler.Work();
    }
    void Crawl(bool reads_all = false) {
        crawler.Begin(FindCrawlRoots(), reads_all);
        Finish();
    }

    // Follows what the watches tell of until something is so; false when they tell of nothing more.
    bool FollowUntil(const std::function<bool()> &is_so) {
        while (!is_so()) {
            pollfd event = {crawler.ChangesDescriptor(), POLLIN, 0};
            if (::poll(&event, 1, 10'000) != 1) return false;
            crawler.Follow();
            Finish();
        }
        return true;
    }

    std::vector<std::string> Found(NameAttribute attribute, const std::string &name) {
        std::vector<std::string> paths;
        for (const MetadataItem &item : lookup.Find({{attribute, name}}))
            paths.push_back(item.path.substr(files.Path().size() + 1));
        return paths;
    }
    std::vector<std::string> OfFamily(const std::string &name) {
        return Found(NameAttribute::kFamily, name);
    }

    FontFolder files;
    TempDir home;
    CrawlProgress progress = {};
    NameIndex index{home.File("font-index.db")};
    NameLookup lookup{home.File("font-index.db")};
    Crawler crawler{index, progress};
    CapturedLog log;
};

TEST_F(Crawls, FindFontsInAllFoldersByEachOfTheirNames) {
    files.Add("a.ttf", NamedFace{"Foo", "Bold"});
    files.Add("deep/er/b.TTF", NamedFace{"Bar", "Light"});
    files.Add("WithoutSuffix", NamedFace{"Baz", "Thin"});
    Crawl();
    EXPECT_THAT(Found(NameAttribute::kPostScript, "Foo-Bold"), ElementsAre("a.ttf"));
    EXPECT_THAT(Found(NameAttribute::kFamily, "Bar"), ElementsAre("deep/er/b.TTF"));
    EXPECT_THAT(Found(NameAttribute::kStyle, "Thin"), ElementsAre("WithoutSuffix"));
    EXPECT_THAT(Found(NameAttribute::kFull, "Foo Bold"), ElementsAre("a.ttf"));
    EXPECT_EQ(progress.files, 3u);
}

TEST_F(Crawls, FindAFontByItsNamesInEveryLanguage) {
    auto names = PlainNames("Foo", "Bold", "Foo-Bold");
    names.push_back(WindowsName(1, u"ふう", 0x411));
    names.push_back(WindowsName(2, u"Fett", 0x407));
    names.push_back(WindowsName(16, u"Foo Große", 0x407));
    files.Add("a.ttf", FontBuilder().Names(names).Build());
    Crawl();
    for (const char *family : {"Foo", "ふう", "Foo Große"})
        EXPECT_THAT(OfFamily(family), ElementsAre("a.ttf"));
    EXPECT_THAT(Found(NameAttribute::kStyle, "Fett"), ElementsAre("a.ttf"));
}

TEST_F(Crawls, FindEveryFaceOfACollectionAndEveryInstanceOfAVariableFont) {
    files.Add("a.ttc", MakeCollection({{"One"}, {"Two", "Bold"}}));
    files.Add("v.ttf", MakeVariableFont({"Var"}, {700}));
    Crawl();
    EXPECT_THAT(OfFamily("One"), ElementsAre("a.ttc"));
    EXPECT_THAT(Found(NameAttribute::kPostScript, "Two-Bold"), ElementsAre("a.ttc"));
    EXPECT_THAT(Found(NameAttribute::kStyle, "W700"), ElementsAre("v.ttf"));
    EXPECT_EQ(progress.faces, 4u);
}

TEST_F(Crawls, PassOverHiddenFoldersFetchedOnesAndThoseThatAreMarkedAsCaches) {
    for (const char *folder : {".hidden", "node_modules", "project/node_modules/x", "__pycache__", "cache"})
        files.Add(std::string(folder) + "/a.ttf", NamedFace{"Foo"});
    files.Write("cache/CACHEDIR.TAG", "Signature: 8a477f597d28d172789f06886806bc55");
    files.Add("seen/a.ttf", NamedFace{"Foo"});
    Crawl();
    EXPECT_THAT(OfFamily("Foo"), ElementsAre("seen/a.ttf"));
}

TEST_F(Crawls, FollowNoLinkOutOfTheRootsNorRoundInCircles) {
    files.Add("in/a.ttf", NamedFace{"Foo"});
    FontFolder outside;
    outside.Add("b.ttf", NamedFace{"Outside"});
    fs::create_directory_symlink(outside.Path(), files.File("out"));
    fs::create_symlink(outside.File("b.ttf"), files.File("b.ttf"));
    fs::create_directory_symlink("..", files.File("in/round"));
    fs::create_directory_symlink(files.File("in"), files.File("again"));
    Crawl();
    EXPECT_THAT(OfFamily("Foo"), ElementsAre("in/a.ttf"));
    EXPECT_THAT(OfFamily("Outside"), IsEmpty());
}

TEST_F(Crawls, GoNowhereBelowTheRootsThatTheFileOfTheUserLeavesOut) {
    ::unsetenv("VELLUM_INDEX_ROOTS");
    home.Write("config/vellum/index-roots", "# mine\n" + files.Path() + "\n!" + files.File("private") +
                                                "\nno path\n" + files.File("not there") + "\n");
    files.Add("a.ttf", NamedFace{"Foo"});
    files.Add("private/a.ttf", NamedFace{"Foo"});
    Crawl();
    EXPECT_THAT(OfFamily("Foo"), ElementsAre("a.ttf"));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("'no path'")));
}

TEST_F(Crawls, ReadARootThatLiesInAnotherOnce) {
    ::setenv("VELLUM_INDEX_ROOTS",
             (files.File("in") + ":" + files.Path() + "::relative:" + files.Path() + "/").c_str(), 1);
    files.Add("in/a.ttf", NamedFace{"Foo"});
    const CrawlRoots roots = FindCrawlRoots();
    ASSERT_EQ(roots.roots.size(), 1u);
    EXPECT_EQ(roots.roots[0].path, fs::canonical(files.Path()));
    Crawl();
    EXPECT_EQ(progress.files_read, 1u);
}

TEST_F(Crawls, NeverEnterWhatTheSystemOnlyShowsAsFiles) {
    EXPECT_FALSE(IsOnOwnDisk("/proc"));
    EXPECT_FALSE(IsOnOwnDisk("/sys"));
    EXPECT_TRUE(IsOnOwnDisk(files.Path()));
}

TEST_F(Crawls, ReadNoFileAgainThatHasNotChanged) {
    files.Add("a.ttf", NamedFace{"Foo"});
    files.Write("bad.ttf", std::string(100, 'x'));
    Crawl();
    EXPECT_EQ(progress.files_read, 2u);
    const uint64_t changes = progress.changes;
    Crawl();
    EXPECT_EQ(progress.files_read, 2u);
    EXPECT_EQ(progress.changes, changes);
    Crawl(true);
    EXPECT_EQ(progress.files_read, 4u);
    EXPECT_THAT(OfFamily("Foo"), ElementsAre("a.ttf"));
}

TEST_F(Crawls, LetGoOfWhatWentWhileNobodyLooked) {
    files.Add("a.ttf", NamedFace{"Foo"});
    files.Add("x/b.ttf", NamedFace{"Foo"});
    files.Add("x/y/c.ttf", NamedFace{"Foo"});
    files.Add("z/d.ttf", NamedFace{"Foo"});
    Crawl();
    ASSERT_EQ(OfFamily("Foo").size(), 4u);
    fs::remove(files.File("a.ttf"));
    fs::remove_all(files.File("x"));
    files.Add("z/d.ttf", NamedFace{"Other name"});
    Crawl();
    EXPECT_THAT(OfFamily("Foo"), IsEmpty());
    EXPECT_THAT(OfFamily("Other name"), ElementsAre("z/d.ttf"));
    EXPECT_THAT(index.Folders(), ElementsAre(files.File("z")));
}

TEST_F(Crawls, FollowChangesInFoldersOfFonts) {
    files.Add("x/y/z/a.ttf", NamedFace{"Foo"});
    Crawl();
    files.Add("x/y/z/b.ttf", NamedFace{"Bar"});
    ASSERT_TRUE(FollowUntil([&] { return !OfFamily("Bar").empty(); }));
    fs::rename(files.File("x/y/z/b.ttf"), files.File("x/y/z/c.ttf"));
    ASSERT_TRUE(FollowUntil([&] { return OfFamily("Bar") == std::vector<std::string>{"x/y/z/c.ttf"}; }));
    fs::remove(files.File("x/y/z/a.ttf"));
    ASSERT_TRUE(FollowUntil([&] { return OfFamily("Foo").empty(); }));
    fs::create_directories(files.File("x/y/z/new"));
    files.Add("x/y/z/new/er/d.ttf", NamedFace{"Baz"});
    ASSERT_TRUE(FollowUntil([&] { return !OfFamily("Baz").empty(); }));
    fs::rename(files.File("x/y/z/new"), files.File("x/y/z/newer"));
    ASSERT_TRUE(
        FollowUntil([&] { return OfFamily("Baz") == std::vector<std::string>{"x/y/z/newer/er/d.ttf"}; }));
    fs::remove_all(files.File("x/y"));
    ASSERT_TRUE(FollowUntil([&] { return index.Folders().empty(); }));
}

TEST_F(Crawls, SeeTheFirstFontOfAFolderRightBelowARoot) {
    files.MakeFolder("Downloads");
    Crawl();
    files.Add("Downloads/a.ttf", NamedFace{"Foo"});
    ASSERT_TRUE(FollowUntil([&] { return !OfFamily("Foo").empty(); }));
}

TEST_F(Crawls, TakeABadFontForNothingAndGoOn) {
    const Bytes whole = MakeFont({"Foo"});
    for (size_t length = 1; length < whole.size(); length += 7)
        files.Write("bad" + std::to_string(length) + ".ttf",
                    Bytes(whole.begin(), whole.begin() + static_cast<long>(length)));
    files.Write("empty.ttf", "");
    fs::create_directory(files.File("folder.ttf"));
    ASSERT_EQ(::mkfifo(files.File("pipe.ttf").c_str(), 0600), 0);
    files.Add("good.ttf", NamedFace{"Good"});
    Crawl();
    EXPECT_THAT(OfFamily("Good"), ElementsAre("good.ttf"));
}

TEST_F(Crawls, LetAFileBeOfWhichTheCrawlerDiedTwice) {
    files.Add("deadly.ttf", NamedFace{"Deadly"});
    files.Add("good.ttf", NamedFace{"Good"});
    const auto die = [&](const char *file) {
        files.File(file).copy(progress.reading.data(), progress.reading.size());
        RiskyReading::LearnFromDeath(progress);
    };
    die("deadly.ttf");
    Crawl(true); // once may be chance
    EXPECT_THAT(OfFamily("Deadly"), ElementsAre("deadly.ttf"));
    die("deadly.ttf");
    Crawl(true);
    EXPECT_THAT(OfFamily("Deadly"), IsEmpty());
    EXPECT_THAT(OfFamily("Good"), ElementsAre("good.ttf"));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("deadly.ttf is let be")));
}

// A process of its own dies of it, and what comes after it knows of which file.
TEST_F(Crawls, EndAReadingThatTakesTooMuchOfTheProcessor) {
    const SharedProgress shared;
    const pid_t reader = ::fork();
    if (reader == 0) {
        const RiskyReading reading(*shared, "/endless.ttf", 1);
        for (std::atomic<int> turns = 0;;) ++turns;
    }
    int status = 0;
    ASSERT_EQ(::waitpid(reader, &status, 0), reader);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPROF) << status;
    RiskyReading::LearnFromDeath(*shared);
    EXPECT_STREQ(shared->suspect.data(), "/endless.ttf");
    EXPECT_EQ(shared->deaths, 1u);
    { const RiskyReading harmless(*shared, "/good.ttf"); }
    RiskyReading::LearnFromDeath(*shared);
    EXPECT_STREQ(shared->suspect.data(), "/endless.ttf");
}

// What this thread has had read from files.
uint64_t BytesRead() {
    std::ifstream counters("/proc/thread-self/io");
    std::string name;
    uint64_t bytes = 0;
    counters >> name >> bytes;
    return name == "rchar:" ? bytes : 0;
}

TEST_F(Crawls, ReadOfAFontNoMoreThanItsNamesNeed) {
    const size_t outlines = size_t{8} << 20;
    const std::string path = files.Write("big.ttf", FontBuilder()
                                                        .Names(PlainNames("Foo", "Bold", "Foo-Bold"))
                                                        .Table("glyf", Bytes(outlines, uint8_t{0}))
                                                        .Table("GSUB", Bytes(outlines, uint8_t{0}))
                                                        .Build());
    struct stat status;
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    const uint64_t none = BytesRead(), reading_counters = BytesRead() - none;
    const uint64_t before = BytesRead();
    const IndexedFile file = ReadFontNames(path, TFileIdentity::Of(status));
    const uint64_t bytes = BytesRead() - before - reading_counters;
    EXPECT_EQ(file.faces, 1u);
    EXPECT_THAT(file.names, Contains(IndexedName{NameAttribute::kPostScript, "Foo-Bold"}));
    EXPECT_GT(bytes, 100u); // they are counted
    EXPECT_LT(bytes, 16'384u);
}

} // namespace
} // namespace vellum::test
