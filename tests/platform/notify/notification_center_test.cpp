// SPDX-License-Identifier: MIT
#include "platform/notify/notification_center.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

struct Observer {
    std::string name;
    std::vector<std::string> *heard;
};

void Hear(void *, void *observer, const ValString *name, const void *, const ValDictionary *) {
    const auto *self = static_cast<const Observer *>(observer);
    self->heard->push_back(self->name + " " + TextOf(name));
}

class NotificationCenters : public ::testing::Test {
protected:
    void Post(const char *name) { center.Post(String(name).Get(), nullptr); }
    void Add(Observer &observer, const char *name) {
        center.AddObserver(&observer, Hear, String(name).Get());
    }

    std::vector<std::string> heard;
    Observer a{"a", &heard}, b{"b", &heard};
    NotificationCenter center;
};

TEST_F(NotificationCenters, TellTheObserversOfANameInTheOrderOfAdding) {
    Add(b, "x");
    Add(a, "x");
    Add(a, "y");
    Post("x");
    EXPECT_THAT(heard, ElementsAre("b x", "a x"));
}

TEST_F(NotificationCenters, HandOverTheCenterTheUserInfoAndTheSenderIfThereIsOne) {
    const auto info = Adopt(ValDictionaryCreateMutable(0, &kValValueCallbacks, &kValValueCallbacks));
    struct Seen {
        void *center;
        const void *object;
        const ValDictionary *user_info;
    } seen{nullptr, this, nullptr};
    center.AddObserver(
        &seen,
        [](void *from, void *observer, const ValString *, const void *object,
           const ValDictionary *user_info) {
            *static_cast<Seen *>(observer) = {from, object, user_info};
        },
        String("x").Get());
    center.Post(String("x").Get(), info.Get());
    EXPECT_EQ(seen.center, &center);
    EXPECT_EQ(seen.object, nullptr);
    EXPECT_EQ(seen.user_info, info.Get());
    center.Post(String("x").Get(), info.Get(), this);
    EXPECT_EQ(seen.object, this);
}

TEST_F(NotificationCenters, RemoveAllThatWasAddedUnderAnObserver) {
    Add(a, "x");
    Add(b, "x");
    Add(a, "y");
    center.RemoveObserver(&a);
    Post("x");
    Post("y");
    EXPECT_THAT(heard, ElementsAre("b x"));
}

TEST_F(NotificationCenters, CallNobodyWhoWasRemovedMeanwhile) {
    struct Remover {
        NotificationCenter *center;
        void *other;
    } remover{&center, &a};
    center.AddObserver(
        &remover,
        [](void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            const auto *self = static_cast<const Remover *>(observer);
            self->center->RemoveObserver(self->other);
        },
        String("x").Get());
    Add(a, "x");
    Add(b, "x");
    Post("x");
    EXPECT_THAT(heard, ElementsAre("b x"));
}

TEST_F(NotificationCenters, CallNobodyWhoWasAddedMeanwhile) {
    struct Adder {
        NotificationCenter *center;
        Observer *other;
    } adder{&center, &a};
    center.AddObserver(
        &adder,
        [](void *, void *observer, const ValString *name, const void *, const ValDictionary *) {
            const auto *self = static_cast<const Adder *>(observer);
            self->center->AddObserver(self->other, Hear, name);
        },
        String("x").Get());
    Post("x");
    EXPECT_TRUE(heard.empty());
    Post("x");
    EXPECT_THAT(heard, ElementsAre("a x"));
}

TEST_F(NotificationCenters, TellEverybodyByTheNameThatEachObserves) {
    center.AddObserver(&a, Hear, String("x").Get());
    center.AddObserver(&b, Hear, String("y").Get());
    center.PostToAll(nullptr);
    EXPECT_THAT(heard, ElementsAre("a x", "b y"));
}

TEST_F(NotificationCenters, AreOneInAProcess) {
    EXPECT_EQ(&NotificationCenter::Local(), &NotificationCenter::Local());
}

TEST(ConcurrentNotificationCenters, LetObserversComeAndGoWhileOthersPost) {
    NotificationCenter center;
    const auto name = String("x");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&center, &name] {
            int own = 0;
            for (int j = 0; j < 500; ++j) {
                center.AddObserver(
                    &own, [](void *, void *, const ValString *, const void *, const ValDictionary *) {},
                    name.Get());
                center.Post(name.Get(), nullptr);
                center.RemoveObserver(&own);
            }
        });
    for (std::thread &thread : threads) thread.join();
    std::vector<std::string> heard;
    Observer last{"last", &heard};
    center.AddObserver(&last, Hear, name.Get());
    center.Post(name.Get(), nullptr);
    EXPECT_THAT(heard, ElementsAre("last x"));
}

} // namespace
} // namespace vellum::test
