// SPDX-License-Identifier: MIT
// An application that lacks fonts. Each line of its input is a command, answered by one line:
//
//   find NAME          the font of that PostScript name, sought everywhere; "none" without one
//   best, every FAMILY the best font of a family, or all of them, with a space between two
//   every-own FAMILY   all of them, where none but the process's own register is asked
//   styled STYLE       the best font of a style, whatever its family
//   bold               the best bold font, whatever its name
//   known NAME         the font of that PostScript name if a register has it
//   ask SCOPE OPTIONS NAME
//                      as "find", in a scope and with activation options, both given as numbers
//   heard              waits for a change of fonts: "added", or "removed", and the fonts
//   calm               how many changes were heard and not asked for, once nothing waits any more
//   patience MILLISECONDS
//                      how long the index, and providers, are waited for from now on
//   disabled           whether searching has been given up: "yes" or "no"
//   own?, own N, all N its own setting, or sets that, or the one for all
//   offer              offers fonts itself, from now on, and answers nobody
//
// Fonts are told by their paths.
#include "autoactivation/auto_activation_manager.hpp"
#include "platform/val/string.hpp"
#include "support/heard_changes.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_url.hpp"

#include <iostream>
#include <sstream>
#include <string>

namespace vellum::test {
namespace {

std::string PathOf(const void *url) {
    return url ? std::string(TValURL(Retain(static_cast<const ValURL *>(url))).Path().View()) : "none";
}

std::string PathsOf(const Ref<const ValArray> &urls) {
    std::string paths;
    for (const void *url : Elements(urls.Get())) paths += (paths.empty() ? "" : " ") + PathOf(url);
    return paths.empty() ? "none" : paths;
}

Ref<const ValDictionary> Request(const ValString *key, const std::string &name) {
    TValMutableDict request;
    request.Set(key, String(name).Get());
    return request.Publish();
}

Ref<const ValDictionary> BoldRequest() {
    TValMutableDict traits, request;
    traits.Set(kVLFontTraitSymbolic, MakeNumber(int32_t{kVLFontTraitBold}).Get());
    request.Set(kVLFontPropertyTraits, traits.Get());
    return request.Publish();
}

std::string Find(const std::string &name, VLScope scope = kVLScopeAll, VLActivationOptions options = 0) {
    return PathOf(Adopt(VLCopyFontWithName(String(name).Get(), scope, options)).Get());
}

std::string Best(const Ref<const ValDictionary> &request) {
    return PathOf(Adopt(VLCopyFontWithProperties(request.Get(), kVLScopeAll, 0)).Get());
}

std::string Every(const std::string &family, VLScope scope) {
    const auto request = Request(kVLFontPropertyFamilyName, family);
    return PathsOf(Adopt(VLCopyFontsWithProperties(request.Get(), scope, 0)));
}

std::string NextChange(HeardChanges &heard) {
    while (heard.SoFar().empty()) g_main_context_iteration(nullptr, TRUE);
    std::string words;
    for (const HeardChange &change : heard.Next()) {
        words += change.key == Added({}).key ? "added" : "removed";
        for (const std::string &font : change.fonts) words += " " + PathOf(TValURL::FromText(font).Get());
    }
    return words;
}

const void *OfferNothing(void *, const ValDictionary *, int32_t) {
    return nullptr;
}

std::string Offer() {
    static VLMessagePort *const port = VLCreateFontProviderLocalPort(OfferNothing, nullptr, nullptr);
    return port ? "offering" : "failed";
}

void HavePatience(int milliseconds) {
    TAutoActivationManager::sPatience = {std::chrono::milliseconds(milliseconds), milliseconds * 1e-3,
                                         milliseconds * 1e-3};
}

std::string Answer(const std::string &command, const std::string &rest, HeardChanges &heard) {
    std::istringstream words(rest);
    uint32_t number = 0;
    if (command == "find") return Find(rest);
    if (command == "known") return Find(rest, kVLScopeAll, kVLActivationNotFromProviders);
    if (command == "best") return Best(Request(kVLFontPropertyFamilyName, rest));
    if (command == "styled") return Best(Request(kVLFontPropertySubfamilyName, rest));
    if (command == "bold") return Best(BoldRequest());
    if (command == "every") return Every(rest, kVLScopeAll);
    if (command == "every-own") return Every(rest, kVLScopeProcess);
    if (command == "heard") return NextChange(heard);
    if (command == "calm") return std::to_string(heard.Next().size());
    if (command == "disabled") return TAutoActivationManager::sBeaconQueriesDisabled ? "yes" : "no";
    if (command == "own?") return std::to_string(VLGetAutoActivationSetting(nullptr));
    if (command == "offer") return Offer();
    if (!(words >> number)) return "what?";
    if (command == "ask") {
        uint32_t options = 0;
        std::string name;
        words >> options >> name;
        return Find(name, number, options);
    }
    if (command == "patience")
        HavePatience(static_cast<int>(number));
    else if (command == "own")
        VLSetAutoActivationSetting(nullptr, number);
    else if (command == "all")
        VLSetAutoActivationSetting(String("com.orrery.Laydown").Get(), number);
    else
        return "what?";
    return "done";
}

} // namespace
} // namespace vellum::test

int main() {
    vellum::test::HeardChanges heard;
    for (std::string line; std::getline(std::cin, line);) {
        const size_t end = std::min(line.find(' '), line.size());
        std::cout << vellum::test::Answer(line.substr(0, end), line.substr(std::min(end + 1, line.size())),
                                          heard)
                  << std::endl;
    }
    return 0;
}
