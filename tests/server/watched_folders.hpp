// SPDX-License-Identifier: MIT
// A server, and what a program hears of the folders that it watches.
#pragma once

#include "running_server.hpp"
#include "support/heard_changes.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <vellum/vellum.h>

#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vellum::test {

class WatchedFoldersTest : public ::testing::Test {
protected:
    WatchedFoldersTest() { LookEvery(3'600'000); } // what is not told of is not found out some time later

    static void LookEvery(int milliseconds) {
        ::setenv("VELLUM_POLL_MILLISECONDS", std::to_string(milliseconds).c_str(), 1);
    }

    // From now on the program hears of changes.
    void Start() {
        ASSERT_TRUE(server.Start());
        heard.emplace();
    }

    static bool IsFound(const std::string &family) {
        constexpr VLActivationOptions kNone = kVLActivationNotFromProviders | kVLActivationNotFromSearch;
        const std::string name = family + "-Regular";
        return bool(Adopt(VLCopyFontWithName(String(name.c_str()).Get(), kVLScopeUser, kNone)));
    }

    // What is heard from now on, up to one change; its time limit ends a test that waits in vain. A change
    // is
    // "+" or "-" and the last two names in the path of the font.
    std::vector<std::string> HearUpTo(const std::string &last) {
        std::vector<std::string> changes;
        while (std::ranges::find(changes, last) == changes.end()) {
            pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
            if (::poll(&ready, 1, -1) != 1) continue;
            for (const HeardChange &change : heard->Next()) Append(change, changes);
        }
        return changes;
    }

    // What a program writes at its leisure, so that a font is there before its end.
    std::string WriteFont(const std::string &path, const std::string &family) const {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        const std::string made = scratch.Write("made.ttf", MakeFont({family}));
        std::filesystem::copy_file(made, path, std::filesystem::copy_options::overwrite_existing);
        return path;
    }

    static Ref<const ValURL> FolderURL(const std::string &path) {
        return Adopt(ValURLCreateWithFileSystemPath(String(path.c_str()).Get(), true, nullptr));
    }

    std::string User(const std::string &name) const { return server.UserFolder() + "/" + name; }

    RunningServer server;
    TempDir scratch, elsewhere;
    std::optional<HeardChanges> heard;

private:
    static void Append(const HeardChange &change, std::vector<std::string> &changes) {
        const std::string sign = change.key == Added({}).key ? "+" : "-";
        for (const std::string &font : change.fonts) {
            const std::filesystem::path path(font);
            changes.push_back(sign + path.parent_path().filename().string() + "/" +
                              path.filename().string());
        }
    }
};

} // namespace vellum::test
