// SPDX-License-Identifier: MIT
// Fonts, the cache and the live data fonts in the hands of many threads.
#include "asking.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/packed_fonts.hpp"
#include "support/type1_font.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <latch>
#include <set>
#include <thread>
#include <vector>

namespace vellum::test {
namespace {

constexpr int kThreads = 8;

// Runs `work` with the number of each thread; all begin together.
template <class TWork>
void InThreads(TWork work) {
    std::latch start(kThreads);
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            work(i);
        });
    }
}

void ExpectOneAnswer(const GxFont *font) {
    std::vector<size_t> answers(kThreads);
    InThreads([&](int thread) { answers[static_cast<size_t>(thread)] = AskEverything(font); });
    EXPECT_EQ(std::set<size_t>(answers.begin(), answers.end()).size(), 1u);
}

TEST(ConcurrentFont, AnswersAllThreadsTheSame) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write("v.ttf", VariableFont().Build()));
    for (size_t i = 0; i < 3; ++i) ExpectOneAnswer(FaceOf(fonts, i));
}

TEST(ConcurrentFont, OfEveryFormatAnswersAllThreadsTheSame) {
    ExpectOneAnswer(FontOf(BuildPfb()).Get());
    ExpectOneAnswer(FontOf(Gzip(BuildPcf({}))).Get());
    ExpectOneAnswer(FontOf(BuildWoff(VariableFont().Build())).Get());
    ExpectOneAnswer(FontOf(BuildCollection({FontBuilder()})).Get());
}

TEST(ConcurrentFont, IsOneObjectForAllThreadsThatOpenAFile) {
    const TempDir folder;
    for (int round = 0; round < 20; ++round) {
        const std::string path = folder.Write(std::to_string(round) + ".ttf", VariableFont().Build());
        std::vector<Ref<const ValArray>> opened(kThreads);
        InThreads([&](int thread) { opened[static_cast<size_t>(thread)] = FontsAt(path); });
        for (const auto &fonts : opened) EXPECT_EQ(FaceOf(fonts, 1), FaceOf(opened[0], 1));
    }
}

TEST(ConcurrentFont, SharesCoverageAmongThreads) {
    const Bytes bytes = FontBuilder().Build();
    std::vector<Ref<const ValCharacterSet>> sets(kThreads);
    InThreads([&](int thread) {
        sets[static_cast<size_t>(thread)] = GxFontCopyCharacterSet(FontOf(bytes).Get());
    });
    for (const auto &set : sets) EXPECT_EQ(set.Get(), sets[0].Get());
}

TEST(ConcurrentFontCache, MayBePurgedWhileFontsAreOpened) {
    const TempDir folder;
    std::vector<std::string> paths;
    for (int i = 0; i < 100; ++i)
        paths.push_back(folder.Write(std::to_string(i) + ".ttf", FontBuilder().Build()));
    InThreads([&](int thread) {
        for (const std::string &path : paths) {
            EXPECT_EQ(PostScriptName(FaceOf(FontsAt(path))), "Test-Regular");
            if (thread == 0) FacetFontPurgeCaches(nullptr);
            if (thread == 1) FacetFontPurgeCaches(Val(path).Get());
        }
    });
}

TEST(ConcurrentLiveDataFont, IsEitherWholeOrGone) {
    const Bytes bytes = FontBuilder().Build();
    std::atomic<const void *> address = nullptr;
    InThreads([&](int thread) {
        for (int round = 0; round < 300; ++round) {
            if (thread % 2 == 0) {
                const auto font = FontOf(bytes);
                address = font.Get();
            } else {
                char text[32];
                std::snprintf(text, sizeof text, "%p", address.load());
                const auto font = GxFontCopyLiveDataFont(text, nullptr);
                EXPECT_TRUE(!font || PostScriptName(font.Get()) == "Test-Regular");
            }
        }
    });
}

} // namespace
} // namespace vellum::test
