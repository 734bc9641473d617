// SPDX-License-Identifier: MIT
// What is registered for the session is gone when the machine has started anew, wherever it was kept.
#include "running_server.hpp"
#include "server/session_boot.hpp"
#include "support/captured_log.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

class SessionBoot : public ::testing::Test {
protected:
    SessionBoot() {
        server.System().Write(RunningServer::SystemFolder() + "/m.ttf", MakeFont({"Machine"}));
        EXPECT_TRUE(server.Start());
        EXPECT_TRUE(VLRegisterFont(folder.Add("s.ttf", MakeFont({"Session"})).Get(), 0, kVLScopeSession));
        EXPECT_TRUE(VLRegisterFont(folder.Add("u.ttf", MakeFont({"User"})).Get(), 0, kVLScopeUser));
        server.Stop();
    }

    // Has the session's database be one that was made in another run of the machine.
    void MakeOld() const {
        sqlite3 *database = nullptr;
        ASSERT_EQ(sqlite3_open(Path().c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, "UPDATE boot SET id = 'former'", nullptr, nullptr, nullptr),
                  SQLITE_OK);
        EXPECT_EQ(sqlite3_changes(database), 1);
        sqlite3_close(database);
    }

    std::string Path() const { return server.Home().File("run/vellum/com.orrery.FontServer.session.db"); }

    static std::vector<std::string> Families() {
        return Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeUser)));
    }

    RunningServer server;
    FontFolder folder;
    CapturedLog log; // of the server that has gone
};

TEST_F(SessionBoot, ThatIsTheSameKeepsWhatIsRegistered) {
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Families(), ElementsAre("Machine", "Session", "User"));
}

TEST_F(SessionBoot, ThatIsAnotherForgetsWhatWasRegisteredForTheSession) {
    MakeOld();
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Families(), ElementsAre("Machine", "User"));
    server.Stop();
    ASSERT_TRUE(server.Start()); // which was made in this one
    ASSERT_TRUE(VLRegisterFont(folder.Add("t.ttf", MakeFont({"Third"})).Get(), 0, kVLScopeSession));
    server.Stop();
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Families(), ElementsAre("Machine", "Third", "User"));
}

TEST_F(SessionBoot, LeavesAFileAloneThatIsNoDatabase) {
    std::ofstream(Path()) << "no database at all, and longer than the header of one: "
                          << std::string(200, 'x');
    const auto size = std::filesystem::file_size(Path());
    ForgetFormerBoot(Path());
    EXPECT_EQ(std::filesystem::file_size(Path()), size);
}

} // namespace
} // namespace vellum::test
