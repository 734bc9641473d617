// SPDX-License-Identifier: MIT
// The user of every test of this program reads French, and would rather read Swedish, German or French than
// anything else. A process learns this once, from whoever asks first.
#include <gtest/gtest.h>

#include <cstdlib>

namespace vellum::test {
namespace {

class FrenchReader : public ::testing::Environment {
public:
    void SetUp() override {
        setenv("LC_ALL", "fr_FR.UTF-8", 1);
        setenv("LANGUAGE", "sv:de:fr", 1);
    }
};

const ::testing::Environment *const kReader = ::testing::AddGlobalTestEnvironment(new FrenchReader);

} // namespace
} // namespace vellum::test
