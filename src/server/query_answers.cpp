// SPDX-License-Identifier: MIT
// The answers to messages that ask. Scopes in queries say nothing here: the register has one kind of font.
#include "ipc/encoding/travelling_values.hpp"
#include "platform/val/string.hpp"
#include "server/answers.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

#include <vellum/vellum.h>

namespace vellum {

namespace {

OutgoingReply WithMemory(std::optional<OutgoingMemory> memory) {
    OutgoingReply reply;
    if (memory) reply.memory = std::move(*memory);
    return reply;
}

// A value, or nothing for null.
OutgoingReply WithValue(const void *value) {
    return WithMemory(Flattened(value));
}

// An array; null is an empty one.
OutgoingMemory ArrayMemory(Ref<const ValArray> array) {
    if (!array) array = TValMutableArray().Publish();
    return Flattened(array.Get()).value_or(OutgoingMemory());
}

// A URL's text; nothing for null, and for one that does not fit.
std::string TextToSend(const ValURL *url) {
    const std::string_view text = TValURL(Retain(url)).Text();
    return std::string(text.size() < kLongestURL ? text : std::string_view());
}

OutgoingReply WithText(std::string text) noexcept {
    OutgoingReply reply;
    reply.text = std::move(text);
    return reply;
}

// What stands for a question among the kept answers.
std::string QuestionOf(const MessageRow &row, const ReceivedArguments &arguments) {
    std::string question(1, static_cast<char>(row.id - kRendezvous));
    for (const ReceivedArgument &argument : arguments) {
        question.append(argument.text);
        question.append(reinterpret_cast<const char *>(argument.memory.data()), argument.memory.size());
    }
    return question;
}

template <class Make>
OutgoingReply Kept(FontServer &server, const MessageRow &row, const ReceivedArguments &arguments,
                   Make make) {
    return WithMemory(server.Kept().Get(QuestionOf(row, arguments), make));
}

// The common fonts and where they are; those that nobody has are left out.
Ref<const ValDictionary> CommonFonts(const TLocalGlypharyImp &fonts) {
    size_t count = 0;
    const ValString *const *names = VLGetCommonFontNames(&count);
    TValMutableDict answers;
    for (size_t i = 0; i < count; ++i)
        if (const auto url = fonts.CopyFontForName(names[i], kVLScopeProcess))
            answers.Set(names[i], url.Get());
    return answers.Publish();
}

} // namespace

OutgoingReply AnswerRendezvous(FontServer &server, const MessageRow &row,
                               const ReceivedArguments &arguments) {
    return Kept(server, row, arguments,
                [&] { return Flattened(CommonFonts(server.Fonts()).Get()).value_or(OutgoingMemory()); });
}

OutgoingReply AnswerFontScope(FontServer &server, const MessageRow &, const ReceivedArguments &arguments) {
    OutgoingReply reply;
    if (const TValURL url = TValURL::FromText(arguments[0].text))
        reply.word = server.Register().ScopeOf(url.Get());
    return reply;
}

OutgoingReply AnswerFontNames(FontServer &server, const MessageRow &row,
                              const ReceivedArguments &arguments) {
    return Kept(server, row, arguments,
                [&] { return ArrayMemory(server.Fonts().CopyAvailableFontNames(kVLScopeProcess)); });
}

OutgoingReply AnswerFamilyNames(FontServer &server, const MessageRow &row,
                                const ReceivedArguments &arguments) {
    return Kept(server, row, arguments,
                [&] { return ArrayMemory(server.Fonts().CopyAvailableFontFamilyNames(kVLScopeProcess)); });
}

OutgoingReply AnswerFonts(FontServer &server, const MessageRow &row, const ReceivedArguments &arguments) {
    return Kept(server, row, arguments,
                [&] { return ArrayMemory(server.Fonts().CopyAvailableFontURLs(kVLScopeProcess)); });
}

OutgoingReply AnswerFamilyNamesForLanguage(FontServer &server, const MessageRow &row,
                                           const ReceivedArguments &arguments) {
    return Kept(server, row, arguments, [&] {
        const TValStr language(arguments[0].text);
        if (!language) return ArrayMemory(nullptr);
        return ArrayMemory(server.Fonts().CopyFamilyNamesForLanguage(language.Get(), kVLScopeProcess, 0));
    });
}

OutgoingReply AnswerFontWithName(FontServer &server, const MessageRow &,
                                 const ReceivedArguments &arguments) {
    const std::string_view text = arguments[0].text;
    return WithText(server.Names().Get(text, [&] {
        const TValStr name(text);
        return name ? TextToSend(server.Fonts().CopyFontForName(name.Get(), kVLScopeProcess).Get())
                    : std::string();
    }));
}

OutgoingReply AnswerFontForCharacter(FontServer &server, const MessageRow &,
                                     const ReceivedArguments &arguments) {
    const auto font = server.Fonts().CopyFontForCharacter(arguments[0].word, kVLScopeProcess, 0);
    return WithText(TextToSend(font.Get()));
}

// A request for a URL alone asks for the fonts at that URL: both kinds of lookup travel alike.
OutgoingReply AnswerFontsMatchingRequest(FontServer &server, const MessageRow &,
                                         const ReceivedArguments &arguments) {
    const auto request = Resurrected<ValDictionary>(arguments[1].memory);
    const auto fonts =
        request ? server.Fonts().CopyFontsForRequest(request.Get(), kVLScopeProcess) : nullptr;
    return WithMemory(ArrayMemory(fonts));
}

OutgoingReply AnswerPropertiesForFontsMatchingRequest(FontServer &server, const MessageRow &,
                                                      const ReceivedArguments &arguments) {
    const auto request = Resurrected<ValDictionary>(arguments[0].memory);
    const auto keys = Resurrected<ValSet>(arguments[1].memory);
    if (!request || !keys) return {};
    return WithValue(server.Fonts()
                         .CopyPropertiesForFontsMatchingRequest(request.Get(), keys.Get(), kVLScopeProcess)
                         .Get());
}

OutgoingReply AnswerPropertiesForFontMatchingRequest(FontServer &server, const MessageRow &,
                                                     const ReceivedArguments &arguments) {
    const auto request = Resurrected<ValDictionary>(arguments[0].memory);
    const auto keys = Resurrected<ValSet>(arguments[1].memory);
    if (!request || !keys) return {};
    return WithValue(server.Fonts()
                         .CopyPropertiesForFontMatchingRequest(request.Get(), keys.Get(), kVLScopeProcess)
                         .Get());
}

OutgoingReply AnswerPropertiesForAllFonts(FontServer &server, const MessageRow &row,
                                          const ReceivedArguments &arguments) {
    return Kept(server, row, arguments, [&] {
        const auto keys = Resurrected<ValSet>(arguments[0].memory);
        const auto all =
            keys ? server.Fonts().CopyPropertiesForAllFonts(keys.Get(), kVLScopeProcess) : nullptr;
        return Flattened(all.Get()).value_or(OutgoingMemory());
    });
}

// The fonts of all processes stand under the number 2; 1 is each process's own.
OutgoingReply AnswerExperimentalDataFunnel(FontServer &server, const MessageRow &row,
                                           const ReceivedArguments &) {
    return Kept(server, row, {}, [&] {
        TValMutableDict answer;
        auto urls = server.Fonts().CopyAvailableFontURLs(kVLScopeProcess);
        if (!urls) urls = TValMutableArray().Publish();
        answer.Set(MakeNumber(int32_t{2}).Get(), urls.Get());
        return Flattened(answer.Publish().Get()).value_or(OutgoingMemory());
    });
}

OutgoingReply AnswerFontProviders(FontServer &server, const MessageRow &, const ReceivedArguments &) {
    return WithValue(server.Providers().Copy().Get());
}

} // namespace vellum
