// SPDX-License-Identifier: MIT
// Requests and replies, byte for byte: numbers stand as this processor has them, in the order of the bytes.
#include "../encoding/encoded.hpp"
#include "ipc/messages/message_codec.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vellum::test {
namespace {

Bytes BytesOf(const OutgoingMessage &message) {
    return Bytes(message.Bytes().begin(), message.Bytes().end());
}

OutgoingMemory Memory(std::string_view text) {
    return {std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(text.data(), text.size())),
            text.size()};
}

const MessageRow &Row(MessageID id) {
    return *FindMessageRow(id);
}

// The message as it arrives; `bytes` must outlive it.
IncomingMessage Incoming(const Bytes &bytes, std::initializer_list<std::string_view> memory = {}) {
    IncomingMessage message;
    message.bytes = bytes;
    for (const std::string_view text : memory)
        message.memory[message.memory_count++] = {reinterpret_cast<const uint8_t *>(text.data()),
                                                  text.size()};
    return message;
}

// ---- requests ----

TEST(Requests, OfNothingAreAHeaderAndHowNumbersAreWritten) {
    EXPECT_EQ(BytesOf(WriteRequest(Row(kRendezvous), 7, 9, {})),
              Hex("13150000 20000000 07000000 09000000 00000000 c8320000 0000000001000000"));
}

TEST(Requests, HaveWordsBehindThat) {
    EXPECT_EQ(BytesOf(WriteRequest(Row(kCopyFontForCharacter), 7, 9, {0x1F600u, 2u, 3u})),
              Hex("13150000 2c000000 07000000 09000000 00000000 e2320000 0000000001000000"
                  "00f60100 02000000 03000000"));
}

TEST(Requests, HaveTextsWithOffsetCountAndPadding) {
    EXPECT_EQ(BytesOf(WriteRequest(Row(kCopyFontWithName), 7, 9, {std::string_view("Abcd"), 6u})),
              Hex("13150000 34000000 07000000 09000000 00000000 d9320000 0000000001000000"
                  "00000000 05000000 41626364 00000000 06000000"));
}

TEST(Requests, HaveUUIDsOfAFixedLength) {
    const std::string uuid = "01234567-89AB-CDEF-0123-456789ABCDEF";
    EXPECT_EQ(
        BytesOf(WriteRequest(Row(kAddFontProvider), 7, 9, {std::string_view(uuid)})),
        Hex("13150000 48000000 07000000 09000000 00000000 c9320000 0000000001000000"
            "30313233 34353637 2d383941 422d4344 45462d30 3132332d 34353637 38394142 43444546 00000000"));
}

TEST(Requests, HaveADescriptorForMemoryAndItsLengthInItsPlace) {
    EXPECT_EQ(BytesOf(WriteRequest(Row(kRegisterFonts), 7, 9, {Memory("abc"), 2u, 0x400u})),
              Hex("13150080 40000000 07000000 09000000 00000000 cd320000 01000000"
                  "0000000000000000 01010001 03000000 0000000001000000"
                  "03000000 02000000 00040000"));
}

TEST(Requests, HaveTheDescriptorsInTheOrderOfTheArguments) {
    EXPECT_EQ(BytesOf(WriteRequest(Row(kCopyPropertiesForFonts), 7, 9, {Memory("ab"), Memory("c")})),
              Hex("13150080 4c000000 07000000 09000000 00000000 de320000 02000000"
                  "0000000000000000 01010001 02000000 0000000000000000 01010001 01000000 0000000001000000"
                  "02000000 01000000"));
}

TEST(Requests, AreNotSentWithATextThatIsTooLong) {
    const std::string fits(1023, 'n'), longer(1024, 'n'), url(2047, 'u'), longer_url(2048, 'u');
    EXPECT_TRUE(WriteRequest(Row(kCopyFontWithName), 7, 9, {std::string_view(fits), 6u}).IsWhole());
    EXPECT_FALSE(WriteRequest(Row(kCopyFontWithName), 7, 9, {std::string_view(longer), 6u}).IsWhole());
    EXPECT_TRUE(WriteRequest(Row(kEnableFont), 7, 9, {std::string_view(url)}).IsWhole());
    EXPECT_FALSE(WriteRequest(Row(kEnableFont), 7, 9, {std::string_view(longer_url)}).IsWhole());
}

