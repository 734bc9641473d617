// SPDX-License-Identifier: MIT
// Suitcases that are broken in every way: what they name is a beginning of what they named whole, or at
// least lies in their folder, and takes bounded time. The bounds leave room for sanitizers.
#include "platform/font/resource_map.hpp"
#include "suitcases.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace vellum::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

Bytes Cut(const Bytes &bytes, size_t size) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
}

Bytes Overwritten(Bytes bytes, size_t at, const Bytes &field) {
    std::copy(field.begin(), field.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
    return bytes;
}

bool IsBeginning(const Names &beginning, const Names &whole) {
    return beginning.size() <= whole.size() &&
           std::equal(beginning.begin(), beginning.end(), whole.begin());
}

TEST(FilesOfABrokenSuitcase, EndAtAFamilyThatIsCut) {
    const Bytes whole = FamilyResource(FourStyles("Garamond"));
    const Names files = {"Garam", "GaramBol", "GaramIta", "GaramBolIta"};
    EXPECT_EQ(FilesOf(ForkOf({{"FOND", 1, whole}})), files);
    for (size_t size = 0; size < whole.size(); ++size) {
        const Resource cut = {"FOND", 1, Cut(whole, size)};
        Names found = FilesOf(ForkOf({Family(Face("First")), cut, Family(Face("Next"))}));
        ASSERT_FALSE(found.empty());
        EXPECT_EQ(found.front(), "First");
        found.erase(found.begin());
        EXPECT_TRUE(IsBeginning(found, files)) << size;
        EXPECT_LT(found.size(), files.size()) << size;
    }
}

TEST(FilesOfABrokenSuitcase, AreABeginningOfAllWhenTheForkIsCut) {
    for (const ForkOrder order : {ForkOrder::kResourcesFirst, ForkOrder::kMapFirst}) {
        const Bytes whole = TwoFamilies(order);
        size_t most = 0;
        for (size_t size = 0; size < whole.size(); ++size) {
            const Names found = FilesOf(Cut(whole, size));
            EXPECT_TRUE(IsBeginning(found, kTwoFamilies)) << size;
            most = std::max(most, found.size());
        }
        EXPECT_GE(most, 4u);
    }
}

TEST(FilesOfABrokenSuitcase, StayInTheFolderWithAnyFieldOverwritten) {
    const Bytes whole = TwoFamilies();
    for (const Bytes &field : {Bytes{0, 0}, Bytes{0xFF, 0xFF}, Bytes(4, 0), Bytes(4, 0xFF)})
        for (size_t at = 0; at + field.size() <= whole.size(); ++at)
            EXPECT_LE(FilesOf(Overwritten(whole, at, field)).size(), kMaximumSuitcaseEntries) << at;
}

TEST(FilesOfABrokenSuitcase, StayInTheFolderWhereverItsPartsSeemToLie) {
    const Bytes whole = TwoFamilies();
    const size_t family = 16 + 4 + 3 + 4;                          // behind the header and the version
    for (const size_t place : {size_t{0}, size_t{4}, family + 24}) // resources, map, table of styles
        for (uint32_t offset = 0; offset <= whole.size(); ++offset)
            EXPECT_LE(FilesOf(Overwritten(whole, place, ByteWriter().U32(offset))).size(),
                      2 * whole.size() / 6)
                << offset;
}

TEST(FilesOfABrokenSuitcase, StayInTheFolderWithBytesChangedAtRandom) {
    std::mt19937 random(1984);
    FamilyFields family = FourStyles("Foo");
    family.entries = {{0, 0, 1}, {0, 3, 2}};
    const Bytes whole = ForkOf({{"vers", 1, {1}}, Family(family)});
    size_t found = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100000; ++i) {
        Bytes changed = whole;
        for (size_t n = 1 + random() % 4; n != 0; --n)
            changed[random() % changed.size()] = static_cast<uint8_t>(random());
        found += FilesOf(changed).size();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
    EXPECT_GT(found, 50000u); // many changes leave the suitcase readable
}

TEST(FilesOfABrokenSuitcase, AreSoManyAndNoMore) {
    for (const size_t count :
         {kMaximumSuitcaseEntries - 1, kMaximumSuitcaseEntries, kMaximumSuitcaseEntries + 1}) {
        FamilyFields family = Face("Foo");
        family.entries.resize(count - 1, {12, 0, 1});
        const Names files = FilesOf(ForkOf({Family(Face("First")), Family(family), Family(Face("Next"))}));
        EXPECT_THAT(files, SizeIs(std::min(count + 1, kMaximumSuitcaseEntries)));
        EXPECT_EQ(files.back(), count < kMaximumSuitcaseEntries ? "Next" : "Foo");
    }
}

TEST(FilesOfABrokenSuitcase, ComeInBoundedTimeWhenAllFamiliesAreTheSame65535Entries) {
    FamilyFields family = {{}, Names(255, std::string(255, '\1')), {{0, 2}}};
    family.strings[0] = ""; // which can be added without an end
    family.entries.resize(65535, {0, 0, 1});
    std::vector<Resource> resources(kMaximumResources, {"FOND", 1, {}});
    resources[0].data = FamilyResource(family);
    Bytes fork = ForkOf(resources, ForkOrder::kMapFirst);
    for (size_t i = 0; i < resources.size(); ++i) { // they all lie where the first does
        const size_t reference = 16 + 28 + 2 + 8 + 12 * i;
        std::fill_n(fork.begin() + static_cast<ptrdiff_t>(reference) + 4, 4, uint8_t{0});
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(FilesOf(fork), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

} // namespace
} // namespace vellum::test
