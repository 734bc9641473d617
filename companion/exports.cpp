// SPDX-License-Identifier: MIT
// What the library looks up by name: vellum/glyphary_ui.h is the contract.
#include "asked_mark.hpp"
#include "dialogue_program.hpp"
#include "dialogue_text.hpp"
#include "run_program.hpp"

#include <vellum/glyphary_ui.h>
#include <vellum/vellum.hpp>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <string>

namespace {

using namespace vellum::companion;

// A user who is not there says no.
#ifndef VELLUM_DIALOGUE_PATIENCE
#define VELLUM_DIALOGUE_PATIENCE 120000
#endif
constexpr std::chrono::milliseconds kPatience{VELLUM_DIALOGUE_PATIENCE};

// One question at a time. Whoever can't ask in time is answered no.
std::timed_mutex sAsking;

// The key of the choice; empty for none. Where this is the dialogue program itself, nobody is asked.
std::string Ask(const std::string &title, const std::string &text, const std::vector<Choice> &choices) {
    if (::secure_getenv(kAskedMark)) return {};
    const auto command = DialogueCommand(title, text, choices);
    if (command.empty()) return {};
    const std::unique_lock lock(sAsking, kPatience);
    if (!lock) return {};
    std::string answer = OutputOf(command, kPatience);
    while (answer.ends_with('\n')) answer.pop_back();
    return answer;
}

// Nothing is thrown into the library.
template <class Answer, class Body>
Answer Guarded(Answer otherwise, Body body) noexcept {
    try {
        return body();
    } catch (...) { // memory is exhausted
        return otherwise;
    }
}

std::string NameOf(const ValURL *font) {
    const auto name = vellum::Adopt(ValURLCopyLastPathComponent(font));
    size_t length = 0;
    const char *bytes = name ? ValStringGetBytes(name.Get(), &length) : nullptr;
    return Shown({bytes ? bytes : "", length}, 200);
}

} // namespace

extern "C" {

VAL_EXPORT CopyConfirmedFontsForAutoActivationRequestFunction CopyConfirmedFontsForAutoActivationRequest;
VAL_EXPORT VLUIWarnUserNotToModifyGuardedFontsFunction VLUIWarnUserNotToModifyGuardedFonts;
VAL_EXPORT VLUIConfirmAllowOverrideOfProtectedFontFunction VLUIConfirmAllowOverrideOfProtectedFont;

const ValArray *CopyConfirmedFontsForAutoActivationRequest(const ValDictionary *request,
                                                           const ValArray *fonts, bool *remember) {
    *remember = false;
    if (ValArrayGetCount(fonts) == 0) return nullptr;
    const std::string answer = Guarded(std::string(), [&] {
        return Ask("Missing font", QuestionFor(request, fonts),
                   {{"once", "Use it this time"},
                    {"always", "Always do so in this program"},
                    {"not-now", "Not this time"},
                    {"never", "Never in this program"}});
    });
    *remember = answer == "always" || answer == "never";
    if (answer != "once" && answer != "always") return nullptr;
    return static_cast<const ValArray *>(ValRetain(fonts));
}

void VLUIWarnUserNotToModifyGuardedFonts(const ValArray *fonts) {
    const size_t count = ValArrayGetCount(fonts);
    if (count == 0) return;
    Guarded(0, [&] {
        std::string text = "The system needs these fonts; they stay as they are:";
        for (size_t i = 0; i < count && i < 8; ++i)
            text += "\n- " + NameOf(static_cast<const ValURL *>(ValArrayGetValue(fonts, i)));
        if (count > 8) text += "\n- and " + std::to_string(count - 8) + " more";
        Ask("Fonts of the system", text, {{"understood", "Understood"}});
        return 0;
    });
}

bool VLUIConfirmAllowOverrideOfProtectedFont(const ValURL *font) {
    if (!font) return false;
    const std::string answer = Guarded(std::string(), [&] {
        return Ask("Font of the system",
                   "A font of the system is protected. May this one take its place?\n- " + NameOf(font),
                   {{"keep", "Keep the system's font"}, {"override", "Use this one instead"}});
    });
    return answer == "override";
}

} // extern "C"
