// SPDX-License-Identifier: MIT
// Several threads that tell the service of changes.
#include "service_fixture.hpp"
#include "support/threads.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

class ConcurrentLegacyService : public LegacyTest {};

TEST_F(ConcurrentLegacyService, KeepsWhatIsRegisteredOnEachThread) {
    const std::string stays = WriteFont("stays.ttf", "Stays");
    Register(stays);
    OnEveryThread([&](size_t thread) {
        const std::string name = "Thread" + std::to_string(thread);
        const std::string path = WriteFont(name + ".ttf", name);
        const auto data = AsData(FontNamed(name));
        for (int i = 0; i < 20; ++i) {
            Register(path);
            const uint32_t container = service_.register_data(data.Get(), 0, 0, kVLScopeProcess);
            EXPECT_NE(container, 0u);
            uint32_t font = 0;
            EXPECT_EQ(service_.find_from_container(container, 1, &font), 1u);
            EXPECT_EQ(service_.get_container(font), container);
            service_.font_notify(1, 0);
            EXPECT_EQ(service_.register_data(nullptr, container, 0, kVLScopeProcess), container);
            Withdraw(path);
        }
    });
    EXPECT_THAT(Fonts(), ElementsAre("Stays"));
}

TEST_F(ConcurrentLegacyService, KeepsWhatIsDisabledOnEachThread) {
    for (size_t i = 0; i < kThreads; ++i) WriteSystemFont(std::to_string(i) + ".ttf", std::to_string(i));
    OnEveryThread([&](size_t thread) {
        const std::string path = system_.File(std::to_string(thread) + ".ttf");
        for (int i = 0; i < 3; ++i) {
            Disable(path, kVLScopeUser);
            if (i < 2) Enable(path, kVLScopeUser);
        }
        if (thread == 0) Enable(path, kVLScopeUser);
    });
    EXPECT_THAT(Fonts(), ElementsAre("0"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("0"));
}

} // namespace
} // namespace vellum::test
