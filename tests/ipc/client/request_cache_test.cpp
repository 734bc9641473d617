// SPDX-License-Identifier: MIT
// The answers that a thread had lately.
#include "frame/registry/generation_seed.hpp"
#include "ipc/client/request_cache.hpp"
#include "platform/val/string.hpp"
#include "support/allocations.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"
#include "values/val_cast.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <thread>
#include <vector>

namespace vellum::test {
namespace {

Ref<const ValString> Request(int number) {
    return String("request " + std::to_string(number));
}
Ref<const ValString> Answer(int number) {
    return String("answer " + std::to_string(number));
}

void Ask(int number) {
    TRequestCache().AddResultForRequest(Answer(number).Get(), Request(number).Get(), 0);
}

std::string Cached(int number) {
    return TextOf(TRequestCache().CopyResultForRequest(Request(number).Get(), 0));
}

Ref<const ValDictionary> OneEntry(const void *key, const void *value) {
    return Adopt(ValDictionaryCreate(&key, &value, 1));
}

class RequestCache : public ::testing::Test {
protected:
    void SetUp() override { TGenerationSeed::UpdateGeneration(); } // whatever this thread had asked before
};

TEST_F(RequestCache, IsEmptyToBeginWith) {
    EXPECT_EQ(Cached(1), "(null)");
    EXPECT_FALSE(TRequestCache().CopyResultForRequest(nullptr, 0));
}

TEST_F(RequestCache, FindsTheAnswerToTheSameObjectAndToAnEqualOne) {
    const auto request = Request(1);
    TRequestCache().AddResultForRequest(Answer(1).Get(), request.Get(), 0);
    EXPECT_EQ(TextOf(TRequestCache().CopyResultForRequest(request.Get(), 0)), "answer 1");
    EXPECT_EQ(Cached(1), "answer 1");
    EXPECT_EQ(Cached(2), "(null)");
}

TEST_F(RequestCache, FindsTheAnswerToARequestOfAnyKind) {
    const auto name = String("name");
    const auto dictionary = OneEntry(String("name").Get(), kValBooleanTrue);
    const auto url = Adopt(ValURLCreateWithBytes("file:///name", 12, nullptr));
    const TRequestCache cache;
    cache.AddResultForRequest(Answer(1).Get(), name.Get(), 0);
    cache.AddResultForRequest(Answer(2).Get(), dictionary.Get(), 0);
    cache.AddResultForRequest(Answer(3).Get(), url.Get(), 0);
    cache.AddResultForRequest(Answer(4).Get(), nullptr, 0);
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(String("name").Get(), 0)), "answer 1");
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(OneEntry(name.Get(), kValBooleanTrue).Get(), 0)),
              "answer 2");
    EXPECT_FALSE(cache.CopyResultForRequest(OneEntry(name.Get(), kValBooleanFalse).Get(), 0));
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(url.Get(), 0)), "answer 3");
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(nullptr, 0)), "answer 4");
}

// A request whose release asks again, as a caller's own may.
struct AskingRequest {
    static void Release(void *context) {
        ++*static_cast<int *>(context);
        Ask(50);
    }
};

TEST_F(RequestCache, TakesAnswersFromWithinTheReleaseOfAnotherOne) {
    int released = 0;
    auto request = Adopt(ValDataCreateWithBytesNoCopy("x", 1, AskingRequest::Release, &released));
    TRequestCache().AddResultForRequest(kValBooleanTrue, request.Get(), 0);
    request = nullptr;
    for (int i = 1; i <= 39; ++i) Ask(i);
    Ask(40); // takes the place of the request, whose release asks 50
    EXPECT_EQ(released, 1);
    EXPECT_EQ(Cached(50), "answer 50");
    EXPECT_EQ(Cached(40), "answer 40");
    EXPECT_EQ(Cached(2), "answer 2");
}

