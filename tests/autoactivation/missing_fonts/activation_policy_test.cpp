// SPDX-License-Identifier: MIT
// Whether a font that is found is activated: every setting, kind of process, origin of the file and answer
// of the user, through all of the machine.
#include "machine.hpp"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <ostream>
#include <string>

namespace vellum::test {
namespace {

constexpr char kApp[] = "org.example.App";

// What is stored for Default, Disable, Enable and Ask; Default is stored as nothing.
constexpr const char *kStored[] = {"", "FountAutoActivationDisable", "FountAutoActivationEnable",
                                   "FountAutoActivationAsk"};

enum class Word { kNo, kYes, kAsk };

// What the settings come to.    the application's: Default, Disable, Enable, Ask
constexpr Word kWord[4][4] = {{Word::kYes, Word::kNo, Word::kYes, Word::kAsk},  // for all: Default
                              {Word::kNo, Word::kNo, Word::kYes, Word::kAsk},   // Disable
                              {Word::kYes, Word::kNo, Word::kYes, Word::kAsk},  // Enable
                              {Word::kAsk, Word::kNo, Word::kYes, Word::kAsk}}; // Ask

// What the user says when asked, what becomes of the font, and the application's setting from then on
// (-1: as it was).
struct Reply {
    const char *words; // null: there is no companion
    bool gets_font;
    int setting;
};
constexpr Reply kReplies[] = {{nullptr, false, -1},
                              {"once", true, -1},
                              {"always", true, 2},
                              {"not-now", false, -1},
                              {"never", false, 1}};

struct Kind {
    const char *identifier;
    const char *declares;
    bool is_eligible;
};
constexpr Kind kApplication = {kApp, "", true};
constexpr Kind kNeverEligible[] = {
    {kApp, "<key>SkUIElement</key><true/>", false},
    {kApp, "<key>FountDisableAutoActivation</key><true/>", false},
    {"", "", false},
    {"com.orrery.GlypharyUIAgent", "", false},
};

struct Row {
    int for_all, own;
    bool is_quarantined;
    Reply reply;
    Kind kind;
};

std::ostream &operator<<(std::ostream &out, const Row &row) {
    return out << "for all " << row.for_all << ", own " << row.own
               << (row.is_quarantined ? ", downloaded" : "") << ", the user says "
               << (row.reply.words ? row.reply.words : "nothing") << ", " << row.kind.identifier
               << row.kind.declares;
}

class ActivationPolicy : public ::testing::Test {
protected:
    ActivationPolicy() {
        machine.Files().Add("plain.ttf", NamedFace{"Plain"});
        machine.Files().Add("downloaded.ttf", NamedFace{"Downloaded"});
        can_quarantine = ::setxattr(machine.Files().File("downloaded.ttf").c_str(), "user.xdg.origin.url",
                                    "https://example.org/", 20, 0) == 0;
        machine.Start();
    }

    void Expect(const Row &row) {
        Prepare(row);
        const Word word = row.kind.is_eligible ? kWord[row.for_all][row.own] : Word::kNo;
        const bool asks = word == Word::kAsk || (word == Word::kYes && row.is_quarantined);
        const bool gets_font = word != Word::kNo && (!asks || row.reply.gets_font);
        const int questions = machine.Questions() + (asks && row.reply.words ? 1 : 0);
        const std::string font = row.is_quarantined ? "Downloaded" : "Plain";
        const std::string file = machine.Files().File(row.is_quarantined ? "downloaded.ttf" : "plain.ttf");
        Application application(row.kind.identifier, row.kind.declares);
        EXPECT_EQ(application.Do("find " + font + "-Regular"), gets_font ? file : "none") << row;
        EXPECT_EQ(machine.Questions(), questions) << row;
        ExpectSetting(application, row, asks);
        if (asks && row.reply.words)
            machine.AnswerWith("echo once"); // the user may change his mind, too late
        EXPECT_EQ(application.Do("find " + font + "-Regular"), gets_font ? file : "none") << row;
        EXPECT_EQ(machine.Questions(), questions) << row;
    }

    Machine machine;
    bool can_quarantine = false;

private:
    void Prepare(const Row &row) {
        std::string entries;
        if (row.for_all)
            entries +=
                "<key>FountAutoActivation</key><string>" + std::string(kStored[row.for_all]) + "</string>";
        if (row.own)
            entries += "<key>FountAutoActivationAppSpecific</key><dict><key>" +
                       std::string(row.kind.identifier) + "</key><string>" + kStored[row.own] +
                       "</string></dict>";
        machine.Prefer(entries);
        if (row.reply.words)
            machine.AnswerWith(std::string("echo ") + row.reply.words);
        else
            machine.RemoveCompanion();
    }

    static void ExpectSetting(Application &application, const Row &row, bool asks) {
        if (!*row.kind.identifier) return; // which has none
        const int setting = asks && row.reply.setting >= 0 ? row.reply.setting : row.own;
        EXPECT_EQ(application.Do("own?"), std::to_string(setting)) << row;
    }
};

TEST_F(ActivationPolicy, IsTheUsersForFontsThatLieAbout) {
    for (int for_all = 0; for_all < 4; ++for_all)
        for (int own = 0; own < 4; ++own)
            for (const Reply &reply : kReplies) Expect({for_all, own, false, reply, kApplication});
}

TEST_F(ActivationPolicy, IsToAskBeforeAFontThatWasDownloaded) {
    if (!can_quarantine) GTEST_SKIP() << "files have no attributes here";
    for (int for_all = 0; for_all < 4; ++for_all)
        for (int own = 0; own < 4; ++own)
            for (const Reply &reply : kReplies) Expect({for_all, own, true, reply, kApplication});
}

TEST_F(ActivationPolicy, LeavesOutWhatIsNoApplicationWhateverIsSet) {
    for (const Kind &kind : kNeverEligible)
        for (int for_all = 0; for_all < 4; ++for_all)
            for (int own = 0; own < (*kind.identifier ? 4 : 1); ++own)
                Expect({for_all, own, false, kReplies[2], kind});
}

} // namespace
} // namespace vellum::test
