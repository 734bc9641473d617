// SPDX-License-Identifier: MIT
// Values where the exported queries expect some of another kind: as arguments, in batches, in requests.
#include "query_registers.hpp"
#include "values/val_number.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

using OtherKinds = QueryRegisters;

// ---- arguments of other kinds ----

// An exported query that gets a value where one of another kind is expected; a process for each.
struct WrongCall {
    const char *name;
    bool (*answers)(const void *value, const Ref<const ValArray> &urls);
};

Ref<const ValSet> NameKeys() {
    return Keys({kVLFontPropertyName});
}

// The value is no container and no URL.
const WrongCall kWrongCalls[] = {
    {"RequestForFonts",
     [](const void *value, const auto &) {
         return VLCopyFontsWithProperties(As<ValDictionary>(value), kVLScopeAll, kNoActivation) != nullptr;
     }},
    {"RequestForAFont",
     [](const void *value, const auto &) {
         return VLCopyFontWithProperties(As<ValDictionary>(value), kVLScopeAll, kNoActivation) != nullptr;
     }},
    {"URLOfACopy",
     [](const void *value, const auto &) {
         return VLCopyPropertiesForFont(As<ValURL>(value), NameKeys().Get(), kVLScopeAll) != nullptr;
     }},
    {"KeysOfACopy",
     [](const void *value, const auto &urls) {
         const auto *url = As<ValURL>(ValArrayGetValue(urls.Get(), 0));
         return VLCopyPropertiesForFont(url, As<ValSet>(value), kVLScopeAll) != nullptr;
     }},
    {"URLsOfCopies",
     [](const void *value, const auto &) {
         return VLCopyPropertiesForFonts(As<ValArray>(value), NameKeys().Get(), kVLScopeAll) != nullptr;
     }},
    {"KeysOfCopies",
     [](const void *value, const auto &urls) {
         return VLCopyPropertiesForFonts(urls.Get(), As<ValSet>(value), kVLScopeAll) != nullptr;
     }},
    {"KeysOfAllCopies",
     [](const void *value, const auto &) {
         return VLCopyPropertiesForAllFonts(As<ValSet>(value), kVLScopeAll) != nullptr;
     }},
    {"URLsOfOneProperty",
     [](const void *value, const auto &) {
         return VLCopyPropertyForFonts(As<ValArray>(value), kVLFontPropertyName, kVLScopeAll) != nullptr;
     }},
};

// The value is no string.
const WrongCall kWrongNames[] = {
    {"NameOfAFont",
     [](const void *value, const auto &) {
         return VLCopyFontWithName(As<ValString>(value), kVLScopeAll, kNoActivation) != nullptr;
     }},
    {"LanguageOfFamilies",
     [](const void *value, const auto &) {
         return VLCopyFamilyNamesForLanguage(As<ValString>(value), kVLScopeAll, 0) != nullptr;
     }},
    {"KeyOfOneProperty",
     [](const void *value, const auto &urls) {
         return VLCopyPropertyForFonts(urls.Get(), As<ValString>(value), kVLScopeAll) != nullptr;
     }},
};

class OtherKindsTest : public QueryRegisters, public ::testing::WithParamInterface<WrongCall> {
protected:
    void ExpectNoAnswerTo(const Ref<const void> &value) {
        EXPECT_FALSE(GetParam().answers(value.Get(), urls)) << GetParam().name;
    }

    const Ref<const ValURL> url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    const Ref<const ValArray> urls = Array({url});
};

class OtherKindsThanValues : public OtherKindsTest {};
class OtherKindsThanNames : public OtherKindsTest {};

TEST_P(OtherKindsThanValues, AnswerNothing) {
    ExpectNoAnswerTo(String("A"));
    ExpectNoAnswerTo(MakeNumber(1));
    ExpectNoAnswerTo(Retain(kValBooleanTrue));
}

TEST_P(OtherKindsThanNames, AnswerNothing) {
    ExpectNoAnswerTo(urls);
    ExpectNoAnswerTo(MakeNumber(1));
    ExpectNoAnswerTo(Retain(kValBooleanTrue));
}

const auto kNameOfCall = [](const auto &info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Of, OtherKindsThanValues, ::testing::ValuesIn(kWrongCalls), kNameOfCall);
INSTANTIATE_TEST_SUITE_P(Of, OtherKindsThanNames, ::testing::ValuesIn(kWrongNames), kNameOfCall);