TEST(Requests, AreReadBack) {
    const Bytes bytes =
        BytesOf(WriteRequest(Row(kRegisterFontDirectory), 7, 9,
                             {std::string_view("file:///d"), Memory("mark"), 1u, 2u, 0x4002u}));
    ReceivedArguments arguments;
    ASSERT_TRUE(ReadRequest(Row(kRegisterFontDirectory), Incoming(bytes, {"mark"}), arguments));
    EXPECT_EQ(arguments[0].text, "file:///d");
    EXPECT_EQ(arguments[1].memory.size(), 4u);
    EXPECT_EQ(arguments[2].word, 1u);
    EXPECT_EQ(arguments[3].word, 2u);
    EXPECT_EQ(arguments[4].word, 0x4002u);
}

TEST(Requests, AreRefusedWhenAByteIsMissingOrTooMany) {
    const Bytes whole = BytesOf(WriteRequest(Row(kCopyFontWithName), 7, 9, {std::string_view("Abcd"), 6u}));
    ReceivedArguments arguments;
    EXPECT_TRUE(ReadRequest(Row(kCopyFontWithName), Incoming(whole), arguments));
    for (size_t size = sizeof(MachHeader); size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(ReadRequest(Row(kCopyFontWithName), Incoming(cut), arguments)) << size;
    }
    Bytes more = whole;
    more.push_back(0);
    EXPECT_FALSE(ReadRequest(Row(kCopyFontWithName), Incoming(more), arguments));
}

TEST(Requests, AreRefusedWithACountBeyondTheTextsLimitOrWithoutItsZero) {
    const std::string url(2047, 'u');
    Bytes bytes = BytesOf(WriteRequest(Row(kEnableFont), 7, 9, {std::string_view(url)}));
    ReceivedArguments arguments;
    EXPECT_TRUE(ReadRequest(Row(kEnableFont), Incoming(bytes), arguments));
    bytes.back() = 'x'; // in place of the zero
    EXPECT_FALSE(ReadRequest(Row(kEnableFont), Incoming(bytes), arguments));
    bytes.back() = 0;
    bytes[37] = 0x08, bytes[36] = 0x01; // 2,049
    EXPECT_FALSE(ReadRequest(Row(kEnableFont), Incoming(bytes), arguments));
}

TEST(Requests, AreRefusedWithAnotherNumberOfDescriptors) {
    const Bytes bytes = BytesOf(WriteRequest(Row(kUnregisterFonts), 7, 9, {Memory("abc"), 2u}));
    ReceivedArguments arguments;
    EXPECT_TRUE(ReadRequest(Row(kUnregisterFonts), Incoming(bytes, {"abc"}), arguments));
    EXPECT_FALSE(ReadRequest(Row(kUnregisterFonts), Incoming(bytes), arguments));
    EXPECT_FALSE(ReadRequest(Row(kUnregisterFonts), Incoming(bytes, {"abcd"}), arguments));
    EXPECT_FALSE(ReadRequest(Row(kUnregisterFonts), Incoming(bytes, {"abc", "d"}), arguments));
}

// ---- replies ----

MachHeader RequestHeader(MessageID id) {
    return {kMachSimpleBits, 32, 7, 9, 0, id};
}

OutgoingReply Reply(uint32_t word, std::string text = {}, OutgoingMemory memory = {}) {
    OutgoingReply reply;
    reply.word = word;
    reply.text = std::move(text);
    reply.memory = std::move(memory);
    return reply;
}

TEST(Replies, OfAWordHave40Bytes) {
    EXPECT_EQ(
        BytesOf(WriteReply(&Row(kGetFontScope), RequestHeader(kGetFontScope), Reply(6))),
        Hex("12000000 28000000 09000000 00000000 00000000 30330000 0000000001000000 00000000 06000000"));
}

TEST(Replies, OfACodeHave36Bytes) {
    OutgoingReply refusal;
    refusal.code = kMachBadID;
    EXPECT_EQ(BytesOf(WriteReply(nullptr, RequestHeader(kGetFontScope), refusal)),
              Hex("12000000 24000000 09000000 00000000 00000000 30330000 0000000001000000 d1feffff"));
}

TEST(Replies, OfMemoryHave56Bytes) {
    EXPECT_EQ(BytesOf(WriteReply(&Row(kCopyAvailableFonts), RequestHeader(kCopyAvailableFonts),
                                 Reply(0, {}, Memory("abc")))),
              Hex("12000080 38000000 09000000 00000000 00000000 3c330000 01000000"
                  "0000000000000000 01010001 03000000 0000000001000000 03000000"));
}

