// SPDX-License-Identifier: MIT
// Queries while other threads change the register: every answer is one that some order of the changes
// explains, and whoever changes something sees it at once.
//
// VELLUM_SOAK_SECONDS says how long each test goes on; 2 by default.
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/generation_seed.hpp"
#include "query_fixture.hpp"
#include "support/threads.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <random>

namespace vellum::test {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Not;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;
constexpr size_t kWriters = kThreads / 2;

// A register numbers the faces that come, and stands still once it has come around to a number that a face
// has which stays, such as those of FixedFonts: tests end before that.
constexpr size_t kMostFaces = kLastFontIndex - 1000;
std::atomic<size_t> sFacesRegistered{0};

// Registers a collection of two faces.
bool RegisterPair(const ValURL *url) {
    sFacesRegistered += 2;
    return VLRegisterFont(url, 0, kVLScopeProcess);
}

class Deadline {
public:
    bool IsOver() const {
        return std::chrono::steady_clock::now() >= end_ || sFacesRegistered >= kMostFaces;
    }

private:
    static std::chrono::duration<double> Length() {
        const char *seconds = std::getenv("VELLUM_SOAK_SECONDS");
        return std::chrono::duration<double>(seconds ? std::atof(seconds) : 2.0);
    }

    const std::chrono::steady_clock::time_point end_ =
        std::chrono::steady_clock::now() +
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(Length());
};

// The fonts of one thread that changes the register. Nobody else touches them.
struct OwnFonts {
    OwnFonts(const FontFolder &folder, size_t number)
        : family("Own" + std::to_string(number)), character(0xE000 + static_cast<uint32_t>(number)),
          url(folder.Add(family + ".ttc",
                         BuildCollection({FaceNamed("Cut 1", One()), FaceNamed("Cut 2", Two())}))),
          first(Face(url, ("postscript-name=" + One()).c_str())) {}

    std::string One() const { return family + "-1"; }
    std::string Two() const { return family + "-2"; }
    FontBuilder FaceNamed(const std::string &subfamily, const std::string &name) const {
        return FontWith({family, subfamily, family + ' ' + subfamily, name}, character, character);
    }

    const std::string family;
    const uint32_t character; // that these alone have
    const Ref<const ValURL> url;
    const Ref<const ValURL> first; // the first of the two faces
};

std::vector<std::string> OfFamily(const std::string &family) {
    return NamesIn(Adopt(VLCopyFontsWithProperties(
        Request({{kVLFontPropertyFamilyName, String(family)}}).Get(), kVLScopeProcess, kNoActivation)));
}

std::string OfName(const std::string &name) {
    return NameIn(Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeProcess, kNoActivation)));
}

std::string OfCharacter(uint32_t character) {
    return NameIn(Adopt(VLCopyFontForCharacter(character, kVLScopeProcess, 0)));
}

std::vector<std::string> Families() {
    return Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeProcess)));
}

std::vector<std::string> FontNamesNow() {
    return Texts(Adopt(VLCopyAvailableFontNames(kVLScopeProcess)));
}

std::string CopiedName(const Ref<const ValURL> &url) {
    const auto told =
        Adopt(VLCopyPropertiesForFont(url.Get(), Keys({kVLFontPropertyName}).Get(), kVLScopeProcess));
    return TextOf(ValDictionaryGetValue(told.Get(), kVLFontPropertyName));
}

// What a thread must see of its own fonts: these faces, in this order.
void ExpectToSee(const OwnFonts &own, const std::vector<std::string> &faces) {
    const std::vector<std::string> none = {"(null)"};
    const std::string best = faces.empty() ? "(null)" : faces.front();
    EXPECT_EQ(OfFamily(own.family), faces.empty() ? none : faces);
    EXPECT_EQ(OfName(own.family), best);
    EXPECT_EQ(OfCharacter(own.character), best);
    EXPECT_THAT(faces.empty() ? none : faces, Contains(CopiedName(own.url))); // of whichever comes first
    for (const std::string &name : {own.One(), own.Two()}) {
        const bool there = std::ranges::count(faces, name) != 0;
        EXPECT_EQ(OfName(name), there ? name : "(null)");
        EXPECT_EQ(std::ranges::count(FontNamesNow(), name), there ? 1 : 0);
    }
    EXPECT_EQ(std::ranges::count(Families(), own.family), faces.empty() ? 0 : 1);
}

