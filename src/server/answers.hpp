// SPDX-License-Identifier: MIT
// The answers to the messages: one function for each, which FontServer finds by its row.
#pragma once

#include "server/font_server.hpp"

namespace vellum {

// ---- query_answers.cpp ----
using QueryAnswer = OutgoingReply (*)(FontServer &server, const MessageRow &row,
                                      const ReceivedArguments &arguments);

OutgoingReply AnswerRendezvous(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontProviders(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontScope(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontNames(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFamilyNames(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFonts(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFamilyNamesForLanguage(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontWithName(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontForCharacter(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerFontsMatchingRequest(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerPropertiesForFontsMatchingRequest(FontServer &, const MessageRow &,
                                                      const ReceivedArguments &);
OutgoingReply AnswerPropertiesForFontMatchingRequest(FontServer &, const MessageRow &,
                                                     const ReceivedArguments &);
OutgoingReply AnswerPropertiesForAllFonts(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerPropertiesForFonts(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerPropertyForFonts(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerPropertiesForFont(FontServer &, const MessageRow &, const ReceivedArguments &);
OutgoingReply AnswerExperimentalDataFunnel(FontServer &, const MessageRow &, const ReceivedArguments &);

// ---- change_answers.cpp ----
// Makes a change, now or later, and answers by errand.Reply.
using ChangeAnswer = void (*)(FontServer &server, Errand errand, const ReceivedArguments &arguments);

void AddFontProvider(FontServer &, Errand, const ReceivedArguments &);
void RemoveFontProvider(FontServer &, Errand, const ReceivedArguments &);
void RegisterFonts(FontServer &, Errand, const ReceivedArguments &);
void UnregisterFonts(FontServer &, Errand, const ReceivedArguments &);
void RegisterFontDirectory(FontServer &, Errand, const ReceivedArguments &);
void UnregisterFontDirectory(FontServer &, Errand, const ReceivedArguments &);
void EnableFont(FontServer &, Errand, const ReceivedArguments &);
void DisableFont(FontServer &, Errand, const ReceivedArguments &);
void EnableFonts(FontServer &, Errand, const ReceivedArguments &);
void DisableFonts(FontServer &, Errand, const ReceivedArguments &);

} // namespace vellum