TEST(Replies, OfChangesOfManyHave60Bytes) {
    EXPECT_EQ(
        BytesOf(WriteReply(&Row(kEnableFonts), RequestHeader(kEnableFonts), Reply(1, {}, Memory("abc")))),
        Hex("12000080 3c000000 09000000 00000000 00000000 47330000 01000000"
            "0000000000000000 01010001 03000000 0000000001000000 03000000 01000000"));
}

TEST(Replies, OfATextHave44BytesAndTheText) {
    EXPECT_EQ(
        BytesOf(WriteReply(&Row(kCopyFontWithName), RequestHeader(kCopyFontWithName), Reply(0, "url"))),
        Hex("12000000 30000000 09000000 00000000 00000000 3d330000 0000000001000000 00000000"
            "00000000 04000000 75726c00"));
}

TEST(Replies, AreReadBack) {
    const Bytes text =
        BytesOf(WriteReply(&Row(kCopyFontWithName), RequestHeader(kCopyFontWithName), Reply(0, "url")));
    ReceivedReply reply;
    ASSERT_EQ(ReadReply(Row(kCopyFontWithName), Incoming(text), reply), kMachSuccess);
    EXPECT_EQ(reply.text, "url");
    const Bytes many =
        BytesOf(WriteReply(&Row(kDisableFonts), RequestHeader(kDisableFonts), Reply(5, {}, Memory("m"))));
    ASSERT_EQ(ReadReply(Row(kDisableFonts), Incoming(many, {"m"}), reply), kMachSuccess);
    EXPECT_EQ(reply.word, 5u);
    EXPECT_EQ(reply.memory.size(), 1u);
}

TEST(Replies, WithACodeOfTheServerPassItThrough) {
    OutgoingReply refusal;
    refusal.code = 4;
    for (const MessageID id :
         {kGetFontScope, kCopyAvailableFonts, kEnableFonts, kCopyFontWithName, kAddFontProvider}) {
        const Bytes bytes = BytesOf(WriteReply(&Row(id), RequestHeader(id), refusal));
        ReceivedReply reply;
        EXPECT_EQ(ReadReply(Row(id), Incoming(bytes), reply), 4u) << id;
    }
}

TEST(Replies, OfAServerThatDiedSaySo) {
    OutgoingMessage notification;
    notification.Append(MachHeader());
    notification.SetHeader({kMachReplyBits, 0, 0, 9, 0, kMachSendOnceNotification});
    const Bytes bytes = BytesOf(notification);
    ReceivedReply reply;
    EXPECT_EQ(static_cast<int32_t>(ReadReply(Row(kGetFontScope), Incoming(bytes), reply)), -308);
}

TEST(Replies, ToAnotherRequestAreAMismatch) {
    const Bytes bytes = BytesOf(WriteReply(&Row(kEnableFont), RequestHeader(kEnableFont), Reply(1)));
    ReceivedReply reply;
    EXPECT_EQ(static_cast<int32_t>(ReadReply(Row(kDisableFont), Incoming(bytes), reply)), -301);
}

TEST(Replies, OfAnotherShapeAreATypeError) {
    const auto code_for = [](MessageID asked, const Bytes &bytes,
                             std::initializer_list<std::string_view> memory) {
        ReceivedReply reply;
        return static_cast<int32_t>(ReadReply(Row(asked), Incoming(bytes, memory), reply));
    };
    Bytes word = BytesOf(WriteReply(&Row(kGetFontScope), RequestHeader(kGetFontScope), Reply(6)));
    word.push_back(0);
    EXPECT_EQ(code_for(kGetFontScope, word, {}), -300); // too long
    const OutgoingReply done;
    EXPECT_EQ(code_for(kGetFontScope, BytesOf(WriteReply(nullptr, RequestHeader(kGetFontScope), done)), {}),
              -300);
    Bytes memory =
        BytesOf(WriteReply(&Row(kEnableFonts), RequestHeader(kEnableFonts), Reply(1, {}, Memory("abc"))));
    EXPECT_EQ(code_for(kEnableFonts, memory, {"abcd"}), -300); // its length says otherwise
    memory.resize(56);
    EXPECT_EQ(code_for(kEnableFonts, memory, {"abc"}), -300); // without the result
}

// ---- the rows ----

TEST(MessageRows, HaveEachMessageOnce) {
    int32_t last = 0;
    for (const MessageRow &row : kMessageRows) {
        EXPECT_GT(row.id, last);
        last = row.id;
    }
    EXPECT_EQ(std::size(kMessageRows), 27u);
    for (const int32_t id : {12999, 13009, 13012, 13013, 13025, 13031})
        EXPECT_FALSE(FindMessageRow(id)) << id;
}

} // namespace
} // namespace vellum::test
