// SPDX-License-Identifier: MIT
// The stubs: one function for each message to the font server, named for it. Each lays its arguments out,
// sends them, waits, and reads the reply.
//
// All give the code of sending, of what is wrong with the reply, or of the server; 0 alone sets results.
// Texts are borrowed and hold at most 2,047 bytes where they are URLs, 1,023 elsewhere; a longer one is not
// sent (kMachSendInvalidData). Memory that is sent is a flattened value, and is given away. Scopes go as
// they are.
#pragma once

#include "ipc/messages/message_codec.hpp"

#include <string>
#include <string_view>

namespace vellum {

// Memory that came with a reply, a flattened value. It lies in the thread's buffer until the thread's next
// message, or in pages of its own.
struct ReplyMemory {
    std::span<const uint8_t> bytes;
    MemoryMapping mapping;
};

// Of a change of many: the fonts that failed, and the result.
struct BatchReply {
    ReplyMemory failed;
    uint32_t result = 0;
};

MachCode VLSendRendezvous(PortName server, ReplyMemory &common_fonts);
MachCode VLSendAddFontProvider(PortName server, std::string_view uuid);
MachCode VLSendRemoveFontProvider(PortName server, std::string_view uuid);
MachCode VLSendGetFontProviders(PortName server, ReplyMemory &providers);
MachCode VLSendGetFontScope(PortName server, std::string_view url, uint32_t &scope);
MachCode VLSendRegisterFonts(PortName server, OutgoingMemory registration, uint32_t scope, uint32_t options,
                             BatchReply &reply);
MachCode VLSendUnregisterFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply);
MachCode VLSendRegisterFontDirectory(PortName server, std::string_view url, OutgoingMemory bookmark,
                                     uint32_t flags, uint32_t options, uint32_t scope, uint32_t &result);
MachCode VLSendUnregisterFontDirectory(PortName server, std::string_view url, uint32_t scope,
                                       uint32_t &result);
MachCode VLSendEnableFont(PortName server, std::string_view url, uint32_t &result);
MachCode VLSendDisableFont(PortName server, std::string_view url, uint32_t &result);
MachCode VLSendCopyAvailableFontNames(PortName server, uint32_t scope, ReplyMemory &names);
MachCode VLSendCopyAvailableFontFamilyNames(PortName server, uint32_t scope, ReplyMemory &names);
MachCode VLSendCopyAvailableFonts(PortName server, uint32_t scope, ReplyMemory &urls);
MachCode VLSendCopyFontWithName(PortName server, std::string_view name, uint32_t scope, std::string &url);
MachCode VLSendCopyFontsMatchingRequest(PortName server, uint32_t scope, OutgoingMemory request,
                                        ReplyMemory &urls);
MachCode VLSendCopyPropertiesForFontsMatchingRequest(PortName server, OutgoingMemory request,
                                                     OutgoingMemory keys, uint32_t scope,
                                                     ReplyMemory &properties);
MachCode VLSendCopyPropertiesForFontMatchingRequest(PortName server, OutgoingMemory request,
                                                    OutgoingMemory keys, uint32_t scope,
                                                    ReplyMemory &properties);
MachCode VLSendCopyPropertiesForAllFonts(PortName server, OutgoingMemory keys, uint32_t scope,
                                         ReplyMemory &properties);
MachCode VLSendCopyPropertiesForFonts(PortName server, OutgoingMemory urls, OutgoingMemory keys,
                                      ReplyMemory &properties);
MachCode VLSendCopyPropertyForFonts(PortName server, OutgoingMemory urls, std::string_view key,
                                    ReplyMemory &values);
MachCode VLSendCopyPropertiesForFont(PortName server, std::string_view url, OutgoingMemory keys,
                                     ReplyMemory &properties);
MachCode VLSendCopyFontForCharacter(PortName server, uint32_t character, uint32_t options,
                                    uint32_t reserved, std::string &url);
MachCode VLSendEnableFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply);
MachCode VLSendDisableFonts(PortName server, OutgoingMemory urls, uint32_t scope, BatchReply &reply);
MachCode VLSendCopyFamilyNamesForLanguage(PortName server, std::string_view language, uint32_t options,
                                          uint32_t reserved, ReplyMemory &names);
MachCode VLSendExperimentalDataFunnel(PortName server, OutgoingMemory query, uint32_t scope,
                                      ReplyMemory &answer);

} // namespace vellum
