// SPDX-License-Identifier: MIT
// A program that uses the shared register by the library's public functions: it does one thing, which its
// arguments name, and writes what it got. The test beside it reads on the wire what was said meanwhile.
#include "client_arguments.hpp"
#include "show_value.hpp"
#include "support/font_builder.hpp"

#include <cstdio>
#include <fstream>
#include <map>

namespace vellum::test {
namespace {

using Arguments = char **;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

template <class T>
std::string ShownAnswer(T *owned) {
    return Shown(Adopt(owned).Get());
}

std::string ShownResult(uint32_t result, const ValArray *failed) {
    return "[" + std::to_string(result) + "," + Shown(failed) + "]";
}

// PATH FAMILY FIRST LAST: a font of its own name for some characters.
std::string MakeFontFile(Arguments a) {
    const std::string family = a[1];
    const Bytes font =
        FontBuilder()
            .Names({WindowsName(1, family), WindowsName(2, "Regular"), WindowsName(4, family + " Regular"),
                    WindowsName(6, family + "-Regular")})
            .Characters({{Word(a[2]), Word(a[3])}})
            .Build();
    std::ofstream file(a[0], std::ios::binary);
    file.write(reinterpret_cast<const char *>(font.data()), static_cast<std::streamsize>(font.size()));
    return file.flush() ? "true" : "false";
}

// ---- changes
// -----------------------------------------------------------------------------------------------------

std::string Register(Arguments a) {
    const ValArray *failed = nullptr;
    const bool done = VLRegisterFonts(URLs(a[0]).Get(), Word(a[1]), Word(a[2]), &failed);
    return ShownResult(done, Adopt(failed).Get());
}

std::string Unregister(Arguments a) {
    const ValArray *failed = nullptr;
    const bool done = VLUnregisterFonts(URLs(a[0]).Get(), 0, Word(a[1]), &failed);
    return ShownResult(done, Adopt(failed).Get());
}

std::string RegisterDirectory(Arguments a) {
    return std::to_string(VLRegisterFontDirectory(URL(a[0]).Get(), Word(a[1]), Word(a[2]), Word(a[3])));
}

std::string UnregisterDirectory(Arguments a) {
    return std::to_string(VLUnregisterFontDirectory(URL(a[0]).Get(), 0, Word(a[1])));
}

std::string EnableOne(Arguments a) {
    VLGetFunctions()->enable_font(URL(a[0]).Get(), 0, Word(a[1]));
    return "null";
}

std::string DisableOne(Arguments a) {
    VLGetFunctions()->disable_font(URL(a[0]).Get(), 0, Word(a[1]));
    return "null";
}

std::string Enable(Arguments a) {
    VLEnableFonts(URLs(a[0]).Get(), 0, Word(a[1]));
    return "null";
}

std::string Disable(Arguments a) {
    VLDisableFonts(URLs(a[0]).Get(), 0, Word(a[1]));
    return "null";
}

// ---- questions
// ---------------------------------------------------------------------------------------------------

std::string ScopeOf(Arguments a) {
    return std::to_string(VLGetScopeForFont(URL(a[0]).Get()));
}
std::string Names(Arguments a) {
    return ShownAnswer(VLCopyAvailableFontNames(Word(a[0])));
}
std::string Families(Arguments a) {
    return ShownAnswer(VLCopyAvailableFamilyNames(Word(a[0])));
}
std::string FontURLs(Arguments a) {
    return ShownAnswer(VLCopyAvailableFontURLs(Word(a[0])));
}
std::string FontNamed(Arguments a) {
    return ShownAnswer(VLCopyFontWithName(String(a[0]).Get(), Word(a[1]), kNoActivation));
}
std::string BestFont(Arguments a) {
    return ShownAnswer(VLCopyFontWithProperties(Request(a[0]).Get(), Word(a[1]), kNoActivation));
}
std::string Fonts(Arguments a) {
    return ShownAnswer(VLCopyFontsWithProperties(Request(a[0]).Get(), Word(a[1]), kNoActivation));
}
std::string PropertiesOfAll(Arguments a) {
    return ShownAnswer(VLCopyPropertiesForAllFonts(Keys(a[0]).Get(), Word(a[1])));
}
std::string PropertiesOfSome(Arguments a) {
    return ShownAnswer(VLCopyPropertiesForFonts(URLs(a[0]).Get(), Keys(a[1]).Get(), Word(a[2])));
}
std::string PropertyOfSome(Arguments a) {
    return ShownAnswer(VLCopyPropertyForFonts(URLs(a[0]).Get(), Key(a[1]).Get(), Word(a[2])));
}
std::string PropertiesOfOne(Arguments a) {
    return ShownAnswer(VLCopyPropertiesForFont(URL(a[0]).Get(), Keys(a[1]).Get(), Word(a[2])));
}
std::string FontForCharacter(Arguments a) {
    return ShownAnswer(VLCopyFontForCharacter(Word(a[0]), Word(a[1]), Word(a[2])));
}
std::string FamiliesForLanguage(Arguments a) {
    return ShownAnswer(VLCopyFamilyNamesForLanguage(String(a[0]).Get(), Word(a[1]), Word(a[2])));
}
std::string Funnel(Arguments a) {
    return ShownAnswer(VLExperimentalDataFunnel(Request(a[0]).Get(), Word(a[1])));
}
std::string RegistrationInfo(Arguments a) {
    return ShownAnswer(VLCopyRegistrationInfoForFont(URL(a[0]).Get(), false));
}

std::string CommonNames(Arguments) {
    size_t count = 0;
    const ValString *const *names = VLGetCommonFontNames(&count);
    return ShownAnswer(ValArrayCreate(reinterpret_cast<const void *const *>(names), count));
}

std::string Answers(Arguments) {
    return VLFontServerAnswers() ? "true" : "false";
}

// Announces itself, has the providers listed, and withdraws.
std::string Provide(Arguments) {
    const auto answer = [](void *, const ValDictionary *, int32_t) -> const void * { return nullptr; };
    VLMessagePort *port = VLCreateFontProviderLocalPort(answer, nullptr, nullptr);
    ValRelease(VLCopyFontProviderRemotePorts());
    ValRelease(port);
    return port ? "true" : "false";
}

struct Verb {
    int arguments;
    std::string (*act)(Arguments);
};

const std::map<std::string, Verb> &Verbs() {
    static const std::map<std::string, Verb> verbs = {{"make-font", {4, MakeFontFile}},
                                                      {"register", {3, Register}},
                                                      {"unregister", {2, Unregister}},
                                                      {"register-directory", {4, RegisterDirectory}},
                                                      {"unregister-directory", {2, UnregisterDirectory}},
                                                      {"enable-one", {2, EnableOne}},
                                                      {"disable-one", {2, DisableOne}},
                                                      {"enable", {2, Enable}},
                                                      {"disable", {2, Disable}},
                                                      {"scope", {1, ScopeOf}},
                                                      {"names", {1, Names}},
                                                      {"families", {1, Families}},
                                                      {"urls", {1, FontURLs}},
                                                      {"font-named", {2, FontNamed}},
                                                      {"best-font", {2, BestFont}},
                                                      {"fonts", {2, Fonts}},
                                                      {"properties-of-all", {2, PropertiesOfAll}},
                                                      {"properties-of-some", {3, PropertiesOfSome}},
                                                      {"property-of-some", {3, PropertyOfSome}},
                                                      {"properties-of-one", {3, PropertiesOfOne}},
                                                      {"font-for-character", {3, FontForCharacter}},
                                                      {"families-for-language", {3, FamiliesForLanguage}},
                                                      {"funnel", {2, Funnel}},
                                                      {"registration-info", {1, RegistrationInfo}},
                                                      {"common-names", {0, CommonNames}},
                                                      {"answers", {0, Answers}},
                                                      {"provide", {0, Provide}}};
    return verbs;
}

} // namespace
} // namespace vellum::test

int main(int count, char **arguments) {
    const auto &verbs = vellum::test::Verbs();
    const auto verb = count > 1 ? verbs.find(arguments[1]) : verbs.end();
    if (verb == verbs.end() || verb->second.arguments != count - 2) return 2;
    std::puts(verb->second.act(arguments + 2).c_str());
}
