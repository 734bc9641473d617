// SPDX-License-Identifier: MIT
#include "query/model_world.hpp"

#include "query/model_fonts.hpp"
#include "support/installed_fonts.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_cast.hpp"

#include <algorithm>
#include <set>
#include <sstream>

namespace vellum::test {
namespace {

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

constexpr uint64_t kFontsSeed = 20;

ModelAnswer AnswerOf(const Ref<const ValURL> &url) {
    return url ? ModelAnswer{TextOf(ValURLGetString(url.Get()))} : ModelAnswer();
}

// An empty array is no answer that a register may give.
ModelAnswer AnswerOf(const Ref<const ValArray> &array) {
    if (array && ValArrayGetCount(array.Get()) == 0) return {"(an empty array)"};
    return Texts(array);
}

ModelAnswer SortedAnswerOf(const Ref<const ValArray> &array) {
    ModelAnswer answer = AnswerOf(array);
    std::ranges::sort(answer);
    return answer;
}

std::string At(const ModelAnswer &answer, size_t place) {
    return place < answer.size() ? answer[place] : "nothing";
}

AssertionResult Compare(const ModelAnswer &expected, const ModelAnswer &answered,
                        const std::string &question) {
    if (expected == answered) return AssertionSuccess();
    size_t place = 0;
    while (At(expected, place) == At(answered, place)) ++place;
    return AssertionFailure() << question << "\n  expected " << expected.size() << ", got "
                              << answered.size() << "; place " << place << "\n  expected "
                              << At(expected, place) << "\n  got      " << At(answered, place);
}

std::string URLIn(const void *properties) {
    const auto *url =
        Cast<ValURL>(ValDictionaryGetValue(Cast<ValDictionary>(properties), kVLFontPropertyURL));
    return TextOf(ValURLGetString(url));
}

ModelAnswer FontIn(const Ref<const ValDictionary> &properties, bool with_state) {
    if (!properties) return {};
    if (!with_state) return {URLIn(properties.Get()), "enabled"};
    const void *state = ValDictionaryGetValue(properties.Get(), kVLFontPropertyEnabled);
    return {URLIn(properties.Get()), ModelBits(state) == 1 ? "enabled" : "disabled"};
}

std::string Described(const char *question, const void *value) {
    return std::string(question) + " " + TextOf(Adopt(ValCopyDescription(value)));
}

} // namespace

bool ModelWorld::Register(const std::vector<Ref<const ValURL>> &files) {
    return std::ranges::all_of(files, [&](const Ref<const ValURL> &file) {
        return registry.RegisterFont(file.Get(), nullptr, 0, kVLScopeProcess) == model.Register(file.Get());
    });
}

AssertionResult ModelWorld::AgreeOnRequest(const ValDictionary *request, size_t *count) const {
    ModelAnswer expected = model.FontsForRequest(request);
    if (count) *count = expected.size();
    const auto result = Compare(expected, AnswerOf(registry.CopyFontsForRequest(request, kVLScopeProcess)),
                                Described("request", request));
    if (!result) return result;
    if (expected.size() > 1) expected.resize(1);
    return Compare(expected, AnswerOf(registry.CopyFontForRequest(request, kVLScopeProcess)),
                   Described("first for request", request));
}

AssertionResult ModelWorld::AgreeOnName(const ValString *name) const {
    return Compare(model.FontForName(name), AnswerOf(registry.CopyFontForName(name, kVLScopeProcess)),
                   "name " + TextOf(name));
}

AssertionResult ModelWorld::AgreeOnCharacter(uint32_t character) const {
    std::ostringstream question;
    question << "character U+" << std::hex << character;
    return Compare(model.FontForCharacter(character),
                   AnswerOf(registry.CopyFontForCharacter(character, kVLScopeProcess, 0)), question.str());
}

AssertionResult ModelWorld::AgreeOnURL(const ValURL *url) const {
    return Compare(model.FontsForURL(url), AnswerOf(registry.CopyFontsForURL(url, kVLScopeProcess)),
                   Described("URL", url));
}

AssertionResult ModelWorld::AgreeOnFontDescribed(const ValURL *url) const {
    if (registry.IsFontRegistered(url) != model.IsRegistered(url))
        return AssertionFailure() << Described("is registered", url);
    const auto keys = Keys({kVLFontPropertyURL});
    const auto result =
        Compare(model.FontDescribed(url, false),
                FontIn(registry.CopyPropertiesForFont(url, keys.Get(), kVLScopeProcess), false),
                Described("properties of an enabled font at", url));
    if (!result) return result;
    const auto more_keys = Keys({kVLFontPropertyURL, kVLFontPropertyEnabled});
    return Compare(model.FontDescribed(url, true),
                   FontIn(registry.CopyPropertiesForFont(url, more_keys.Get(), kVLScopeProcess), true),
                   Described("properties of a font at", url));
}

AssertionResult ModelWorld::AgreeOnFontsDescribed(const ValDictionary *request) const {
    ModelAnswer expected = model.FontsForRequest(request), answered;
    const auto keys = Keys({kVLFontPropertyURL});
    const auto all = registry.CopyPropertiesForFontsMatchingRequest(request, keys.Get(), kVLScopeProcess);
    for (const void *properties : Elements(all.Get())) answered.push_back(URLIn(properties));
    const auto result = Compare(expected, answered, Described("properties for request", request));
    if (!result) return result;
    if (expected.size() > 1) expected.resize(1);
    const auto first = registry.CopyPropertiesForFontMatchingRequest(request, keys.Get(), kVLScopeProcess);
    return Compare(expected, first ? ModelAnswer{URLIn(first.Get())} : ModelAnswer(),
                   Described("properties for the first for request", request));
}

AssertionResult ModelWorld::AgreeOnListings() const {
    const auto families =
        Compare(model.Families(), SortedAnswerOf(registry.CopyAvailableFontFamilyNames(kVLScopeProcess)),
                "families");
    if (!families) return families;
    const auto names = Compare(model.PostScriptNames(),
                               SortedAnswerOf(registry.CopyAvailableFontNames(kVLScopeProcess)), "names");
    if (!names) return names;
    return Compare(model.URLs(), SortedAnswerOf(registry.CopyAvailableFontURLs(kVLScopeProcess)), "URLs");
}

AssertionResult ModelWorld::AgreeOnLanguage(const ValString *language) const {
    return Compare(model.FamiliesForLanguage(language),
                   SortedAnswerOf(registry.CopyFamilyNamesForLanguage(language, kVLScopeProcess, 0)),
                   "families for " + TextOf(language));
}

GeneratedWorld::GeneratedWorld() {
    ModelRandom random(kFontsSeed);
    files = MakeModelFonts(folder, kGeneratedFaces, random);
    EXPECT_TRUE(Register(files));
}

InstalledWorld::InstalledWorld() {
    auto installed = InstalledFonts();
    std::ranges::sort(installed, {}, [](const auto &url) { return TextOf(ValURLGetString(url.Get())); });
    ModelRandom(kFontsSeed).Shuffle(installed);
    for (const auto &url : installed) {
        if (model.Enabled().size() >= kInstalledFaces) return;
        EXPECT_TRUE(Register({url})) << TextOf(ValURLGetString(url.Get()));
        files.push_back(url);
    }
    if (model.Enabled().size() < kInstalledFaces)
        error = "This test needs " + std::to_string(kInstalledFaces) + " installed faces; there are " +
                std::to_string(model.Enabled().size());
}

} // namespace vellum::test
