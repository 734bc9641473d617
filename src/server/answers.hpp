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
OutgoingReply AnswerExperimentalDataFunnel(FontServer &, const MessageRow &, const ReceivedArguments &);

// Answers by errand.Reply, now or later.
using LaterAnswer = void (*)(FontServer &server, Errand errand, const ReceivedArguments &arguments);

// ---- property_answers.cpp ----
void AnswerPropertiesForFonts(FontServer &, Errand, const ReceivedArguments &);
void AnswerPropertyForFonts(FontServer &, Errand, const ReceivedArguments &);
void AnswerPropertiesForFont(FontServer &, Errand, const ReceivedArguments &);

// ---- change_answers.cpp ----
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