TEST_F(RequestCache, TakesAnswersFromWithinBeingEmptied) {
    int released = 0;
    auto request = Adopt(ValDataCreateWithBytesNoCopy("x", 1, AskingRequest::Release, &released));
    TRequestCache().AddResultForRequest(kValBooleanTrue, request.Get(), 0);
    request = nullptr;
    TGenerationSeed::UpdateGeneration();
    EXPECT_EQ(Cached(1), "(null)");
    EXPECT_EQ(released, 1);
    EXPECT_EQ(Cached(50), "answer 50");
}

TEST_F(RequestCache, FindsNothingWhereTheComparisonItselfAsks) {
    const ValCallbacks callbacks = {ValRetain, ValRelease,
                                    [](const void *a, const void *b) {
                                        Ask(51);
                                        return ValEqual(a, b);
                                    },
                                    ValHash, nullptr};
    const auto set = [&callbacks](const void *member) {
        auto made = Adopt(ValSetCreateMutable(0, &callbacks));
        ValSetAdd(made.Get(), member);
        return made;
    };
    const auto name = String("n");
    const auto equal = String("n");
    for (int i = 1; i <= 20; ++i) Ask(i);
    TRequestCache().AddResultForRequest(kValBooleanTrue, set(name.Get()).Get(), 0);
    for (int i = 21; i <= 30; ++i) Ask(i);
    EXPECT_FALSE(TRequestCache().CopyResultForRequest(set(equal.Get()).Get(), 0));
    EXPECT_EQ(Cached(51), "answer 51");
    for (int i = 1; i <= 30; ++i) EXPECT_EQ(Cached(i), "answer " + std::to_string(i)) << i;
}

TEST_F(RequestCache, TellsRequestsOfOneHashApart) {
    const auto nested = [](const void *value) { // the hash sees no more of an inner array than its kind
        const void *const inner = ValArrayCreate(&value, 1);
        const auto outer = Adopt(ValArrayCreate(&inner, 1));
        ValRelease(inner);
        return outer;
    };
    const auto one = nested(kValBooleanTrue);
    const auto other = nested(kValBooleanFalse);
    ASSERT_EQ(ValHash(one.Get()), ValHash(other.Get()));
    TRequestCache().AddResultForRequest(Answer(1).Get(), one.Get(), 0);
    EXPECT_FALSE(TRequestCache().CopyResultForRequest(other.Get(), 0));
    EXPECT_TRUE(TRequestCache().CopyResultForRequest(nested(kValBooleanTrue).Get(), 0));
}

TEST_F(RequestCache, TellsOperationsApart) {
    const TRequestCache cache;
    cache.AddResultForRequest(Answer(1).Get(), Request(1).Get(), 7);
    EXPECT_FALSE(cache.CopyResultForRequest(Request(1).Get(), 0));
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(Request(1).Get(), 7)), "answer 1");
}

TEST_F(RequestCache, GivesTheAnswerAsItIsWhateverItsKind) {
    const TRequestCache cache;
    cache.AddResultForRequest(kValBooleanTrue, Request(1).Get(), 0);
    EXPECT_EQ(cache.CopyResultForRequest(Request(1).Get(), 0).Get(), kValBooleanTrue);
}

TEST_F(RequestCache, HoldsFortyAnswersAndDropsTheOneNotUsedForLongest) {
    for (int i = 1; i <= 40; ++i) Ask(i);
    Ask(41);
    EXPECT_EQ(Cached(1), "(null)");
    for (int i = 2; i <= 41; ++i) EXPECT_EQ(Cached(i), "answer " + std::to_string(i)) << i;
}

TEST_F(RequestCache, KeepsAnOldAnswerThatWasUsedSince) {
    for (int i = 1; i <= 40; ++i) Ask(i);
    EXPECT_EQ(Cached(1), "answer 1");
    Ask(41);
    EXPECT_EQ(Cached(1), "answer 1");
    EXPECT_EQ(Cached(2), "(null)");
}

