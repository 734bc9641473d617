// SPDX-License-Identifier: MIT
#include "ipc/client/stubs.hpp"

#include "platform/port/ports.hpp"

#include <time.h>

#include <atomic>
#include <chrono>
#include <utility>

namespace vellum {

namespace {

using Arguments = std::initializer_list<RequestArgument>;

// After these the reply port has nothing to get any more, and is kept.
bool KeepsReplyPort(MachCode code) noexcept {
    return code == kMachSendInvalidData || code == kMachSendInvalidDestination ||
           code == kMachSendInvalidHeader;
}

// How long a change is waited for, which may be one of many thousand fonts, or be behind another.
constexpr long kChangePatience = 60; // seconds

bool IsChange(MessageID id) noexcept {
    switch (id) {
    case kRegisterFonts:
    case kUnregisterFonts:
    case kRegisterFontDirectory:
    case kUnregisterFontDirectory:
    case kEnableFont:
    case kDisableFont:
    case kEnableFonts:
    case kDisableFonts:
        return true;
    default:
        return false;
    }
}

// A reply that is none may be another question's: the next question has a connection of its own.
MachCode Read(const MessageRow &row, PortName reply_port, const IncomingMessage &message,
              ReceivedReply &reply) {
    const MachCode code = ReadReply(row, message, reply);
    if (code == kMachTypeError || code == kMachReplyMismatch) mig_dealloc_reply_port(reply_port);
    return code;
}

MachCode SendOnce(MessageID id, PortName server, Arguments arguments, IncomingMessage &message,
                  ReceivedReply &reply) {
    const MessageRow &row = *FindMessageRow(id);
    const PortName reply_port = mig_get_reply_port();
    const OutgoingMessage request = WriteRequest(row, server, reply_port, arguments);
    const long patience = IsChange(id) ? kChangePatience : kReplyPatience;
    const MachCode code = request.IsWhole() ? mach_msg(request, message, patience) : kMachSendInvalidData;
    if (code == kMachSuccess) return Read(row, reply_port, message, reply);
    if (!KeepsReplyPort(code)) mig_dealloc_reply_port(reply_port);
    return code;
}

using Clock = std::chrono::steady_clock;

// How long this process asks a server again that keeps saying that it cannot answer yet: it is reading all
// fonts, perhaps from a slow disk.
constexpr std::chrono::seconds kStartPatience(60);
constinit std::atomic<Clock::rep> sStartEnds{0}; // by that clock; 0 while there are answers

// True as long as the server may still be starting. A pause keeps a false one from being asked without end.
bool MayAskAgain() noexcept {
    const Clock::rep now = Clock::now().time_since_epoch().count();
    Clock::rep end = 0;
    const Clock::rep latest = now + Clock::duration(kStartPatience).count();
    if (sStartEnds.compare_exchange_strong(end, latest, std::memory_order_relaxed)) end = latest;
    const timespec pause = {0, 1'000'000};
    ::nanosleep(&pause, nullptr);
    return now < end;
}

MachCode Send(MessageID id, PortName server, Arguments arguments, IncomingMessage &message,
              ReceivedReply &reply) {
    MachCode code;
    do code = SendOnce(id, server, arguments, message, reply);
    while (code == kMachAskAgain && MayAskAgain());
    if (code != kMachAskAgain && sStartEnds.load(std::memory_order_relaxed) != 0)
        sStartEnds.store(0, std::memory_order_relaxed);
    return code;
}

MachCode SendForNothing(MessageID id, PortName server, Arguments arguments) {
    IncomingMessage message;
    ReceivedReply reply;
    return Send(id, server, arguments, message, reply);
}

MachCode SendForWord(MessageID id, PortName server, Arguments arguments, uint32_t &word) {
    IncomingMessage message;
    ReceivedReply reply;
    const MachCode code = Send(id, server, arguments, message, reply);
    if (code == kMachSuccess) word = reply.word;
    return code;
}

MachCode SendForText(MessageID id, PortName server, Arguments arguments, std::string &text) {
    IncomingMessage message;
    ReceivedReply reply;
    const MachCode code = Send(id, server, arguments, message, reply);
    if (code == kMachSuccess) text = reply.text;
    return code;
}

MachCode SendForMemory(MessageID id, PortName server, Arguments arguments, ReplyMemory &memory) {
    IncomingMessage message;
    ReceivedReply reply;
    const MachCode code = Send(id, server, arguments, message, reply);
    if (code == kMachSuccess) memory = {reply.memory, std::move(message.mappings[0])};
    return code;
}

MachCode SendBatch(MessageID id, PortName server, Arguments arguments, BatchReply &batch) {
    IncomingMessage message;
    ReceivedReply reply;
    const MachCode code = Send(id, server, arguments, message, reply);
    if (code == kMachSuccess) batch = {{reply.memory, std::move(message.mappings[0])}, reply.word};
    return code;
}

} // namespace

MachCode VLSendRendezvous(PortName server, ReplyMemory &common_fonts) {
    return SendForMemory(kRendezvous, server, {}, common_fonts);
}

MachCode VLSendAddFontProvider(PortName server, std::string_view uuid) {
    return SendForNothing(kAddFontProvider, server, {uuid});
}

MachCode VLSendRemoveFontProvider(PortName server, std::string_view uuid) {
    return SendForNothing(kRemoveFontProvider, server, {uuid});
}

MachCode VLSendGetFontProviders(PortName server, ReplyMemory &providers) {
    return SendForMemory(kGetFontProviders, server, {}, providers);
}

MachCode VLSendGetFontScope(PortName server, std::string_view url, uint32_t &scope) {
    return SendForWord(kGetFontScope, server, {url}, scope);
}

MachCode VLSendRegisterFonts(PortName server, OutgoingMemory registration, uint32_t scope, uint32_t options,
                             BatchReply &reply) {
    return SendBatch(kRegisterFonts, server, {std::move(registration), scope, options}, reply);
}

MachCode VLSendUnregisterFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply) {
    return SendBatch(kUnregisterFonts, server, {std::move(urls), scope}, reply);
}

