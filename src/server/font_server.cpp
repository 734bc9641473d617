// SPDX-License-Identifier: MIT
#include "server/font_server.hpp"

#include "platform/log/log.hpp"
#include "server/answers.hpp"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace vellum {

namespace {

// Which function answers which message.
struct AnswerRow {
    MessageID id;
    QueryAnswer query; // or
    LaterAnswer later; // the other
};
constexpr AnswerRow kAnswers[] = {
    {kRendezvous, AnswerRendezvous, nullptr},
    {kAddFontProvider, nullptr, AddFontProvider},
    {kRemoveFontProvider, nullptr, RemoveFontProvider},
    {kGetFontProviders, AnswerFontProviders, nullptr},
    {kGetFontScope, AnswerFontScope, nullptr},
    {kRegisterFonts, nullptr, RegisterFonts},
    {kUnregisterFonts, nullptr, UnregisterFonts},
    {kRegisterFontDirectory, nullptr, RegisterFontDirectory},
    {kUnregisterFontDirectory, nullptr, UnregisterFontDirectory},
    {kEnableFont, nullptr, EnableFont},
    {kDisableFont, nullptr, DisableFont},
    {kCopyAvailableFontNames, AnswerFontNames, nullptr},
    {kCopyAvailableFontFamilyNames, AnswerFamilyNames, nullptr},
    {kCopyAvailableFonts, AnswerFonts, nullptr},
    {kCopyFontWithName, AnswerFontWithName, nullptr},
    {kCopyFontsMatchingRequest, AnswerFontsMatchingRequest, nullptr},
    {kCopyPropertiesForFontsMatchingRequest, AnswerPropertiesForFontsMatchingRequest, nullptr},
    {kCopyPropertiesForFontMatchingRequest, AnswerPropertiesForFontMatchingRequest, nullptr},
    {kCopyPropertiesForAllFonts, AnswerPropertiesForAllFonts, nullptr},
    {kCopyPropertiesForFonts, nullptr, AnswerPropertiesForFonts},
    {kCopyPropertyForFonts, nullptr, AnswerPropertyForFonts},
    {kCopyPropertiesForFont, nullptr, AnswerPropertiesForFont},
    {kCopyFontForCharacter, AnswerFontForCharacter, nullptr},
    {kEnableFonts, nullptr, EnableFonts},
    {kDisableFonts, nullptr, DisableFonts},
    {kCopyFamilyNamesForLanguage, AnswerFamilyNamesForLanguage, nullptr},
    {kExperimentalDataFunnel, AnswerExperimentalDataFunnel, nullptr},
};

constexpr bool EveryMessageHasAnAnswer() {
    for (size_t i = 0; i < std::size(kAnswers); ++i)
        if (std::size(kAnswers) != std::size(kMessageRows) || kAnswers[i].id != kMessageRows[i].id)
            return false;
    return true;
}
static_assert(EveryMessageHasAnAnswer()); // in the same order

const AnswerRow &AnswerTo(const MessageRow &row) noexcept {
    return kAnswers[&row - kMessageRows];
}

// Reading what was sent holds everybody up: there is a bound to it. What is known of fonts that are to be
// registered is longest.
bool IsTooMuch(const MessageRow &row, const ReceivedArguments &arguments) noexcept {
    constexpr size_t kMost = size_t{4} << 20;
    return row.id != kRegisterFonts && std::ranges::any_of(arguments, [](const ReceivedArgument &argument) {
               return argument.memory.size() > kMost;
           });
}

OutgoingReply Refuse(MachCode code) {
    OutgoingReply reply;
    reply.code = code;
    return reply;
}

// How long a client hears nothing of a server that has not taken in all fonts yet.
constexpr std::chrono::milliseconds kLongestSilence(1000);

} // namespace

void FontServer::BeginToAnswer() {
    has_all_fonts_ = true;
    HaveAllAskAgain();
}

// Each peer waits for the reply before it asks anything else, so that there are never many.
void FontServer::Hold(Errand errand) {
    held_.push_back(std::move(errand));
    if (held_.size() == 1) loop_.CallLater(kLongestSilence, [this] { HaveAllAskAgain(); });
}

void FontServer::HaveAllAskAgain() {
    for (const Errand &errand : std::exchange(held_, {})) errand.Reply(Refuse(kMachAskAgain));
}

void FontServer::Answer(const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
    const Errand errand = {peer, FindMessageRow(message.Header().id), message.Header()};
    if (!errand.row) return errand.Reply(Refuse(kMachBadID));
    ReceivedArguments arguments;
    if (!ReadRequest(*errand.row, message, arguments)) {
        errand.Reply(Refuse(kMachBadArguments));
        return peer->CutOff();
    }
    if (IsTooMuch(*errand.row, arguments)) {
        errand.Reply(Refuse(kMachNoMemory));
        return peer->CutOff();
    }
    if (!has_all_fonts_) return Hold(errand);
    try {
        const AnswerRow &answer = AnswerTo(*errand.row);
        if (answer.query)
            errand.Reply(answer.query(*this, *errand.row, arguments));
        else
            answer.later(*this, errand, arguments);
    } catch (const std::exception &problem) { // memory is exhausted
        Log(LogLevel::kError, "Message %d could not be answered: %s", static_cast<int>(errand.header.id),
            problem.what());
        errand.Reply(Refuse(kMachNoMemory));
    }
}

} // namespace vellum