TEST_F(RequestCache, DropsAnswersInTheOrderOfTheirUse) {
    for (int i = 1; i <= 40; ++i) Ask(i);
    for (int i = 40; i >= 1; --i) Cached(i); // from the head, from the middle and from the tail
    for (int i = 1; i <= 39; ++i) Ask(100 + i);
    EXPECT_EQ(Cached(1), "answer 1"); // used last
    for (int i = 2; i <= 40; ++i) EXPECT_EQ(Cached(i), "(null)") << i;
}

TEST_F(RequestCache, GivesTheNewerOfTwoAnswersAndKeepsTheOlderBehindIt) {
    const auto request = Request(1);
    const TRequestCache cache;
    cache.AddResultForRequest(Answer(1).Get(), request.Get(), 0);
    cache.AddResultForRequest(Answer(2).Get(), request.Get(), 0);
    EXPECT_EQ(TextOf(cache.CopyResultForRequest(request.Get(), 0)), "answer 2");
    EXPECT_EQ(request.Get()->references.load(), 3U); // both entries, and this
}

TEST_F(RequestCache, KeepsANullAnswerThatNobodyCanTellFromNone) {
    for (int i = 1; i <= 40; ++i) Ask(i);
    const TRequestCache cache;
    cache.AddResultForRequest(nullptr, Request(99).Get(), 0);
    EXPECT_FALSE(cache.CopyResultForRequest(Request(99).Get(), 0));
    EXPECT_EQ(Cached(1), "(null)"); // it took a place
    EXPECT_EQ(Cached(2), "answer 2");
}

TEST_F(RequestCache, IsEmptiedByFortyNullAnswers) {
    for (int i = 1; i <= 40; ++i) Ask(i);
    const TRequestCache cache;
    for (int i = 0; i < 40; ++i) cache.AddResultForRequest(nullptr, Request(99).Get(), 0);
    for (int i = 1; i <= 40; ++i) EXPECT_EQ(Cached(i), "(null)") << i;
}

TEST_F(RequestCache, RetainsWhatItKeepsAndReleasesWhatItDrops) {
    const auto request = Request(1);
    const auto answer = Answer(1);
    TRequestCache().AddResultForRequest(answer.Get(), request.Get(), 0);
    EXPECT_EQ(request.Get()->references.load(), 2U);
    EXPECT_EQ(answer.Get()->references.load(), 2U);
    for (int i = 2; i <= 41; ++i) Ask(i);
    EXPECT_EQ(request.Get()->references.load(), 1U);
    EXPECT_EQ(answer.Get()->references.load(), 1U);
}

TEST_F(RequestCache, IsEmptyAfterAFontHasChanged) {
    Ask(1);
    TGenerationSeed::UpdateGeneration();
    EXPECT_EQ(Cached(1), "(null)");
    Ask(2);
    EXPECT_EQ(Cached(2), "answer 2");
}

TEST_F(RequestCache, ReleasesTheAnswersFromBeforeAChange) {
    const auto answer = Answer(1);
    TRequestCache().AddResultForRequest(answer.Get(), Request(1).Get(), 0);
    TGenerationSeed::UpdateGeneration();
    const TRequestCache next;
    EXPECT_EQ(answer.Get()->references.load(), 1U);
}

TEST_F(RequestCache, DoesNotKeepAnAnswerDuringWhichAFontChanged) {
    const TRequestCache cache;
    TGenerationSeed::UpdateGeneration(); // while the server was asked
    cache.AddResultForRequest(Answer(1).Get(), Request(1).Get(), 0);
    EXPECT_EQ(Cached(1), "(null)");
}

TEST_F(RequestCache, DoesNotKeepALateAnswerThoughItWasEmptiedMeanwhile) {
    const TRequestCache cache;
    TGenerationSeed::UpdateGeneration();
    Ask(2); // within the call, through a handle of its own
    cache.AddResultForRequest(Answer(1).Get(), Request(1).Get(), 0);
    EXPECT_EQ(Cached(1), "(null)");
    EXPECT_EQ(Cached(2), "answer 2");
}

