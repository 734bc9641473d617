// SPDX-License-Identifier: MIT
// An index whose writers are killed at any moment is, once they have been begun again, what one made of
// nothing is.
#include "beacon/crawler.hpp"
#include "beacon/name_index.hpp"
#include "ipc/client/font_index.hpp"
#include "running_beacon.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

size_t NumberIn(const char *variable, size_t otherwise) {
    const char *text = std::getenv(variable);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

// Everything in a database: files with what is known of them, and their names.
std::set<std::string> ContentOf(const std::string &path) {
    sqlite3 *database = nullptr;
    std::set<std::string> content;
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
    {
        Statement rows(
            database,
            "SELECT CAST(folders.path || '/' || files.name || ' ' || inode || ' ' || size || ' ' || seconds"
            " || ' ' || nanoseconds || ' ' || type || ' ' || faces || ' ' || names.attribute || ' ' ||"
            " names.name AS BLOB) FROM files JOIN folders ON folders.number = folder"
            " LEFT JOIN names ON file = files.number"
            " UNION ALL SELECT 'a name of no file' FROM names WHERE file NOT IN"
            " (SELECT number FROM files)"
            " UNION ALL SELECT 'a folder without files' FROM folders WHERE number NOT IN"
            " (SELECT folder FROM files)");
        while (rows.Step()) content.insert(rows.Bytes(0));
    }
    sqlite3_close_v2(database);
    return content;
}

class IndexCrashes : public ::testing::Test {
protected:
    IndexCrashes() {
        for (size_t i = 0; i < count; ++i) Write(i);
    }

    std::string NameOf(size_t file) const {
        return std::to_string(file / 97) + "/" + std::to_string(file) + ".ttf";
    }
    void Write(size_t file) {
        beacon.Files().Add(NameOf(file), NamedFace{"Family " + std::to_string(random() % 1000), "Regular"});
    }

    void ChangeSome() {
        for (int i = 0; i < 20; ++i) {
            const size_t file = random() % count;
            if (random() % 2)
                Write(file);
            else
                fs::remove(beacon.Files().File(NameOf(file)));
        }
    }

    // A time that nobody knows, up to so many milliseconds.
    void LetWork(unsigned most) { ::poll(nullptr, 0, static_cast<int>(random() % most)); }

    std::set<std::string> OfFreshCrawl() const {
        const TempDir folder;
        CrawlProgress progress = {};
        {
            NameIndex index(folder.File("fresh.db"));
            Crawler crawler(index, progress);
            crawler.Begin(FindCrawlRoots(), false);
            while (crawler.HasWork()) crawler.Work();
        }
        return ContentOf(folder.File("fresh.db"));
    }

    RunningBeacon beacon;
    const size_t count = NumberIn("VELLUM_INDEX_FILES", 2000);
    std::mt19937 random{std::random_device()()};
};

TEST_F(IndexCrashes, LeaveAnIndexThatBecomesWhatAFreshOneIs) {
    const size_t kills = NumberIn("VELLUM_INDEX_KILLS", 20);
    for (size_t i = 0; i < kills; ++i) {
        ASSERT_TRUE(beacon.Start());
        if (i % 3 == 2) RebuildFontIndex();
        LetWork(150);
        ChangeSome();
        if (i % 2) { // the crawler alone, and what comes after it
            if (const auto crawler = static_cast<pid_t>(RunningBeacon::Number("crawler")))
                ::kill(crawler, SIGKILL);
            LetWork(100);
        }
        beacon.End(SIGKILL);
        if (i % 5 == 4) ChangeSome(); // while nobody looks
    }
    ASSERT_TRUE(beacon.Start());
    beacon.WaitUntilIdle();
    EXPECT_EQ(beacon.End(SIGTERM), 0);
    EXPECT_FALSE(fs::exists(beacon.Database() + ".broken"));
    const auto kept = ContentOf(beacon.Database()), fresh = OfFreshCrawl();
    EXPECT_GT(fresh.size(), count);
    for (const std::string &row : kept) EXPECT_TRUE(fresh.contains(row)) << "too much: " << row;
    for (const std::string &row : fresh) EXPECT_TRUE(kept.contains(row)) << "missing: " << row;
}

} // namespace
} // namespace vellum::test