// Takes the fonts in and out, looking after each step.
void Change(const OwnFonts &own, std::minstd_rand &random) {
    const std::vector<std::string> both = {own.One(), own.Two()};
    EXPECT_TRUE(RegisterPair(own.url.Get()));
    ExpectToSee(own, both);
    if (random() % 2) {
        VLDisableFonts(Array({own.url}).Get(), 0, kVLScopeProcess);
        ExpectToSee(own, {});
        VLEnableFonts(Array({own.url}).Get(), 0, kVLScopeProcess);
        ExpectToSee(own, both);
    }
    if (random() % 2) {
        TLocalGlyphary().DisableFont(own.first.Get(), kVLScopeProcess);
        ExpectToSee(own, {own.Two()});
        TLocalGlyphary().EnableFont(own.first.Get(), kVLScopeProcess);
        ExpectToSee(own, both);
    }
    EXPECT_TRUE(VLUnregisterFont(own.url.Get(), 0, kVLScopeProcess));
    ExpectToSee(own, {});
}

// Asks after somebody else's fonts: the first face may be away alone, the second never.
void Look(const OwnFonts &other, std::minstd_rand &random) {
    const std::string one = other.One(), two = other.Two();
    switch (random() % 5) {
    case 0:
        EXPECT_THAT(OfFamily(other.family),
                    AnyOf(ElementsAre("(null)"), ElementsAre(two), ElementsAre(one, two)));
        break;
    case 1:
        EXPECT_THAT(OfName(other.family), AnyOf("(null)", one, two));
        EXPECT_THAT(OfName(two), AnyOf("(null)", two));
        break;
    case 2:
        EXPECT_THAT(OfCharacter(other.character), AnyOf("(null)", one, two));
        EXPECT_EQ(OfCharacter('A'), "Fixed-1");
        break;
    case 3:
        EXPECT_THAT(Families(), Contains("Fixed"));
        EXPECT_THAT(FontNamesNow(), AnyOf(Not(Contains(one)), IsSupersetOf({one, two})));
        break;
    default:
        EXPECT_THAT(CopiedName(other.first), AnyOf("(null)", one));
        EXPECT_THAT(CopiedName(other.url), AnyOf("(null)", one, two));
    }
}

// Fonts that stay for as long as a test needs them.
class FixedFonts {
public:
    explicit FixedFonts(const FontFolder &folder)
        : url_(folder.Add("fixed.ttc",
                          BuildCollection({FontWith({"Fixed", "Cut 1", "Fixed 1", "Fixed-1"}),
                                           FontWith({"Fixed", "Cut 2", "Fixed 2", "Fixed-2"})}))) {
        EXPECT_TRUE(RegisterPair(url_.Get()));
    }
    ~FixedFonts() { VLUnregisterFont(url_.Get(), 0, kVLScopeProcess); }
    FixedFonts(const FixedFonts &) = delete;
    FixedFonts &operator=(const FixedFonts &) = delete;

private:
    const Ref<const ValURL> url_;
};

TEST(ConcurrentQueries, WhoChangesFontsSeesItAtOnceAndNobodySeesHalfAChange) {
    const FontFolder folder;
    const FixedFonts fixed(folder);
    std::vector<OwnFonts> fonts;
    for (size_t i = 0; i < kWriters; ++i) fonts.emplace_back(folder, i);
    const Deadline deadline;
    std::atomic<int> changes{0}, looks{0};
    OnEveryThread([&](size_t thread) {
        std::minstd_rand random(static_cast<unsigned>(thread + 1));
        do {
            if (thread < kWriters) {
                Change(fonts[thread], random);
                ++changes;
            } else {
                Look(fonts[random() % kWriters], random);
                ++looks;
            }
        } while (!deadline.IsOver() && !::testing::Test::HasFailure());
    });
    EXPECT_GE(changes, static_cast<int>(kWriters));
    EXPECT_GE(looks, static_cast<int>(kThreads - kWriters));
    EXPECT_THAT(Families(), ElementsAre("Fixed"));
}

