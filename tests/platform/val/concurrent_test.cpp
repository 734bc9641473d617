// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"
#include "support/threads.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <thread>

namespace vellum {
namespace {

void InThreads(int count, const std::function<void(int)> &work) {
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t) threads.emplace_back(work, t);
    for (auto &thread : threads) thread.join();
}

TEST(ConcurrentValues, AreCountedRightByEightThreads) {
    std::atomic<int> released = 0;
    auto count = [](void *context) { ++*static_cast<std::atomic<int> *>(context); };
    auto data = Adopt(ValDataCreateWithBytesNoCopy("x", 1, count, &released));
    InThreads(8, [&data](int) {
        for (int i = 0; i < 10'000; ++i) {
            Ref<const ValData> mine = data;
            Ref<const ValData> second = mine;
        }
    });
    EXPECT_EQ(released, 0);
    data = nullptr;
    EXPECT_EQ(released, 1);
}

TEST(ConcurrentValues, ShareSmallIntegersWhoeverMakesThemFirst) {
    constexpr int32_t kCount = 256;
    std::array<std::array<const ValNumber *, kCount>, test::kThreads> made{};
    test::OnEveryThread([&](size_t thread) {
        for (int32_t i = 0; i < kCount; ++i)
            made[thread][static_cast<size_t>(i)] = ValNumberCreateSInt32(i);
    });
    for (const auto &numbers : made) EXPECT_EQ(numbers, made[0]);
}

TEST(ConcurrentValues, DieOnceWhoeverIsLast) {
    for (int round = 0; round < 200; ++round) {
        std::atomic<int> released = 0;
        auto count = [](void *context) { ++*static_cast<std::atomic<int> *>(context); };
        auto data = Adopt(ValDataCreateWithBytesNoCopy("x", 1, count, &released));
        std::vector<Ref<const ValData>> held(8, data);
        data = nullptr;
        InThreads(8, [&held](int t) { held[static_cast<size_t>(t)] = nullptr; });
        EXPECT_EQ(released, 1);
    }
}

TEST(ConcurrentValues, AreReadByEightThreads) {
    auto string = S("Größe");
    auto dictionary = Adopt(ValDictionaryCreateMutable(0, &kValCaseInsensitiveStringCallbacks, nullptr));
    for (int i = 0; i < 100; ++i)
        ValDictionarySetValue(dictionary.Get(), S("K" + std::to_string(i)).Get(), string.Get());
    auto url = U("b#f", U("file:///a/"));
    std::atomic<int> wrong = 0;
    InThreads(8, [&](int t) {
        for (int i = 0; i < 200; ++i) {
            if (ValHash(string.Get()) != ValHash(S("Größe").Get())) ++wrong; // cached by whoever is first
            auto key = S("k" + std::to_string((i + t) % 100));
            if (ValDictionaryGetValue(dictionary.Get(), key.Get()) != string.Get()) ++wrong;
            if (TextOf(Adopt(ValURLCopyFileSystemPath(url.Get()))) != "/a/b") ++wrong;
            if (ValStringCompare(string.Get(), S("größe").Get(), kValCompareCaseInsensitive) != 0) ++wrong;
            if (ValStringCompare(string.Get(), string.Get(), kValCompareLocalized) != 0) ++wrong;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(ConcurrentValues, MayBeNestedDeeplyInEveryThread) {
    InThreads(4, [](int) {
        Ref<const void> value = A({});
        for (int i = 0; i < 20'000; ++i) value = A({value.Get()});
    });
}

} // namespace
} // namespace vellum
