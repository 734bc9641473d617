// SPDX-License-Identifier: MIT
// The way from the library's interface to fontconfig, through the bundle in the framework that the
// environment names.
#include "service_fixture.hpp"

#include <cstdlib>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LibraryAndService : public LegacyTest {
protected:
    LibraryAndService() {
        const std::string bundle = VELLUM_FOUNT;
        const std::string resources = bundle.substr(0, bundle.rfind('/')) + "/Resources";
        setenv("VL_FRAMEWORK_RESOURCES_PATH", resources.c_str(), 1);
    }
};

TEST_F(LibraryAndService, HaveAFontFoundByFontconfigAsLongAsItIsRegistered) {
    const auto url = FileURL(WriteFont("a.ttf", "Ours"));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    ASSERT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Fonts(), IsEmpty());
}

} // namespace
} // namespace vellum::test
