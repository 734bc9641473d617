// SPDX-License-Identifier: MIT
// What is posted by the exported functions that change a register: how often, in which order, on which
// thread, and with which fonts.
#include "frame/registry/generation_seed.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "ipc/notify/distributed_center.hpp"
#include "platform/notify/notification_center.hpp"
#include "query_registers.hpp"
#include "support/captured_log.hpp"
#include "support/heard_changes.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class Notifications : public QueryRegisters {
protected:
    std::string TextOfURL(const Ref<const ValURL> &url) { return TextOf(ValURLGetString(url.Get())); }

    // A process that asks the font server, which does not run, observes the changes of others.
    void UseServer() {
        ::setenv("VELLUM_IGNORE_SERVER", "0", 1);
        ::setenv("XDG_RUNTIME_DIR", system.Path().c_str(), 1); // where nobody listens
        CapturedLog log;                                       // that nobody is there
        VLGetScopeForFont(folder.URLOf("any.ttf").Get());
    }

    HeardChanges heard;
};

TEST_F(Notifications, ARegisteredFontIsAnnouncedOnceAtTheNextTurnOfTheMainLoop) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    EXPECT_THAT(heard.SoFar(), IsEmpty());
    EXPECT_THAT(heard.Next(), ElementsAre(Added({TextOfURL(url)})));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

TEST_F(Notifications, ChangesAreAnnouncedInTheirOrder) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({url});
    VLDisableFonts(urls.Get(), 0, kVLScopeProcess);
    VLEnableFonts(urls.Get(), 0, kVLScopeProcess);
    VLUnregisterFonts(urls.Get(), 0, kVLScopeProcess, nullptr);
    const std::vector<std::string> fonts = {TextOfURL(url)};
    EXPECT_THAT(heard.Next(), ElementsAre(Added(fonts), Removed(fonts), Added(fonts), Removed(fonts)));
}

TEST_F(Notifications, EachFaceOfAFileIsAnnounced) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto changes = heard.Next();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_THAT(changes[0].fonts, UnorderedElementsAre(TextOfURL(url) + "#postscript-name=A-Regular",
                                                       TextOfURL(url) + "#postscript-name=B-Regular"));
}

TEST_F(Notifications, NothingIsAnnouncedWithTheSilentBit) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({url});
    const VLScope scope = kVLScopeProcess | kVLScopeSilent;
    EXPECT_TRUE(VLRegisterFonts(urls.Get(), 0, scope, nullptr));
    VLDisableFonts(urls.Get(), 0, scope);
    VLEnableFonts(urls.Get(), 0, scope);
    VLGetFunctions()->disable_font(url.Get(), 0, scope);
    VLGetFunctions()->enable_font(url.Get(), 0, scope);
    EXPECT_TRUE(VLUnregisterFonts(urls.Get(), 0, scope, nullptr));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

TEST_F(Notifications, NothingIsAnnouncedWhenNothingChanged) {
    const auto broken = folder.Add("broken.ttf", Bytes{1, 2, 3});
    const auto urls = Array({broken});
    EXPECT_FALSE(VLRegisterFonts(urls.Get(), 0, kVLScopeProcess, nullptr));
    VLDisableFonts(urls.Get(), 0, kVLScopeProcess);
    VLEnableFonts(urls.Get(), 0, kVLScopeProcess);
    EXPECT_TRUE(VLUnregisterFonts(urls.Get(), 0, kVLScopeProcess, nullptr));
    EXPECT_FALSE(VLRegisterFonts(urls.Get(), 0, 0, nullptr));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

// That a file which is there already fails, and is announced with those that are new, is deliberate.
TEST_F(Notifications, AFileThatWasThereIsAnnouncedWithThoseThatAreNew) {
    const auto old = Add("a.ttf", MakeFont({"A"}));
    heard.Next();
    const auto fresh = folder.Add("b.ttf", MakeFont({"B"}));
    EXPECT_FALSE(VLRegisterFonts(Array({old, fresh}).Get(), 0, kVLScopeProcess, nullptr));
    EXPECT_THAT(heard.Next(), ElementsAre(Added({TextOfURL(old), TextOfURL(fresh)})));
}

TEST_F(Notifications, ADisabledFontThatIsUnregisteredIsNotAnnounced) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    heard.Next();
    EXPECT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

TEST_F(Notifications, EnablingAnnouncesTheURLsThatWereGivenNotTheFaces) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    heard.Next();
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    EXPECT_THAT(heard.Next(), ElementsAre(Removed({TextOfURL(url)})));
    VLGetFunctions()->enable_font(url.Get(), 0, kVLScopeProcess);
    EXPECT_THAT(heard.Next(), ElementsAre(Added({TextOfURL(url)})));
}