TEST_F(RequestCache, AllocatesNothingForAHitOrAnInsertion) {
    ASSERT_TRUE(IsAllocatorWrapped());
    for (int i = 1; i <= 40; ++i) Ask(i);
    const auto request = Request(1);
    const auto dictionary = OneEntry(request.Get(), request.Get());
    TRequestCache().AddResultForRequest(request.Get(), dictionary.Get(), 0);
    EXPECT_GT(CountAllocations([] { Request(1); }), 0); // it counts
    Ref<const void> answers[2];
    const auto other = Request(40);
    EXPECT_EQ(CountAllocations([&] {
                  answers[0] = TRequestCache().CopyResultForRequest(other.Get(), 0);
                  answers[1] = TRequestCache().CopyResultForRequest(dictionary.Get(), 0);
                  TRequestCache().AddResultForRequest(other.Get(), request.Get(), 0);
              }),
              0);
    EXPECT_EQ(TextOf(answers[0]), "answer 40");
    EXPECT_EQ(answers[1].Get(), request.Get());
}

TEST(ConcurrentRequestCache, IsEachThreadsOwn) {
    Ask(1);
    std::thread([] {
        EXPECT_EQ(Cached(1), "(null)");
        Ask(2);
    }).join();
    EXPECT_EQ(Cached(1), "answer 1");
    EXPECT_EQ(Cached(2), "(null)");
}

TEST(ConcurrentRequestCache, EndsWithItsThread) {
    const auto answer = Answer(1);
    std::thread([&] { TRequestCache().AddResultForRequest(answer.Get(), Request(1).Get(), 0); }).join();
    EXPECT_EQ(answer.Get()->references.load(), 1U);
}

TEST(ConcurrentRequestCache, IsEmptyOnEveryThreadAfterAFontHasChanged) {
    std::barrier filled(kThreads + 1);
    std::barrier changed(kThreads + 1);
    std::atomic<int> empty{0};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            Ask(1);
            filled.arrive_and_wait();
            changed.arrive_and_wait();
            if (Cached(1) == "(null)") ++empty;
        });
    }
    filled.arrive_and_wait();
    TGenerationSeed::UpdateGeneration();
    changed.arrive_and_wait();
    for (auto &thread : threads) thread.join();
    EXPECT_EQ(empty, static_cast<int>(kThreads));
}

// Answers name the generation in which they were asked for: none is found in a later one.
TEST(ConcurrentRequestCache, HoldsNoAnswerFromBeforeAChange) {
    std::atomic<bool> done{false};
    std::thread changing([&done] {
        for (int i = 0; i < 20'000; ++i) TGenerationSeed::UpdateGeneration();
        done = true;
    });
    const auto request = Request(1);
    int late = 0;
    int found = 0;
    while (!done || found == 0) {
        const TRequestCache cache;
        const auto asked = static_cast<int32_t>(TGenerationSeed::GetGeneration());
        const auto answer = Adopt(ValNumberCreateSInt32(asked));
        cache.AddResultForRequest(answer.Get(), request.Get(), 0);
        const auto now = static_cast<int32_t>(TGenerationSeed::GetGeneration());
        const auto cached = TRequestCache().CopyResultForRequest(request.Get(), 0);
        if (!cached) continue;
        ++found;
        if (ValNumberGetSInt32(Cast<ValNumber>(cached.Get())) < now) ++late;
    }
    changing.join();
    EXPECT_EQ(late, 0);
}

using RequestCacheInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(RequestCacheInExhaustedMemory, KeepsNothingAndFindsNothing) {
    const auto request = Request(1);
    const auto answer = Answer(1);
    std::thread([&] { // which has no cache yet
        EXPECT_TRUE(
            FailAfter(0, [&] { TRequestCache().AddResultForRequest(answer.Get(), request.Get(), 0); }));
        EXPECT_FALSE(TRequestCache().CopyResultForRequest(request.Get(), 0));
        TRequestCache().AddResultForRequest(answer.Get(), request.Get(), 0); // there is memory again
        EXPECT_TRUE(TRequestCache().CopyResultForRequest(request.Get(), 0));
    })
        .join();
}

} // namespace
} // namespace vellum::test