MachCode VLSendRegisterFontDirectory(PortName server, std::string_view url, OutgoingMemory bookmark,
                                     uint32_t flags, uint32_t options, uint32_t scope, uint32_t &result) {
    return SendForWord(kRegisterFontDirectory, server, {url, std::move(bookmark), flags, options, scope},
                       result);
}

MachCode VLSendUnregisterFontDirectory(PortName server, std::string_view url, uint32_t scope,
                                       uint32_t &result) {
    return SendForWord(kUnregisterFontDirectory, server, {url, scope}, result);
}

MachCode VLSendEnableFont(PortName server, std::string_view url, uint32_t &result) {
    return SendForWord(kEnableFont, server, {url}, result);
}

MachCode VLSendDisableFont(PortName server, std::string_view url, uint32_t &result) {
    return SendForWord(kDisableFont, server, {url}, result);
}

MachCode VLSendCopyAvailableFontNames(PortName server, uint32_t scope, ReplyMemory &names) {
    return SendForMemory(kCopyAvailableFontNames, server, {scope}, names);
}

MachCode VLSendCopyAvailableFontFamilyNames(PortName server, uint32_t scope, ReplyMemory &names) {
    return SendForMemory(kCopyAvailableFontFamilyNames, server, {scope}, names);
}

MachCode VLSendCopyAvailableFonts(PortName server, uint32_t scope, ReplyMemory &urls) {
    return SendForMemory(kCopyAvailableFonts, server, {scope}, urls);
}

MachCode VLSendCopyFontWithName(PortName server, std::string_view name, uint32_t scope, std::string &url) {
    return SendForText(kCopyFontWithName, server, {name, scope}, url);
}

MachCode VLSendCopyFontsMatchingRequest(PortName server, uint32_t scope, OutgoingMemory request,
                                        ReplyMemory &urls) {
    return SendForMemory(kCopyFontsMatchingRequest, server, {scope, std::move(request)}, urls);
}

MachCode VLSendCopyPropertiesForFontsMatchingRequest(PortName server, OutgoingMemory request,
                                                     OutgoingMemory keys, uint32_t scope,
                                                     ReplyMemory &properties) {
    return SendForMemory(kCopyPropertiesForFontsMatchingRequest, server,
                         {std::move(request), std::move(keys), scope}, properties);
}

MachCode VLSendCopyPropertiesForFontMatchingRequest(PortName server, OutgoingMemory request,
                                                    OutgoingMemory keys, uint32_t scope,
                                                    ReplyMemory &properties) {
    return SendForMemory(kCopyPropertiesForFontMatchingRequest, server,
                         {std::move(request), std::move(keys), scope}, properties);
}

MachCode VLSendCopyPropertiesForAllFonts(PortName server, OutgoingMemory keys, uint32_t scope,
                                         ReplyMemory &properties) {
    return SendForMemory(kCopyPropertiesForAllFonts, server, {std::move(keys), scope}, properties);
}

MachCode VLSendCopyPropertiesForFonts(PortName server, OutgoingMemory urls, OutgoingMemory keys,
                                      ReplyMemory &properties) {
    return SendForMemory(kCopyPropertiesForFonts, server, {std::move(urls), std::move(keys)}, properties);
}

MachCode VLSendCopyPropertyForFonts(PortName server, OutgoingMemory urls, std::string_view key,
                                    ReplyMemory &values) {
    return SendForMemory(kCopyPropertyForFonts, server, {std::move(urls), key}, values);
}

MachCode VLSendCopyPropertiesForFont(PortName server, std::string_view url, OutgoingMemory keys,
                                     ReplyMemory &properties) {
    return SendForMemory(kCopyPropertiesForFont, server, {url, std::move(keys)}, properties);
}

MachCode VLSendCopyFontForCharacter(PortName server, uint32_t character, uint32_t options,
                                    uint32_t reserved, std::string &url) {
    return SendForText(kCopyFontForCharacter, server, {character, options, reserved}, url);
}

MachCode VLSendEnableFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply) {
    return SendBatch(kEnableFonts, server, {std::move(urls), scope}, reply);
}

MachCode VLSendDisableFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply) {
    return SendBatch(kDisableFonts, server, {std::move(urls), scope}, reply);
}

MachCode VLSendCopyFamilyNamesForLanguage(PortName server, std::string_view language, uint32_t options,
                                          uint32_t reserved, ReplyMemory &names) {
    return SendForMemory(kCopyFamilyNamesForLanguage, server, {language, options, reserved}, names);
}

MachCode VLSendExperimentalDataFunnel(PortName server, OutgoingMemory query, uint32_t scope,
                                      ReplyMemory &answer) {
    return SendForMemory(kExperimentalDataFunnel, server, {std::move(query), scope}, answer);
}

} // namespace vellum