// One thread changes, and notes what is there at each generation; the others ask, and note the generations
// in which they got their answers. What both noted must agree.
TEST(ConcurrentQueries, AnAnswerWithinOneGenerationIsTheAnswerOfThatGeneration) {
    const FontFolder folder;
    const FixedFonts fixed(folder);
    const OwnFonts own(folder, 0);
    using State = std::vector<std::string>;
    const State none = {"(null)"}, both = {own.One(), own.Two()}, second = {own.Two()};
    std::map<uint32_t, State> states = {{TGenerationSeed::GetGeneration(), none}};
    std::mutex mutex; // guards what has been observed
    std::map<uint32_t, State> observed;
    size_t contradictions = 0;

    const Deadline deadline;
    std::atomic<bool> done{false};
    const auto change = [&] {
        const auto now = [&](const State &state) { states[TGenerationSeed::GetGeneration()] = state; };
        do {
            RegisterPair(own.url.Get());
            now(both);
            VLDisableFonts(Array({own.first}).Get(), 0, kVLScopeProcess);
            now(second);
            VLEnableFonts(Array({own.first}).Get(), 0, kVLScopeProcess);
            now(both);
            VLDisableFonts(Array({own.url}).Get(), 0, kVLScopeProcess);
            now(none);
            VLEnableFonts(Array({own.url}).Get(), 0, kVLScopeProcess);
            now(both);
            VLUnregisterFont(own.url.Get(), 0, kVLScopeProcess);
            now(none);
        } while (!deadline.IsOver());
        done = true;
    };
    const auto observe = [&] {
        while (!done) {
            const uint32_t before = TGenerationSeed::GetGeneration();
            const State state = OfFamily(own.family);
            const std::string best = OfCharacter(own.character);
            if (TGenerationSeed::GetGeneration() != before) continue;
            const std::lock_guard lock(mutex);
            const auto [entry, added] = observed.emplace(before, state);
            contradictions += entry->second != state || best != state.front();
        }
    };
    OnEveryThread([&](size_t thread) { thread == 0 ? change() : observe(); });

    EXPECT_EQ(contradictions, 0U);
    size_t compared = 0;
    for (const auto &[generation, state] : observed) {
        const auto known = states.find(generation);
        if (known == states.end()) continue;
        ++compared;
        EXPECT_EQ(state, known->second) << generation;
    }
    EXPECT_GT(compared, 0U);
}

TEST(ConcurrentQueries, AllAnswersThroughOneHandleAreOfOneMoment) {
    const FontFolder folder;
    const FixedFonts fixed(folder);
    std::vector<OwnFonts> fonts;
    for (size_t i = 0; i < kWriters; ++i) fonts.emplace_back(folder, i);
    const auto everything = Request({});
    const auto keys = Keys({kVLFontPropertyName});
    const Deadline deadline;
    OnEveryThread([&](size_t thread) {
        do {
            if (thread < kWriters) {
                EXPECT_TRUE(RegisterPair(fonts[thread].url.Get()));
                VLDisableFonts(Array({fonts[thread].first}).Get(), 0, kVLScopeProcess);
                VLEnableFonts(Array({fonts[thread].first}).Get(), 0, kVLScopeProcess);
                EXPECT_TRUE(VLUnregisterFont(fonts[thread].url.Get(), 0, kVLScopeProcess));
                continue;
            }
            const TLocalGlyphary handle;
            auto found = NamesIn(handle.CopyFontsForRequest(everything.Get(), kVLScopeProcess));
            auto listed = Texts(handle.CopyAvailableFontNames(kVLScopeProcess));
            const auto all = handle.CopyPropertiesForAllFonts(keys.Get(), kVLScopeProcess);
            EXPECT_EQ(ValArrayGetCount(all.Get()), found.size());
            std::ranges::sort(found);
            std::ranges::sort(listed);
            EXPECT_EQ(found, listed);
        } while (!deadline.IsOver() && !::testing::Test::HasFailure());
    });
}

} // namespace
} // namespace vellum::test
