// SPDX-License-Identifier: MIT
// Programs that run with rights that their caller does not have, as set-uid programs do.
#include "service_fixture.hpp"

#include <cstdlib>
#include <filesystem>

namespace {

constinit bool sHasForeignRights = false;

} // namespace

// What the C library says in such a program: the bundle asks this one, as programs come before libraries.
extern "C" char *secure_getenv(const char *name) noexcept {
    return sHasForeignRights ? nullptr : std::getenv(name);
}

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ForeignRights : public LegacyTest {
protected:
    ForeignRights() { sHasForeignRights = true; }
    ~ForeignRights() override { sHasForeignRights = false; }
};

TEST_F(ForeignRights, WriteNothingWhereTheEnvironmentSays) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(home_.File("config")));
    EXPECT_TRUE(std::filesystem::is_empty(home_.File("data")));
}

TEST_F(ForeignRights, ReadNothingThatTheEnvironmentNames) {
    const std::string path = WriteFont("a.ttf", "Ours");
    home_.Write("config/vellum/disabled-fonts", "file://" + path + "\n");
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

} // namespace
} // namespace vellum::test