TEST_F(OtherKinds, TheSummaryTakesAQueryOfAnyKind) {
    const auto text = String("A");
    EXPECT_TRUE(Adopt(VLExperimentalDataFunnel(As<ValDictionary>(text.Get()), kVLScopeAll)));
    EXPECT_TRUE(Adopt(VLExperimentalDataFunnel(As<ValDictionary>(kValBooleanTrue), kVLScopeAll)));
}

TEST_F(OtherKinds, WhatIsNoURLInABatchIsPassedOver) {
    const auto url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    const auto text = String("A");
    const void *const items[] = {text.Get(), nullptr, url.Get()};
    const auto mixed = Adopt(ValArrayCreate(items, 3));
    ASSERT_TRUE(mixed);
    const auto all =
        Adopt(VLCopyPropertiesForFonts(mixed.Get(), Keys({kVLFontPropertyName}).Get(), kVLScopeProcess));
    EXPECT_EQ(ValDictionaryGetCount(all.Get()), 1U);
    EXPECT_TRUE(ValDictionaryContainsKey(all.Get(), url.Get()));
    const auto names = Adopt(VLCopyPropertyForFonts(mixed.Get(), kVLFontPropertyName, kVLScopeProcess));
    EXPECT_EQ(ValDictionaryGetCount(names.Get()), 1U);
}

TEST_F(OtherKinds, ValuesOfOtherKindsInARequestFindNothing) {
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    for (const ValString *key :
         {kVLFontPropertyName, kVLFontPropertyFamilyName, kVLFontPropertyFullName,
          kVLFontPropertySubfamilyName, kVLFontPropertyURL, kVLFontPropertyCharacterSet,
          kVLFontPropertySupportedLanguages, kVLFontPropertyVersionName}) {
        EXPECT_THAT(FindAll({{key, MakeNumber(1)}}), ElementsAre("(null)")) << TextOf(key);
        EXPECT_EQ(Find({{key, MakeNumber(1)}}), "(null)") << TextOf(key);
    }
}

// ---- containers that are not the library's own ----

// Called while a register is locked, this could never end.
uint64_t AskAgain(const void *) {
    ADD_FAILURE() << "a caller's callback was called";
    return 0;
}

TEST_F(OtherKinds, ContainersWithCallbacksOfTheCallerAnswerNothing) {
    Add("a.ttf", MakeFont({"A"}));
    const ValCallbacks own = {ValRetain, ValRelease, ValEqual, ValHash, ValCopyDescription};
    const auto request = Adopt(ValDictionaryCreateMutable(0, &own, nullptr));
    ValDictionarySetValue(request.Get(), kVLFontPropertyFamilyName, String("A").Get());
    EXPECT_FALSE(Adopt(VLCopyFontWithProperties(request.Get(), kVLScopeProcess, kNoActivation)));
    EXPECT_FALSE(Adopt(VLCopyFontsWithProperties(request.Get(), kVLScopeProcess, kNoActivation)));
    const auto raw = Adopt(ValDictionaryCreateMutable(0, &kValRawCallbacks, &kValRawCallbacks));
    EXPECT_FALSE(Adopt(VLCopyFontsWithProperties(raw.Get(), kVLScopeProcess, kNoActivation)));
}

TEST_F(OtherKinds, CallbacksOfTheCallerInsideARequestAreNotCalled) {
    Add("a.ttf", MakeFont({"A"}));
    const auto traits = Adopt(ValDictionaryCreateMutable(0, &kValValueCallbacks, nullptr));
    ValDictionarySetValue(traits.Get(), kVLFontTraitSymbolic, kValBooleanTrue);
    EXPECT_EQ(Find({{kVLFontPropertyTraits, traits}}, kVLScopeProcess), "(null)");
    const ValCallbacks asking = {ValRetain, ValRelease, ValEqual, AskAgain, ValCopyDescription};
    const auto languages = Adopt(ValSetCreateMutable(0, &asking));
    EXPECT_EQ(Find({{kVLFontPropertySupportedLanguages, languages}}, kVLScopeProcess), "(null)");
}

TEST_F(OtherKinds, ARequestThatSharesItsPartsWithoutEndAnswersNothing) {
    auto shared = Adopt(ValArrayCreateMutable(0, nullptr));
    for (int i = 0; i < 15; ++i) {
        auto outer = Adopt(ValArrayCreateMutable(100, nullptr));
        for (int j = 0; j < 100; ++j) ValArrayAppend(outer.Get(), shared.Get());
        shared = std::move(outer);
    }
    EXPECT_EQ(Find({{kVLFontPropertySupportedLanguages, shared}}, kVLScopeProcess), "(null)");
}

} // namespace
} // namespace vellum::test
