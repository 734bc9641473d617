// SPDX-License-Identifier: MIT
// Changes of the register that processes share: what they answer, what comes of them, who hears of them.
#include "ipc/notify/distributed_center.hpp"
#include "running_server.hpp"
#include "support/heard_changes.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

class SharedRegisterChanges : public ::testing::Test {
protected:
    static std::string TextOfURL(const Ref<const ValURL> &url) {
        return TextOf(ValURLGetString(url.Get()));
    }
    static bool IsFound(const char *name) {
        return bool(Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeUser, kNoActivation)));
    }
    Ref<const ValURL> AddSystemFont(const std::string &name, const char *family) {
        const std::string path = RunningServer::SystemFolder() + "/" + name;
        server.System().Write(path, MakeFont({family}));
        return FileURL(server.System().Path() + "//" + path); // as the system's folders are named
    }
    Ref<const ValURL> Register(const std::string &name, const char *family) {
        auto url = folder.Add(name, MakeFont({family}));
        EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeUser));
        return url;
    }

    // What is heard from now on, up to a change that lists exactly these fonts.
    static std::vector<HeardChange> HearUpTo(HeardChanges &heard, const HeardChange &last) {
        std::vector<HeardChange> changes;
        while (changes.empty() || !(changes.back() == last)) {
            pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
            if (::poll(&ready, 1, -1) != 1) continue;
            std::ranges::copy(heard.Next(), std::back_inserter(changes));
        }
        return changes;
    }

    RunningServer server;
    FontFolder folder;
};

// A font of a watched folder is there as long as its file: it can't be unregistered.
TEST_F(SharedRegisterChanges, ThatFailForOneFileAreMadeAndToldForTheOther) {
    const auto watched = AddSystemFont("s.ttf", "S");
    ASSERT_TRUE(server.Start());
    const auto own = Register("a.ttf", "A");
    HeardChanges heard;
    const ValArray *errors = nullptr;
    EXPECT_FALSE(VLUnregisterFonts(Array({watched, own}).Get(), 0, kVLScopeUser, &errors));
    EXPECT_THAT(Texts(Adopt(errors)), ElementsAre(TextOfURL(watched)));
    EXPECT_TRUE(IsFound("S-Regular"));
    EXPECT_FALSE(IsFound("A-Regular"));
    EXPECT_THAT(HearUpTo(heard, Removed({TextOfURL(own)})).back(), Removed({TextOfURL(own)}));
}

TEST_F(SharedRegisterChanges, OfAFolderAreMadeForTheUserAlone) {
    ASSERT_TRUE(server.Start());
    folder.Add("deep/a.ttf", MakeFont({"A"}));
    const auto directory =
        Adopt(ValURLCreateWithFileSystemPath(String(folder.Path().c_str()).Get(), true, nullptr));
    for (const VLScope scope : std::initializer_list<VLScope>{kVLScopeProcess, kVLScopeSession,
                                                              kVLScopeSession | kVLScopeUser, kVLScopeAll})
        EXPECT_FALSE(VLRegisterFontDirectory(directory.Get(), 0, 0, scope));
    EXPECT_FALSE(IsFound("A-Regular"));
    EXPECT_TRUE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("A-Regular"));
    EXPECT_FALSE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser)) << "twice";
    EXPECT_FALSE(VLUnregisterFontDirectory(directory.Get(), 0, kVLScopeSession));
    EXPECT_TRUE(VLUnregisterFontDirectory(directory.Get(), 0, kVLScopeUser));
    EXPECT_FALSE(IsFound("A-Regular"));
    EXPECT_FALSE(VLUnregisterFontDirectory(directory.Get(), 0, kVLScopeUser)) << "twice";
}

TEST_F(SharedRegisterChanges, AreToldBetweenProcessesAndThoseOfAProcessAreNot) {
    ASSERT_TRUE(server.Start());
    std::vector<std::string> between;
    DistributedCenter::Shared().AddObserver(
        &between,
        [](void *, void *observer, const ValString *, const void *, const ValDictionary *info) {
            if (info)
                static_cast<std::vector<std::string> *>(observer)->push_back(ReadChange(info).fonts.at(0));
        },
        kVLFontsChangedDistributedNotification);
    HeardChanges heard; // after that one, who is told first
    const auto own = folder.Add("a.ttf", MakeFont({"A"}));
    ASSERT_TRUE(VLRegisterFont(own.Get(), 0, kVLScopeProcess));
    const auto shared = Register("b.ttf", "B");
    HearUpTo(heard, Added({TextOfURL(shared)}));
    DistributedCenter::Shared().RemoveObserver(&between);
    EXPECT_THAT(between, ElementsAre(TextOfURL(shared)));
}

} // namespace
} // namespace vellum::test