TEST_F(Notifications, FontsInMemoryAreNotAnnounced) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

TEST_F(Notifications, AreDeliveredOnTheThreadOfTheMainLoopWhateverThreadMadeTheChange) {
    std::thread([this] { Add("a.ttf", MakeFont({"A"})); }).join();
    const auto changes = heard.Next();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].thread, std::this_thread::get_id());
}

// ---- the shared register ----

TEST_F(Notifications, ASharedChangeGoesToEveryProcessAndComesBackThroughTheProcesssObserver) {
    UseServer();
    const auto shared = folder.Add("a.ttf", MakeFont({"A"}));
    std::vector<std::string> between;
    DistributedCenter::Shared().AddObserver(
        &between,
        [](void *, void *observer, const ValString *name, const void *, const ValDictionary *info) {
            static_cast<std::vector<std::string> *>(observer)->push_back(TextOf(name) + " " +
                                                                         ReadChange(info).fonts.at(0));
        },
        kVLFontsChangedDistributedNotification);
    PostNotification(kVLScopeUser, kAvailableFontURLsRemovedKey, Array({shared}).Get());
    EXPECT_THAT(between,
                ElementsAre("com_orrery_Laydown_FontManagerChangedNotification " + TextOfURL(shared)));
    EXPECT_THAT(heard.SoFar(), IsEmpty());
    EXPECT_THAT(heard.Next(), ElementsAre(Removed({TextOfURL(shared)})));
    DistributedCenter::Shared().RemoveObserver(&between);
}

TEST_F(Notifications, AChangeInAnotherProcessMovesTheGenerationBeforeItIsDelivered) {
    UseServer();
    const uint32_t before = TGenerationSeed::GetGeneration();
    const auto text = Adopt(ValArrayCreateMutable(0, &kValValueCallbacks));
    ValArrayAppend(text.Get(), String("file:///x.ttf").Get());
    const void *const keys[] = {kAvailableFontURLsAddedKey}, *const values[] = {text.Get()};
    const auto info = Adopt(ValDictionaryCreate(keys, values, 1));
    DistributedCenter::Shared().Post(kVLFontsChangedDistributedNotification, info.Get());
    EXPECT_EQ(TGenerationSeed::GetGeneration(), before + 1);
    EXPECT_THAT(heard.SoFar(), IsEmpty());
    EXPECT_THAT(heard.Next(), ElementsAre(Added({"file:///x.ttf"})));
}

TEST_F(Notifications, ASharedChangeStaysInTheProcessWhereTheServerIsIgnored) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    bool left = false;
    DistributedCenter::Shared().AddObserver(
        &left,
        [](void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            *static_cast<bool *>(observer) = true;
        },
        kVLFontsChangedDistributedNotification);
    VLDisableFonts(Array({shared}).Get(), 0, kVLScopeUser);
    EXPECT_THAT(heard.Next(), ElementsAre(Removed({TextOfURL(shared)})));
    EXPECT_FALSE(left);
    DistributedCenter::Shared().RemoveObserver(&left);
}

TEST_F(Notifications, OfBothRegistersTheProcesssIsAskedFirstByTheArrayForms) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    const auto own = Add("b.ttf", MakeFont({"B"}));
    heard.Next();
    VLDisableFonts(Array({shared, own}).Get(), 0, kVLScopeAll);
    EXPECT_THAT(heard.Next(), ElementsAre(Removed({TextOfURL(own), TextOfURL(shared)})));
}

// ---- the framework's callback ----

struct FrameworkCall {
    std::string name;
    bool has_nothing_else;
    HeardChange change;
};
std::vector<FrameworkCall> framework_calls;

void HearAsFramework(void *center, void *observer, const ValString *name, const void *object,
                     const ValDictionary *user_info) {
    framework_calls.push_back({TextOf(name), !center && !observer && !object, ReadChange(user_info)});
}

