// SPDX-License-Identifier: MIT
// Long replies that come again give the value that was read from them before.
#include "frame/registry/generation_seed.hpp"
#include "ipc/client/kept_replies.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// An array of so many texts, all beginning with `prefix`, as it travels.
OutgoingMemory Texts(const std::string &prefix, int count) {
    std::vector<Ref<const ValString>> texts;
    std::vector<const void *> items;
    for (int i = 0; i < count; ++i) {
        texts.push_back(String(prefix + std::to_string(i)));
        items.push_back(texts.back().Get());
    }
    return Flattened(Adopt(ValArrayCreate(items.data(), items.size())).Get()).value();
}

ReplyMemory InBuffer(std::span<const uint8_t> bytes) {
    return {bytes, {}};
}

ReplyMemory InPages(const OutgoingMemory &memory) {
    auto mapping = MemoryMapping::Create(memory.block->Descriptor(), memory.length).value();
    const auto bytes = mapping.Bytes();
    return {bytes, std::move(mapping)};
}

size_t CountOf(const Ref<const void> &value) {
    return ValArrayGetCount(static_cast<const ValArray *>(value.Get()));
}

constexpr int kLong = 1000, kInPages = 20'000;

TEST(KeptReplies, GiveTheSameValueForTheSameBytes) {
    KeptReplies replies;
    const auto memory = Texts("name ", kLong);
    const std::vector<uint8_t> again(memory.Bytes().begin(), memory.Bytes().end());
    const auto first = replies.Read(InBuffer(memory.Bytes()));
    EXPECT_EQ(CountOf(first), size_t{kLong});
    EXPECT_EQ(replies.Read(InBuffer(again)).Get(), first.Get());
}

TEST(KeptReplies, KeepTheBytesThemselvesWhereABufferIsUsedAgain) {
    KeptReplies replies;
    const auto memory = Texts("name ", kLong), other = Texts("nami ", kLong);
    std::vector<uint8_t> buffer(memory.Bytes().begin(), memory.Bytes().end());
    const auto first = replies.Read(InBuffer(buffer));
    ASSERT_EQ(memory.length, other.length);
    std::ranges::copy(other.Bytes(), buffer.begin());
    const auto second = replies.Read(InBuffer(buffer));
    EXPECT_NE(second.Get(), first.Get());
    EXPECT_FALSE(ValEqual(second.Get(), first.Get()));
    EXPECT_EQ(replies.Read(InBuffer(memory.Bytes())).Get(), first.Get());
}

TEST(KeptReplies, GiveTheSameValueForTheSamePages) {
    KeptReplies replies;
    const auto memory = Texts("name ", kInPages);
    ASSERT_GE(memory.block->Descriptor(), 0);
    const auto first = replies.Read(InPages(memory));
    EXPECT_EQ(CountOf(first), size_t{kInPages});
    EXPECT_EQ(replies.Read(InPages(memory)).Get(), first.Get());
}

TEST(KeptReplies, TellPagesOfTheSameSizeApart) {
    KeptReplies replies;
    const auto memory = Texts("name ", kInPages), other = Texts("nami ", kInPages);
    ASSERT_EQ(memory.length, other.length);
    const auto first = replies.Read(InPages(memory));
    EXPECT_FALSE(ValEqual(replies.Read(InPages(other)).Get(), first.Get()));
}

// The file lives on in the mapping that is kept, so that no new file is taken for it.
TEST(KeptReplies, KeepPagesThatTheServerHasLetGo) {
    KeptReplies replies;
    auto memory = Texts("name ", kInPages);
    const auto first = replies.Read(InPages(memory));
    memory = {};
    for (int i = 0; i < 20; ++i) {
        const auto value = replies.Read(InPages(Texts("nam" + std::to_string(i), kInPages)));
        ASSERT_FALSE(ValEqual(value.Get(), first.Get())) << i;
    }
}

TEST(KeptReplies, AreForgottenWhenAFontChanges) {
    KeptReplies replies;
    const auto memory = Texts("name ", kLong);
    const auto first = replies.Read(InBuffer(memory.Bytes()));
    TGenerationSeed::UpdateGeneration();
    const auto second = replies.Read(InBuffer(memory.Bytes()));
    EXPECT_NE(second.Get(), first.Get());
    EXPECT_TRUE(ValEqual(second.Get(), first.Get()));
}

TEST(KeptReplies, GiveWayToNewerOnes) {
    KeptReplies replies;
    const auto memory = Texts("name ", kLong);
    const auto first = replies.Read(InBuffer(memory.Bytes()));
    for (int i = 1; i < 4; ++i) replies.Read(InBuffer(Texts(std::to_string(i), kLong).Bytes()));
    EXPECT_EQ(replies.Read(InBuffer(memory.Bytes())).Get(), first.Get());
    replies.Read(InBuffer(Texts("4", kLong).Bytes()));
    EXPECT_NE(replies.Read(InBuffer(memory.Bytes())).Get(), first.Get());
}

TEST(KeptReplies, AreReadAnewWhenTheyAreShort) {
    KeptReplies replies;
    const auto memory = Texts("name ", 3);
    const auto bytes = memory.Bytes().first(memory.length);
    const auto first = replies.Read(InBuffer(bytes)), second = replies.Read(InBuffer(bytes));
    EXPECT_NE(second.Get(), first.Get());
    EXPECT_TRUE(ValEqual(second.Get(), first.Get()));
}

TEST(KeptReplies, GiveNothingForBytesThatAreNoValue) {
    KeptReplies replies;
    const std::vector<uint8_t> nonsense(5000, 0xEE);
    EXPECT_FALSE(replies.Read(InBuffer(nonsense)));
    EXPECT_FALSE(replies.Read(InBuffer(nonsense)));
    EXPECT_FALSE(replies.Read({}));
}

} // namespace
} // namespace vellum::test
