// SPDX-License-Identifier: MIT
// What was acknowledged is there after the server was killed, whenever that was; what was not is there as a
// whole or not at all.
#include "ipc/client/stubs.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "platform/port/ports.hpp"
#include "running_server.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <vellum/vellum.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <random>
#include <thread>
#include <vector>

namespace vellum::test {
namespace {

// How often the server is killed; VELLUM_KILLS says otherwise.
size_t Kills() {
    const char *kills = std::getenv("VELLUM_KILLS");
    return kills ? std::strtoul(kills, nullptr, 10) : 60;
}

enum class State { kAbsent, kEnabled, kDisabled };

// A change of some fonts that are all in one state.
struct Change {
    std::vector<size_t> fonts;
    State from, to;
    VLScope scope;
};

class Crashes : public ::testing::Test {
protected:
    static constexpr size_t kFonts = 12;

    Crashes() {
        for (size_t i = 0; i < kFonts; ++i) {
            const std::string name = "F" + std::to_string(i);
            urls.push_back(folder.Add(name + ".ttf", MakeFont({name})));
        }
    }

    Change NextChange() {
        const State from = states[random() % kFonts];
        Change change = {{},
                         from,
                         State::kEnabled,
                         random() % 4 ? VLScope{kVLScopeUser} : VLScope{kVLScopeUser | kVLScopeDurable}};
        if (from == State::kEnabled) change.to = random() % 2 ? State::kAbsent : State::kDisabled;
        for (size_t i = 0; i < kFonts && change.fonts.size() < 3; ++i)
            if (states[i] == from) change.fonts.push_back(i);
        return change;
    }

    // True when it was acknowledged.
    bool Make(const Change &change) {
        const auto properties =
            Adopt(ValDictionaryCreate(nullptr, nullptr, 0)); // the server reads the files
        TValMutableDict registration;
        std::vector<Ref<const ValURL>> list;
        for (const size_t i : change.fonts) {
            registration.Set(urls[i].Get(), properties.Get());
            list.push_back(urls[i]);
        }
        BatchReply reply;
        const auto fonts = *Flattened(Array(list).Get());
        if (change.to == State::kAbsent) return !VLSendUnregisterFonts(port, fonts, change.scope, reply);
        if (change.to == State::kDisabled) return !VLSendDisableFonts(port, fonts, change.scope, reply);
        if (change.from == State::kDisabled) return !VLSendEnableFonts(port, fonts, change.scope, reply);
        return !VLSendRegisterFonts(port, *Flattened(registration.Get()), change.scope, 0, reply);
    }

    State Ask(size_t font) {
        const auto list = *Flattened(Array({urls[font]}).Get());
        ReplyMemory reply;
        EXPECT_EQ(VLSendCopyPropertyForFonts(port, list, TextOf(kVLFontPropertyEnabled), reply),
                  kMachSuccess);
        const auto values = Resurrected<ValDictionary>(reply.bytes);
        if (ValDictionaryGetCount(values.Get()) == 0) return State::kAbsent;
        const void *enabled = ValDictionaryGetValue(values.Get(), urls[font].Get());
        return ReadSInt32(enabled) ? State::kEnabled : State::kDisabled;
    }

    void Meet() {
        ASSERT_TRUE(server.Start());
        ASSERT_EQ(bootstrap_look_up("com.orrery.FontServer", port), kMachSuccess);
    }

