// SPDX-License-Identifier: MIT
// What a thread's callback is told of the lookups that the thread makes.
#include "query_registers.hpp"

#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LookupTraces : public QueryRegisters {
protected:
    ~LookupTraces() override { VLSetLookupTraceCallback(nullptr, nullptr); }

    void Listen() {
        VLSetLookupTraceCallback(
            [](const ValDictionary *lookup, void *context) {
                static_cast<LookupTraces *>(context)->lookups.push_back(Retain(lookup));
            },
            this);
    }

    static const void *At(const ValDictionary *dictionary, const char *key) {
        return ValDictionaryGetValue(dictionary, String(key).Get());
    }
    const ValDictionary *Last() const { return lookups.back().Get(); }

    // The stages of the last lookup that have one name, or all.
    std::vector<const ValDictionary *> Stages(const char *name = nullptr) const {
        const auto *stages = As<ValArray>(At(Last(), "stages"));
        std::vector<const ValDictionary *> found;
        for (size_t i = 0; i < ValArrayGetCount(stages); ++i) {
            const auto *stage = As<ValDictionary>(ValArrayGetValue(stages, i));
            if (!name || TextOf(At(stage, "stage")) == name) found.push_back(stage);
        }
        return found;
    }
    std::vector<std::string> StageNames() const {
        std::vector<std::string> names;
        for (const ValDictionary *stage : Stages()) names.push_back(TextOf(At(stage, "stage")));
        return names;
    }
    static int64_t CountAt(const ValDictionary *stage) {
        return ValNumberGetSInt64(As<ValNumber>(At(stage, "fonts")));
    }

    std::vector<Ref<const ValDictionary>> lookups;
};

TEST_F(LookupTraces, TellWhatWasAskedAndAnswered) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    Listen();
    EXPECT_EQ(Named("A"), "A-Regular");
    ASSERT_EQ(lookups.size(), 1U);
    EXPECT_EQ(TextOf(At(Last(), "question")), "fontWithName");
    EXPECT_EQ(TextOf(At(Last(), "asked")), "A");
    EXPECT_TRUE(ValEqual(At(Last(), "answer"), url.Get()));
}

TEST_F(LookupTraces, TellOfEveryIndexWithItsCount) {
    Add("a.ttf", MakeFont({"A"}));
    Listen();
    EXPECT_EQ(Named("A Regular", kVLScopeProcess), "A-Regular");
    EXPECT_THAT(StageNames(), ElementsAre("register", "index", "index"));
    EXPECT_EQ(At(Stages("index")[0], "property"), kVLFontPropertyName);
    EXPECT_EQ(CountAt(Stages("index")[0]), 0);
    EXPECT_EQ(At(Stages("index")[1], "property"), kVLFontPropertyFullName);
    EXPECT_EQ(CountAt(Stages("index")[1]), 1);
}

TEST_F(LookupTraces, TellByWhichPropertyAFontWasDropped) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    Listen();
    const auto missing = Characters('B', 'B');
    EXPECT_EQ(Find({{kVLFontPropertyCharacterSet, missing}}, kVLScopeProcess), "(null)");
    EXPECT_THAT(StageNames(), ElementsAre("register", "scan", "dropped"));
    EXPECT_TRUE(ValEqual(At(Stages("dropped")[0], "font"), url.Get()));
    EXPECT_EQ(At(Stages("dropped")[0], "property"), kVLFontPropertyCharacterSet);
    EXPECT_TRUE(ValEqual(At(Stages("dropped")[0], "requested"), missing.Get()));
}

TEST_F(LookupTraces, TellWhatPutOneFontBeforeAnother) {
    Add("b.ttf", MakeFont({"B"}));
    Add("a.ttf", MakeFont({"A"}));
    Add("c.ttf", MakeFont({"B", "Regular", "B-Other"}));
    Listen();
    EXPECT_THAT(FindAll({}, kVLScopeProcess), ElementsAre("A-Regular", "B-Regular", "B-Other"));
    const auto orders = Stages("order");
    ASSERT_EQ(orders.size(), 2U);
    EXPECT_EQ(At(orders[0], "decidedBy"), kVLFontPropertyFamilyName);
    EXPECT_EQ(At(orders[1], "decidedBy"), nullptr); // as they were registered
}