TEST_F(Notifications, TheFrameworkHearsOfAChangeBeforeTheObservers) {
    struct Order {
        static void Second(void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            *static_cast<size_t *>(observer) = framework_calls.size();
        }
    };
    size_t framework_calls_before = 99;
    VLAddFontsChangedObserver(&framework_calls_before, Order::Second);
    VLSetFrameworkFontChangedCallback(0, HearAsFramework);
    const auto url = Add("a.ttf", MakeFont({"A"}));
    EXPECT_THAT(framework_calls, IsEmpty());
    TurnMainLoop();
    ASSERT_EQ(framework_calls.size(), 1u);
    EXPECT_EQ(framework_calls[0].name, "LDFontManagerFontChangedNotification");
    EXPECT_TRUE(framework_calls[0].has_nothing_else);
    EXPECT_EQ(framework_calls[0].change, Added({TextOfURL(url)}));
    EXPECT_EQ(framework_calls_before, 1u);
    VLRemoveFontsChangedObserver(&framework_calls_before);
}

TEST_F(Notifications, ASecondFrameworkCallbackIsIgnored) {
    VLSetFrameworkFontChangedCallback(0, HearAsFramework);
    VLSetFrameworkFontChangedCallback(
        0, [](void *, void *, const ValString *, const void *, const ValDictionary *) { FAIL(); });
    Add("a.ttf", MakeFont({"A"}));
    TurnMainLoop();
    EXPECT_EQ(framework_calls.size(), 1u);
}

TEST_F(Notifications, AFrameworkCallbackWithOptionsIsNotInstalled) {
    VLSetFrameworkFontChangedCallback(1, HearAsFramework);
    Add("a.ttf", MakeFont({"A"}));
    TurnMainLoop();
    EXPECT_THAT(framework_calls, IsEmpty());
}

// ---- observers ----

TEST_F(Notifications, AnObserverThatIsNoFunctionIsRefused) {
    EXPECT_FALSE(VLAddFontsChangedObserver(this, nullptr));
}

TEST_F(Notifications, AnObserverThatWasRemovedHearsNothing) {
    bool called = false;
    const auto hear = [](void *, void *observer, const ValString *, const void *, const ValDictionary *) {
        *static_cast<bool *>(observer) = true;
    };
    EXPECT_TRUE(VLAddFontsChangedObserver(&called, hear));
    Add("a.ttf", MakeFont({"A"}));
    VLRemoveFontsChangedObserver(&called);
    TurnMainLoop();
    EXPECT_FALSE(called);
}

// What an observer does is announced in its turn, never inside of it.
TEST_F(Notifications, AnObserverMayChangeTheRegister) {
    struct Chain {
        const FontFolder *folder;
        int depth = 0, calls = 0;
        static void Hear(void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            auto *self = static_cast<Chain *>(observer);
            EXPECT_EQ(self->depth++, 0);
            const std::string name = "F" + std::to_string(++self->calls);
            if (self->calls < 3)
                VLRegisterFont(self->folder->Add(name + ".ttf", MakeFont({name})).Get(), 0,
                               kVLScopeProcess);
            --self->depth;
        }
    } chain{&folder};
    VLAddFontsChangedObserver(&chain, Chain::Hear);
    Add("a.ttf", MakeFont({"A"}));
    TurnMainLoop();
    EXPECT_EQ(chain.calls, 3);
    VLRemoveFontsChangedObserver(&chain);
}

TEST_F(Notifications, AForkedProcessHearsOfItsOwnChangesAlone) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    const pid_t child = ::fork();
    if (child == 0) {
        VLDeliverNotifications();
        if (!heard.SoFar().empty()) ::_exit(1);
        const auto other = Add("b.ttf", MakeFont({"B"}));
        VLDeliverNotifications();
        ::_exit(heard.SoFar() == std::vector{Added({TextOfURL(other)})} ? 0 : 2);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
    VLDeliverNotifications();
    EXPECT_THAT(heard.SoFar(), ElementsAre(Added({TextOfURL(url)})));
}

TEST_F(Notifications, AProgramWithoutAMainLoopHearsTheLastStateOfEachFontWhenItLooks) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({url});
    for (int i = 0; i < 5000; ++i) {
        VLDisableFonts(urls.Get(), 0, kVLScopeProcess);
        VLEnableFonts(urls.Get(), 0, kVLScopeProcess);
    }
    VLDisableFonts(urls.Get(), 0, kVLScopeProcess);
    VLDeliverNotifications();
    const auto &changes = heard.SoFar();
    EXPECT_EQ(changes.size(), 4097u);
    EXPECT_EQ(changes.back(), Removed({TextOfURL(url)}));
}

} // namespace
} // namespace vellum::test