    RunningServer server;
    FontFolder folder;
    std::vector<Ref<const ValURL>> urls;
    std::vector<State> states = std::vector<State>(kFonts, State::kAbsent); // what was acknowledged
    std::mt19937 random{20240607};
    PortName port = kPortNull;
};

TEST_F(Crashes, LoseNothingThatWasAcknowledged) {
    Meet();
    for (size_t kill = 0; kill < Kills(); ++kill) {
        const auto moment = std::chrono::microseconds(random() % 8000);
        std::thread killer([this, moment] {
            std::this_thread::sleep_for(moment); // at a moment of chance
            server.Kill();
        });
        std::optional<Change> unfinished;
        while (!unfinished) {
            Change change = NextChange();
            if (!Make(change)) {
                unfinished = std::move(change);
            } else {
                for (const size_t i : change.fonts) states[i] = change.to;
            }
        }
        killer.join();
        mach_port_deallocate(port);
        Meet();
        const State made = Ask(unfinished->fonts[0]);
        ASSERT_TRUE(made == unfinished->from || made == unfinished->to);
        for (const size_t i : unfinished->fonts) states[i] = made;
        for (size_t i = 0; i < kFonts; ++i)
            ASSERT_EQ(Ask(i), states[i]) << "font " << i << ", kill " << kill;
    }
}

// What is registered and disabled for the session, and then for the user, too: the later changes concern
// both databases.
class CrashesBetweenDatabases : public Crashes {
protected:
    struct Step {
        VLScope scope; // of the change
        enum { kRegister, kUnregister, kDisable, kEnable } change;
        VLScope scope_after; // of the fonts
        bool is_enabled_after;
    };
    static constexpr Step kSteps[] = {
        {kVLScopeSession, Step::kRegister, kVLScopeSession, true},
        {kVLScopeUser, Step::kRegister, kVLScopeSession | kVLScopeUser, true},
        {kVLScopeSession, Step::kDisable, kVLScopeSession | kVLScopeUser, false},
        {kVLScopeUser, Step::kDisable, kVLScopeSession | kVLScopeUser, false},
        {kVLScopeUser, Step::kEnable, kVLScopeSession | kVLScopeUser, true},
        {kVLScopeUser, Step::kUnregister, 0, true},
    };

    bool Make(const Step &step) {
        TValMutableDict registration;
        for (const auto &url : urls)
            registration.Set(url.Get(), Adopt(ValDictionaryCreate(nullptr, nullptr, 0)).Get());
        const auto fonts = *Flattened(Array(urls).Get());
        const VLScope scope = step.scope & kVLScopeUser; // as it travels
        BatchReply reply;
        switch (step.change) {
        case Step::kRegister:
            return !VLSendRegisterFonts(port, *Flattened(registration.Get()), scope, 0, reply);
        case Step::kUnregister:
            return !VLSendUnregisterFonts(port, fonts, scope, reply);
        case Step::kDisable:
            return !VLSendDisableFonts(port, fonts, scope, reply);
        default:
            return !VLSendEnableFonts(port, fonts, scope, reply);
        }
    }

    bool IsAfter(const Step &step, size_t font) {
        uint32_t scope = 0;
        EXPECT_EQ(VLSendGetFontScope(port, TextOf(ValURLGetString(urls[font].Get())), scope), kMachSuccess);
        const State state = Ask(font);
        if (step.scope_after == 0) return scope == 0 && state == State::kAbsent;
        const bool is_enabled = state == State::kEnabled;
        return is_enabled == step.is_enabled_after && (!is_enabled || scope == step.scope_after);
    }
};

TEST_F(CrashesBetweenDatabases, MakeNoHalfChanges) {
    Meet();
    const size_t count = std::size(kSteps);
    size_t last = count - 1; // the step that was acknowledged
    for (size_t kill = 0; kill < Kills(); ++kill) {
        const auto moment = std::chrono::microseconds(random() % 12000);
        std::thread killer([this, moment] {
            std::this_thread::sleep_for(moment); // at a moment of chance
            server.Kill();
        });
        while (Make(kSteps[(last + 1) % count])) last = (last + 1) % count;
        killer.join();
        mach_port_deallocate(port);
        Meet();
        const bool is_made = !IsAfter(kSteps[last], 0);
        if (is_made) last = (last + 1) % count;
        for (size_t i = 0; i < kFonts; ++i)
            ASSERT_TRUE(IsAfter(kSteps[last], i)) << "font " << i << ", step " << last << ", kill " << kill;
    }
}

} // namespace
} // namespace vellum::test
