// SPDX-License-Identifier: MIT
#include "values/stack_buffer.hpp"

#include <gtest/gtest.h>

#include <numeric>

namespace vellum {
namespace {

bool LiesInPlace(TStackBuffer<int> &buffer) {
    const auto *start = reinterpret_cast<const char *>(&buffer);
    const auto *data = reinterpret_cast<const char *>(buffer.Get());
    return data >= start && data < start + sizeof buffer;
}

TEST(TStackBuffer, LiesInPlaceUpToItsSize) {
    TStackBuffer<int> empty(0);
    TStackBuffer<int> full(30);
    TStackBuffer<int> large(31);
    EXPECT_TRUE(LiesInPlace(empty) && LiesInPlace(full));
    EXPECT_FALSE(LiesInPlace(large));
}

TEST(TStackBuffer, HasRoomForEveryElement) {
    for (size_t count : {0u, 1u, 30u, 31u, 1000u}) {
        TStackBuffer<int> buffer(count);
        EXPECT_EQ(buffer.Count(), count);
        std::iota(buffer.begin(), buffer.end(), 0);
        for (size_t i = 0; i < count; ++i) EXPECT_EQ(buffer[i], static_cast<int>(i));
        EXPECT_EQ(buffer.Span().size(), count);
    }
}

} // namespace
} // namespace vellum
