// SPDX-License-Identifier: MIT
#include "platform/app/loadable_bundle.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

TEST(LoadableBundles, ExportByName) {
    const TempDir folder;
    const std::string bundle = folder.MakeFolder("Spy.framework");
    std::filesystem::copy_file(VELLUM_PLAIN_BUNDLE, bundle + "/Spy.so");
    EXPECT_NE(LoadBundleSymbol(bundle, "PlainFunction"), nullptr);
    EXPECT_EQ(LoadBundleSymbol(bundle + "/", "PlainFunction"), LoadBundleSymbol(bundle, "PlainFunction"));
    EXPECT_EQ(LoadBundleSymbol(bundle, "Nothing"), nullptr);
}

TEST(LoadableBundles, AreNoneWithoutCodeOrWithBrokenCode) {
    const TempDir folder;
    EXPECT_EQ(LoadBundleSymbol(folder.File("Spy.framework"), "PlainFunction"), nullptr);
    folder.Write("Spy.framework/Spy.so", "no code");
    EXPECT_EQ(LoadBundleSymbol(folder.File("Spy.framework"), "PlainFunction"), nullptr);
}

TEST(LoadableBundles, AreAbsolutePaths) {
    EXPECT_EQ(LoadBundleSymbol("", "PlainFunction"), nullptr);
    EXPECT_EQ(LoadBundleSymbol("/", "PlainFunction"), nullptr);
    EXPECT_EQ(LoadBundleSymbol("Spy.framework", "PlainFunction"), nullptr);
    EXPECT_EQ(LoadBundleSymbol("/.framework", "PlainFunction"), nullptr);
}

} // namespace
} // namespace vellum::test
