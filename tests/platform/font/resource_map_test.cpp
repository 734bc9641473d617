// SPDX-License-Identifier: MIT
// The resources of second forks: well-formed forks, and every way of breaking one.
#include "platform/font/resource_map.hpp"
#include "platform/process/passing_failures.hpp"
#include "support/resource_fork.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <chrono>
#include <random>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr GxTag kType = MakeTag("FOND");

TReading Memory(const Bytes &fork) {
    return TReading(TBytes(fork), nullptr);
}

Bytes TextBytes(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

// What can be read of each resource of a type: "id text", "id -" for what cannot.
std::vector<std::string> Contents(const Bytes &fork, GxTag type = kType) {
    TResourceMap map(Memory(fork));
    std::vector<std::string> contents;
    for (const TResource &resource : map.Find(type)) {
        const auto data = map.Copy(resource);
        const std::string text = data ? std::string(data->View().begin(), data->View().end()) : "-";
        contents.push_back(std::to_string(resource.id) + " " + text);
    }
    return contents;
}

// Resources of three types, mixed; the last of the type that is asked for lies last in the fork.
std::vector<Resource> ThreeTypes() {
    return {{"vers", 1, TextBytes("1.0")},
            {"NFNT", 7, TextBytes("bitmap")},
            {"FOND", 20, TextBytes("second to none")},
            {"NFNT", 8, TextBytes("x")},
            {"FOND", 3, TextBytes("")},
            {"FOND", 65535, TextBytes("last")}};
}

Bytes Overwritten(Bytes fork, size_t at, const Bytes &field) {
    std::copy(field.begin(), field.end(), fork.begin() + static_cast<ptrdiff_t>(at));
    return fork;
}

// Where the rows of the list of types are in a fork whose map is first; the references are behind them.
constexpr size_t kTypeRows = 16 + 28 + 2;

TEST(ResourceMap, FindsTheResourcesOfATypeInTheMapsOrder) {
    for (const ForkOrder order : {ForkOrder::kResourcesFirst, ForkOrder::kMapFirst}) {
        const Bytes fork = ForkOf(ThreeTypes(), order);
        EXPECT_THAT(Contents(fork), ElementsAre("20 second to none", "3 ", "65535 last"));
        EXPECT_THAT(Contents(fork, MakeTag("NFNT")), ElementsAre("7 bitmap", "8 x"));
        EXPECT_THAT(Contents(fork, MakeTag("vers")), ElementsAre("1 1.0"));
        EXPECT_THAT(Contents(fork, MakeTag("POST")), IsEmpty());
    }
}

TEST(ResourceMap, KnowsItsTypes) {
    const Bytes fork = ForkOf(ThreeTypes());
    const TResourceMap map(Memory(fork));
    for (const GxTag type : {MakeTag("vers"), MakeTag("FOND"), MakeTag("NFNT")})
        EXPECT_TRUE(map.HasType(type));
    for (const GxTag type : {MakeTag("POST"), MakeTag("fond"), GxTag{0}}) EXPECT_FALSE(map.HasType(type));
}

TEST(ResourceMap, WithoutTypesHasNoResources) {
    const Bytes fork = ForkOf({});
    const TResourceMap map(Memory(fork));
    EXPECT_FALSE(map.HasType(0));
    EXPECT_THAT(map.Find(kType), IsEmpty());
    EXPECT_THAT(TResourceMap(TReading()).Find(kType), IsEmpty());
}

TEST(ResourceMap, OfATypeWithTheCountForNoneHasNone) {
    const Bytes fork = ForkOf({{"FOND", 1, {}}}, ForkOrder::kMapFirst);
    EXPECT_THAT(Contents(fork), SizeIs(1));
    EXPECT_THAT(Contents(Overwritten(fork, kTypeRows + 4, {0xFF, 0xFF})), IsEmpty());
}

TEST(ResourceMap, JoinsTheRowsOfOneType) {
    Bytes fork = ForkOf(ThreeTypes(), ForkOrder::kMapFirst);
    fork = Overwritten(fork, kTypeRows, TextBytes("NFNT")); // in place of "vers"
    EXPECT_THAT(Contents(fork, MakeTag("NFNT")), ElementsAre("1 1.0", "7 bitmap", "8 x"));
}

TEST(ResourceMap, ReadsOffsetsOf24Bits) {
    Bytes large(70000, 'x');
    const Bytes fork = ForkOf({{"sfnt", 1, large}, {"FOND", 2, TextBytes("behind 64 KiB")}});
    EXPECT_THAT(Contents(fork), ElementsAre("2 behind 64 KiB"));
}

TEST(ResourceMap, LeavesTheAttributesOutOfTheOffset) {
    Bytes fork = ForkOf({{"FOND", 2, TextBytes("content")}}, ForkOrder::kMapFirst);
    fork[kTypeRows + 8 + 4] = 0xFF; // of the only reference, which stands behind the only row
    EXPECT_THAT(Contents(fork), ElementsAre("2 content"));
}

TEST(ResourceMap, DoesNotBelieveTheLengthsInTheHeader) {
    const Bytes fork = ForkOf(ThreeTypes());
    EXPECT_EQ(Contents(Overwritten(fork, 8, Bytes(8, 0))), Contents(fork));
    EXPECT_EQ(Contents(Overwritten(fork, 8, Bytes(8, 0xFF))), Contents(fork));
}

TEST(ResourceMap, HasNothingThatLiesOutsideOfTheFork) {
    const Bytes fork = ForkOf({{"FOND", 2, TextBytes("content")}}, ForkOrder::kMapFirst);
    EXPECT_THAT(Contents(Overwritten(fork, 4, Bytes(4, 0xFF))), IsEmpty());             // the map
    EXPECT_THAT(Contents(Overwritten(fork, 16 + 24, Bytes(2, 0xFF))), IsEmpty());       // the list of types
    EXPECT_THAT(Contents(Overwritten(fork, kTypeRows + 6, Bytes(2, 0xFF))), IsEmpty()); // the references
    EXPECT_THAT(Contents(Overwritten(fork, 0, Bytes(4, 0xFF))), ElementsAre("2 -"));    // the resources
    EXPECT_THAT(Contents(Overwritten(fork, kTypeRows + 8 + 5, Bytes(3, 0xFF))), ElementsAre("2 -"));
    EXPECT_THAT(Contents(Overwritten(fork, fork.size() - 11, {0, 0, 0, 8})),
                ElementsAre("2 -")); // its length
    EXPECT_THAT(Contents(Overwritten(fork, fork.size() - 11, Bytes(4, 0xFF))), ElementsAre("2 -"));
}

TEST(ResourceMap, GivesOfACutForkWhatIsWholeInIt) {
    for (const ForkOrder order : {ForkOrder::kResourcesFirst, ForkOrder::kMapFirst}) {
        const Bytes fork = ForkOf(ThreeTypes(), order);
        const auto whole = Contents(fork);
        size_t most = 0;
        for (size_t size = 0; size < fork.size(); ++size) {
            const auto contents =
                Contents(Bytes(fork.begin(), fork.begin() + static_cast<ptrdiff_t>(size)));
            ASSERT_LE(contents.size(), whole.size()) << size;
            for (size_t i = 0; i < contents.size(); ++i)
                EXPECT_TRUE(contents[i] == whole[i] || contents[i].ends_with(" -"))
                    << size << ' ' << contents[i];
            EXPECT_NE(contents, whole) << size; // what is last in the fork is missed
            most = std::max(most, contents.size());
        }
        EXPECT_GE(most, 2u);
    }
}

TEST(ResourceMap, BelievesSoManyResourcesOfATypeAndNoMore) {
    for (const size_t count : {kMaximumResources - 1, kMaximumResources, kMaximumResources + 1}) {
        std::vector<Resource> resources(count, {"FOND", 1, {}});
        resources.push_back({"vers", 2, {}});
        const Bytes fork = ForkOf(resources);
        const TResourceMap map(Memory(fork));
        EXPECT_THAT(map.Find(kType), SizeIs(std::min(count, kMaximumResources)));
    }
}

TEST(ResourceMap, BelievesNoMoreOfManyRowsOfOneTypeThanOfOne) {
    std::vector<Resource> resources(kMaximumResources / 2, {"FOND", 1, {}});
    resources.insert(resources.end(), kMaximumResources / 2 + 1, {"sfnt", 1, {}});
    const Bytes fork =
        Overwritten(ForkOf(resources, ForkOrder::kMapFirst), kTypeRows + 8, TextBytes("FOND"));
    const TResourceMap map(Memory(fork));
    EXPECT_THAT(map.Find(kType), SizeIs(kMaximumResources));
}

TEST(ResourceMap, ReadsResourcesUpToALimit) {
    for (const uint32_t size : {kMaximumResourceSize, kMaximumResourceSize + 1}) {
        const Bytes fork = ForkOf({{"FOND", 1, Bytes(size)}}, ForkOrder::kMapFirst);
        TResourceMap map(Memory(fork));
        const auto data = map.Copy(map.Find(kType).at(0));
        ASSERT_EQ(data.has_value(), size == kMaximumResourceSize);
        if (data) {
            EXPECT_EQ(data->Size(), size);
        }
    }
}

TEST(ResourceMap, ReadsNoMoreThanTheForkHasHoweverItsResourcesOverlap) {
    // A thousand references to one resource.
    std::vector<Resource> resources(1000, {"FOND", 1, {}});
    resources[0].data = Bytes(30000, 'x');
    Bytes fork = ForkOf(resources, ForkOrder::kMapFirst);
    for (size_t i = 0; i < resources.size(); ++i)
        fork = Overwritten(fork, kTypeRows + 8 + 12 * i + 4, {0, 0, 0, 0});
    TResourceMap map(Memory(fork));
    const auto found = map.Find(kType);
    ASSERT_THAT(found, SizeIs(1000));
    size_t read = 0;
    for (const TResource &resource : found)
        if (const auto data = map.Copy(resource)) read += data->Size();
    EXPECT_GE(read, 30000u);
    EXPECT_LE(read, fork.size());
}

TEST(ResourceMap, OfEightThousandTypesIsReadInBoundedTime) {
    // All rows are of one type and lead to one list of 65,535 references to one resource.
    ByteWriter fork;
    fork.U32(16).U32(16).U32(0).U32(0).Zeros(24).U16(28).U16(0).U16(8190);
    for (int i = 0; i < 8191; ++i) fork.Text("FOND").U16(0xFFFE).U16(0xFFF8);
    fork.Align(4).Zeros(12 * 65536);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) EXPECT_THAT(Contents(fork), SizeIs(kMaximumResources));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(ResourceMap, WithAnyFieldOverwrittenIsHarmless) {
    for (const ForkOrder order : {ForkOrder::kResourcesFirst, ForkOrder::kMapFirst}) {
        const Bytes fork = ForkOf(ThreeTypes(), order);
        for (const Bytes &field : {Bytes{0, 0}, Bytes{0xFF, 0xFF}, Bytes(4, 0), Bytes(4, 0xFF)})
            for (size_t at = 0; at + field.size() <= fork.size(); ++at)
                EXPECT_LE(Contents(Overwritten(fork, at, field)).size(), fork.size() / 12) << at;
    }
}

TEST(ResourceMap, WithBytesChangedAtRandomIsHarmless) {
    std::mt19937 random(6);
    const Bytes fork = ForkOf(ThreeTypes());
    for (int i = 0; i < 20000; ++i) {
        Bytes changed = fork;
        for (size_t n = 1 + random() % 4; n != 0; --n)
            changed[random() % changed.size()] = static_cast<uint8_t>(random());
        ASSERT_LE(Contents(changed).size(), fork.size() / 12);
    }
}

class Fork : public testing::Test {
protected:
    // What the fork holds of a file that is there; "(none)" without one.
    std::string Read(const std::string &path) const {
        TFileIdentity identity;
        TDescriptor descriptor = OpenRegularFile(path.c_str(), &identity);
        const TReading fork = OpenFork(TReading(std::move(descriptor), identity.size), path);
        if (!fork) return "(none)";
        const TBuffer content = fork.Copy(0, SIZE_MAX);
        return std::string(content.View().begin(), content.View().end());
    }

    const TempDir folder_;
};

TEST_F(Fork, IsTheFileBeside) {
    const std::string path = folder_.Write("Foo", "data");
    EXPECT_EQ(Read(path), "(none)");
    folder_.Write(".rsrc/Foo", "fork");
    EXPECT_EQ(Read(path), "fork");
}

TEST_F(Fork, IsTheAttributeBeforeTheFileBeside) {
    const std::string path = folder_.Write("Foo", "data");
    folder_.Write(".rsrc/Foo", "fork");
    // Where the file system keeps no attributes, the file beside is all that there is.
    const bool kept = setxattr(path.c_str(), "user.ResourceFork", "attribute", 9, 0) == 0;
    EXPECT_EQ(Read(path), kept ? "attribute" : "fork");
}

TEST_F(Fork, IsTheFileBesideWhenTheAttributeIsEmpty) {
    const std::string path = folder_.Write("Foo", "data");
    folder_.Write(".rsrc/Foo", "fork");
    setxattr(path.c_str(), "user.ResourceFork", "", 0, 0);
    EXPECT_EQ(Read(path), "fork");
}

TEST_F(Fork, IsARegularFile) {
    const std::string path = folder_.Write("Foo", "data");
    folder_.MakeFolder(".rsrc/Foo");
    EXPECT_EQ(Read(path), "(none)");
    const std::string other = folder_.Write("Bar", "data");
    ASSERT_EQ(mkfifo(folder_.File(".rsrc/Bar").c_str(), 0600), 0); // opening it must not wait
    EXPECT_EQ(Read(other), "(none)");
}

TEST_F(Fork, ThatCanNotBeOpenedForWantOfDescriptorsIsAPassingFailure) {
    const std::string path = folder_.Write("Foo", "data");
    folder_.Write(".rsrc/Foo", "fork");
    TFileIdentity identity;
    TDescriptor descriptor = OpenRegularFile(path.c_str(), &identity);
    const TReading file(std::move(descriptor), identity.size);
    // Asked before as well: a sanitizer that sees these types for the first time opens descriptors.
    ASSERT_TRUE(OpenFork(file, path));
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    const uint32_t failures = tPassingFailures;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const TReading fork = OpenFork(file, path);
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_FALSE(fork);
    EXPECT_NE(tPassingFailures, failures);
}

} // namespace
} // namespace vellum::test
