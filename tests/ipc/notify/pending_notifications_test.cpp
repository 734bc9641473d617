// SPDX-License-Identifier: MIT
#include "ipc/notify/pending_notifications.hpp"
#include "support/heard_changes.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

Ref<const ValDictionary> Info(const ValString *key, const std::vector<std::string> &fonts) {
    const auto array = Adopt(ValArrayCreateMutable(0, &kValValueCallbacks));
    for (const std::string &font : fonts) ValArrayAppend(array.Get(), String(font).Get());
    const void *const keys[] = {key}, *const values[] = {array.Get()};
    return Adopt(ValDictionaryCreate(keys, values, 1));
}
Ref<const ValDictionary> AddedInfo(const std::vector<std::string> &fonts) {
    return Info(kAvailableFontURLsAddedKey, fonts);
}
Ref<const ValDictionary> RemovedInfo(const std::vector<std::string> &fonts) {
    return Info(kAvailableFontURLsRemovedKey, fonts);
}

class Pending : public ::testing::Test {
protected:
    // As the main loop does: it takes as often as it was asked to.
    std::vector<HeardChange> TakeAll() {
        std::vector<HeardChange> taken;
        for (; calls > 0; --calls)
            if (const auto info = pending.Take()) taken.push_back(ReadChange(info.Get()));
        return taken;
    }
    void Add(Ref<const ValDictionary> info) { calls += pending.Add(std::move(info)); }
    void Fill() {
        for (size_t i = 0; i < PendingNotifications::kMostKept; ++i) Add(AddedInfo({"first"}));
    }

    PendingNotifications pending;
    size_t calls = 0;
};

TEST_F(Pending, AreTakenInOrderOneByOne) {
    Add(AddedInfo({"a", "b"}));
    Add(RemovedInfo({"a"}));
    Add(AddedInfo({"a"}));
    EXPECT_EQ(calls, 3u);
    EXPECT_THAT(TakeAll(), ElementsAre(Added({"a", "b"}), Removed({"a"}), Added({"a"})));
    EXPECT_FALSE(pending.Take());
}

TEST_F(Pending, AreJoinedByFontWhenTooManyWait) {
    Fill();
    Add(AddedInfo({"a", "b"}));
    Add(RemovedInfo({"b", "c"}));
    Add(AddedInfo({"d", "a"}));
    Add(AddedInfo({"c"}));
    EXPECT_EQ(calls, PendingNotifications::kMostKept + 2);
    const auto taken = TakeAll();
    ASSERT_EQ(taken.size(), PendingNotifications::kMostKept + 2);
    EXPECT_EQ(taken[PendingNotifications::kMostKept - 1], Added({"first"}));
    EXPECT_EQ(taken[PendingNotifications::kMostKept], Removed({"b"}));
    EXPECT_EQ(taken[PendingNotifications::kMostKept + 1], Added({"a", "d", "c"}));
    EXPECT_FALSE(pending.Take());
}

TEST_F(Pending, AreKeptOneByOneAgainWhenWhatWasJoinedIsTaken) {
    Fill();
    Add(AddedInfo({"a"}));
    TakeAll();
    Add(AddedInfo({"b"}));
    Add(AddedInfo({"c"}));
    EXPECT_THAT(TakeAll(), ElementsAre(Added({"b"}), Added({"c"})));
}

TEST_F(Pending, NeverOvertakeWhatWasJoinedBefore) {
    Fill();
    Add(RemovedInfo({"a"}));
    for (size_t i = 0; i < 10; ++i, --calls) pending.Take();
    Add(AddedInfo({"a"})); // there is room again
    const auto taken = TakeAll();
    EXPECT_EQ(taken.back(), Added({"a"}));
    EXPECT_EQ(taken.size(), PendingNotifications::kMostKept - 10 + 1);
}

TEST_F(Pending, AreAllTakenWhenTheSecondHalfComesBetweenTheTwo) {
    Fill();
    Add(RemovedInfo({"a"}));
    Add(AddedInfo({"b"}));
    for (size_t i = 0; i < PendingNotifications::kMostKept; ++i, --calls) pending.Take();
    --calls;
    EXPECT_EQ(ReadChange(pending.Take().Get()), Removed({"a"}));
    Add(RemovedInfo({"c"}));
    EXPECT_THAT(TakeAll(), ElementsAre(Removed({"c"}), Added({"b"})));
    EXPECT_FALSE(pending.Take());
}

TEST_F(Pending, AreNoMoreThanThatFontsAreToBeAskedForAgainWhenTooManyFontsWait) {
    Fill();
    for (size_t i = 0; i <= PendingNotifications::kMostJoined; ++i) {
        const std::string font = "temporary " + std::to_string(i);
        Add(AddedInfo({font}));
        Add(RemovedInfo({font}));
    }
    Add(AddedInfo({"a"}));
    const auto taken = TakeAll();
    ASSERT_EQ(taken.size(), PendingNotifications::kMostKept + 1);
    EXPECT_EQ(taken.back(), Added({}));
    EXPECT_FALSE(pending.Take());
    Add(RemovedInfo({"a"}));
    EXPECT_THAT(TakeAll(), ElementsAre(Removed({"a"})));
}

TEST_F(Pending, TellOfAFontThatWentThoughItCameFirst) {
    Fill();
    Add(AddedInfo({"there before, and announced again"}));
    Add(RemovedInfo({"there before, and announced again"}));
    EXPECT_EQ(TakeAll().back(), Removed({"there before, and announced again"}));
}

TEST_F(Pending, AskAgainForCallsThatWereCancelled) {
    EXPECT_EQ(pending.Add(AddedInfo({"a"})), 1u);
    pending.CancelCalls(1);
    EXPECT_EQ(pending.Add(AddedInfo({"b"})), 2u);
}

} // namespace
} // namespace vellum::test
