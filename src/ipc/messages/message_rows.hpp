// SPDX-License-Identifier: MIT
// The messages that a process sends to the font server: one row each, which both ends walk.
//
// To add one: a row here, a stub in ipc/client/stubs, an answer in server/answers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vellum {

// The service that answers.
constexpr char kFontServerName[] = "com.orrery.FontServer";

enum MessageID : int32_t {
    kRendezvous = 13000,
    kAddFontProvider = 13001,
    kRemoveFontProvider = 13002,
    kGetFontProviders = 13003,
    kGetFontScope = 13004,
    kRegisterFonts = 13005,
    kUnregisterFonts = 13006,
    kRegisterFontDirectory = 13007,
    kUnregisterFontDirectory = 13008,
    kEnableFont = 13010,
    kDisableFont = 13011,
    kCopyAvailableFontNames = 13014,
    kCopyAvailableFontFamilyNames = 13015,
    kCopyAvailableFonts = 13016,
    kCopyFontWithName = 13017,
    kCopyFontsMatchingRequest = 13018,
    kCopyPropertiesForFontsMatchingRequest = 13019,
    kCopyPropertiesForFontMatchingRequest = 13020,
    kCopyPropertiesForAllFonts = 13021,
    kCopyPropertiesForFonts = 13022,
    kCopyPropertyForFonts = 13023,
    kCopyPropertiesForFont = 13024,
    kCopyFontForCharacter = 13026,
    kEnableFonts = 13027,
    kDisableFonts = 13028,
    kCopyFamilyNamesForLanguage = 13029,
    kExperimentalDataFunnel = 13030,

    // Of the hub of notifications; see notification_rows.hpp.
    kObserveNotifications = 14000,
    kPostNotification = 14001,
    kTellNotification = 14002,

    // Of the index of font files; see index_rows.hpp.
    kFindFontFiles = 15000,
    kGetIndexStatus = 15001,
    kRebuildIndex = 15002,
};

// A reply's id is the request's and this.
constexpr int32_t kReplyIDOffset = 100;

// What an argument is, inline. Memory stands there with its length alone.
enum class EArgument : uint8_t {
    kNone,
    kWord,
    kURL,  // a text of at most kLongestURL bytes
    kName, // a text of at most kLongestName bytes
    kUUID, // a text of kUUIDSize bytes, without offset and count
    kMemory,
};
constexpr size_t kMostArguments = 5;

// Bytes of texts, with the zero that ends them.
constexpr size_t kLongestURL = 2048;
constexpr size_t kLongestName = 1024;
constexpr size_t kUUIDSize = 37;

// What a reply brings, beside a code, once the request has been carried out.
enum class EReply : uint8_t {
    kNothing,
    kWord,
    kText, // at most kLongestURL bytes
    kMemory,
    kMemoryAndWord, // of a change of many: what failed, and the result
};

struct MessageRow {
    MessageID id;
    std::array<EArgument, kMostArguments> arguments; // up to the first kNone
    EReply reply;
};

inline constexpr MessageRow kMessageRows[] = {
    {kRendezvous, {}, EReply::kMemory},
    {kAddFontProvider, {EArgument::kUUID}, EReply::kNothing},
    {kRemoveFontProvider, {EArgument::kUUID}, EReply::kNothing},
    {kGetFontProviders, {}, EReply::kMemory},
    {kGetFontScope, {EArgument::kURL}, EReply::kWord},
    {kRegisterFonts, {EArgument::kMemory, EArgument::kWord, EArgument::kWord}, EReply::kMemoryAndWord},
    {kUnregisterFonts, {EArgument::kMemory, EArgument::kWord}, EReply::kMemoryAndWord},
    {kRegisterFontDirectory,
     {EArgument::kURL, EArgument::kMemory, EArgument::kWord, EArgument::kWord, EArgument::kWord},
     EReply::kWord},
    {kUnregisterFontDirectory, {EArgument::kURL, EArgument::kWord}, EReply::kWord},
    {kEnableFont, {EArgument::kURL}, EReply::kWord},
    {kDisableFont, {EArgument::kURL}, EReply::kWord},
    {kCopyAvailableFontNames, {EArgument::kWord}, EReply::kMemory},
    {kCopyAvailableFontFamilyNames, {EArgument::kWord}, EReply::kMemory},
    {kCopyAvailableFonts, {EArgument::kWord}, EReply::kMemory},
    {kCopyFontWithName, {EArgument::kName, EArgument::kWord}, EReply::kText},
    {kCopyFontsMatchingRequest, {EArgument::kWord, EArgument::kMemory}, EReply::kMemory},
    {kCopyPropertiesForFontsMatchingRequest,
     {EArgument::kMemory, EArgument::kMemory, EArgument::kWord},
     EReply::kMemory},
    {kCopyPropertiesForFontMatchingRequest,
     {EArgument::kMemory, EArgument::kMemory, EArgument::kWord},
     EReply::kMemory},
    {kCopyPropertiesForAllFonts, {EArgument::kMemory, EArgument::kWord}, EReply::kMemory},
    {kCopyPropertiesForFonts, {EArgument::kMemory, EArgument::kMemory}, EReply::kMemory},
    {kCopyPropertyForFonts, {EArgument::kMemory, EArgument::kName}, EReply::kMemory},
    {kCopyPropertiesForFont, {EArgument::kURL, EArgument::kMemory}, EReply::kMemory},
    {kCopyFontForCharacter, {EArgument::kWord, EArgument::kWord, EArgument::kWord}, EReply::kText},
    {kEnableFonts, {EArgument::kMemory, EArgument::kWord}, EReply::kMemoryAndWord},
    {kDisableFonts, {EArgument::kMemory, EArgument::kWord}, EReply::kMemoryAndWord},
    {kCopyFamilyNamesForLanguage, {EArgument::kName, EArgument::kWord, EArgument::kWord}, EReply::kMemory},
    {kExperimentalDataFunnel, {EArgument::kMemory, EArgument::kWord}, EReply::kMemory},
};

// The row of a message; null for an id that nobody sends.
constexpr const MessageRow *FindMessageRow(int32_t id) noexcept {
    for (const MessageRow &row : kMessageRows)
        if (row.id == id) return &row;
    return nullptr;
}

} // namespace vellum
