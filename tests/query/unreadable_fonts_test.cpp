// SPDX-License-Identifier: MIT
// Questions that are asked while no file can be opened: what can't be answered then is not forgotten for
// good.
#include "frame/handles/local_glyphary.hpp"
#include "platform/process/passing_failures.hpp"
#include "query/query_fixture.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace vellum::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

// A folder is somewhere else while it lives.
class Away {
public:
    explicit Away(const FontFolder &folder) : here_(folder.Path()), there_(here_ + "-away") {
        std::filesystem::rename(here_, there_);
    }
    ~Away() { std::filesystem::rename(there_, here_); }

private:
    const std::string here_, there_;
};

class UnreadableFonts : public ::testing::Test {
protected:
    UnreadableFonts() {
        for (const char *name : {"B", "A"}) {
            const auto url = folder.Add(std::string(name) + ".ttf", MakeFont({name}));
            EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
        }
    }

    static std::string Named(const char *name) {
        return NameIn(Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeProcess, kNone)));
    }
    static std::vector<std::string> All() {
        return NamesIn(Adopt(VLCopyFontsWithProperties(Request({}).Get(), kVLScopeProcess, kNone)));
    }
    static std::string Drawing(uint32_t character) {
        return NameIn(Adopt(VLCopyFontForCharacter(character, kVLScopeProcess, 0)));
    }
    static std::vector<std::string> Families() {
        return Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeProcess)));
    }

    static constexpr VLActivationOptions kNone = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

    FontFolder folder;
};

TEST_F(UnreadableFonts, AreFoundByNameWhenTheyCanBeReadAgain) {
    {
        const Away away(folder);
        static_cast<void>(Named("A-Regular"));
    }
    EXPECT_EQ(Named("A-Regular"), "A-Regular");
    EXPECT_EQ(Named("B"), "B-Regular");
}

TEST_F(UnreadableFonts, StandInOrderWhenTheyCanBeReadAgain) {
    {
        const Away away(folder);
        static_cast<void>(All());
    }
    EXPECT_THAT(All(), ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(UnreadableFonts, DrawACharacterWhenTheyCanBeReadAgain) {
    {
        const Away away(folder);
        static_cast<void>(Drawing('A'));
    }
    EXPECT_EQ(Drawing('A'), "A-Regular");
}

TEST_F(UnreadableFonts, DrawACharacterLaterThoughTheirOrderWasKnownBefore) {
    EXPECT_THAT(All(), ElementsAre("A-Regular", "B-Regular"));
    {
        const Away away(folder);
        EXPECT_FALSE(Adopt(VLCopyFontForCharacter('A', kVLScopeProcess, 0)));
    }
    EXPECT_EQ(Drawing('A'), "A-Regular");
}

TEST_F(UnreadableFonts, AreListedWhenTheyCanBeReadAgain) {
    FontFolder other;
    ASSERT_TRUE(VLRegisterFont(other.Add("C.ttf", MakeFont({"C"})).Get(), 0, kVLScopeProcess));
    {
        const Away away(folder);
        EXPECT_THAT(Families(), ElementsAre("C"));
    }
    EXPECT_THAT(Families(), ElementsAre("A", "B", "C"));
}

// Each failing attempt is later than the one before: so the questions are asked until the answer comes.
TEST_F(UnreadableFonts, AreFoundAfterManyQuestionsInVain) {
    {
        const Away away(folder);
        for (int i = 0; i < 50; ++i) {
            static_cast<void>(Named("A-Regular"));
            static_cast<void>(All());
            static_cast<void>(Drawing('A'));
            static_cast<void>(Families());
        }
    }
    const auto deadline = std::chrono::steady_clock::now() + 30s;
    const auto all_is_answered = [] {
        return Named("A-Regular") == "A-Regular" && All().front() == "A-Regular" &&
               Drawing('A') == "A-Regular" && Families().front() == "A";
    };
    while (!all_is_answered()) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    EXPECT_THAT(All(), ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(Families(), ElementsAre("A", "B"));
}

// Each font that can't be read counts one failure at least each time it is tried. Trying each of them for
// each question would count more by far than the bound.
TEST_F(UnreadableFonts, AreNotTriedAgainWithEveryQuestion) {
    constexpr uint32_t kFonts = 50, kQuestions = 2000;
    FontFolder more;
    for (uint32_t i = 0; i < kFonts; ++i) {
        const std::string name = "C" + std::to_string(i);
        ASSERT_TRUE(VLRegisterFont(more.Add(name + ".ttf", MakeFont({name})).Get(), 0, kVLScopeProcess));
    }
    const Away away(more);
    const uint32_t before = tPassingFailures;
    for (uint32_t i = 0; i < kQuestions; ++i) {
        static_cast<void>(Named("Absent"));
        static_cast<void>(Drawing(0xE000));
    }
    EXPECT_GT(tPassingFailures - before, kFonts);
    EXPECT_LT(tPassingFailures - before, kQuestions * kFonts);
}

} // namespace
} // namespace vellum::test