TEST_F(LookupTraces, TellThatACharacterIsRemembered) {
    Listen();
    EXPECT_EQ(Drawing(0x10FFFD), "(null)");
    EXPECT_THAT(StageNames(), ElementsAre("register"));
    EXPECT_EQ(Drawing(0x10FFFD), "(null)");
    EXPECT_THAT(StageNames(), ElementsAre("remembered"));
}

TEST_F(LookupTraces, TellThatFontsMayBeActivated) {
    Listen();
    EXPECT_FALSE(Adopt(VLCopyFontWithName(String("Nobody").Get(), kVLScopeProcess, 0)));
    ASSERT_EQ(Stages("activation").size(), 1U);
    EXPECT_EQ(TextOf(At(Stages("activation")[0], "search")),
              "com_orrery_fount_name_postscript == \"Nobody\"");
    ASSERT_EQ(Stages("activated").size(), 1U);
    EXPECT_EQ(TextOf(At(Stages("activated")[0], "outcome")), "not allowed"); // a test is no application
    EXPECT_EQ(Named("Nobody", kVLScopeProcess), "(null)");
    EXPECT_THAT(Stages("activation"), IsEmpty());
}

TEST_F(LookupTraces, AreOfTheThreadThatAsked) {
    Add("a.ttf", MakeFont({"A"}));
    Listen();
    std::thread([] { Named("A"); }).join();
    EXPECT_THAT(lookups, IsEmpty());
}

TEST_F(LookupTraces, EndWhenTheCallbackIsTakenAway) {
    Listen();
    VLSetLookupTraceCallback(nullptr, nullptr);
    Named("A");
    EXPECT_THAT(lookups, IsEmpty());
}

TEST_F(LookupTraces, LeaveOutWhatTheCallbackAsks) {
    Add("a.ttf", MakeFont({"A"}));
    static int sCalls;
    sCalls = 0;
    VLSetLookupTraceCallback(
        [](const ValDictionary *, void *) {
            ++sCalls;
            EXPECT_EQ(Named("A"), "A-Regular");
        },
        nullptr);
    Named("A");
    EXPECT_EQ(sCalls, 1);
    Named("A");
    EXPECT_EQ(sCalls, 2);
}

TEST_F(LookupTraces, MayBeEndedByTheCallback) {
    static int sCalls;
    sCalls = 0;
    VLSetLookupTraceCallback(
        [](const ValDictionary *, void *) {
            ++sCalls;
            VLSetLookupTraceCallback(nullptr, nullptr);
        },
        nullptr);
    Named("A");
    Named("A");
    EXPECT_EQ(sCalls, 1);
}

TEST_F(LookupTraces, LeaveOutWhatAChangeLooksFor) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"})), own = folder.Add("b.ttf", MakeFont({"B"}));
    Listen();
    for (const VLScope scope : {VLScope{kVLScopeProcess}, VLScope{kVLScopeUser}, VLScope{kVLScopeAll}}) {
        VLRegisterFont(own.Get(), 0, scope);
        VLUnregisterFont(own.Get(), 0, scope);
        VLUnregisterFont(shared.Get(), 0, scope);
    }
    EXPECT_THAT(lookups, IsEmpty());
}

TEST_F(LookupTraces, ChangeNoAnswer) {
    for (const char *name : {"B", "A", "C"}) Add(std::string(name) + ".ttf", MakeFont({name}));
    const auto untraced = FindAll({});
    const std::string drawing = Drawing('A');
    Listen();
    EXPECT_EQ(FindAll({}), untraced);
    EXPECT_EQ(Drawing('A'), drawing);
}

} // namespace
} // namespace vellum::test
