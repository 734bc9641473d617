// SPDX-License-Identifier: MIT
// What is derived of a face is derived once and kept with its font, unless the file could not be read then.
#include "describe/entities.hpp"
#include "describe/face_facts.hpp"
#include "support/threads.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

// Names of every kind in two languages.
std::vector<NameRecord> ManyNames() {
    std::vector<NameRecord> names = {WindowsName(6, "Foo-Bold"), WindowsName(256, "Weight")};
    for (const uint16_t id :
         {uint16_t{0}, uint16_t{1}, uint16_t{2}, uint16_t{4}, uint16_t{5}, uint16_t{16}}) {
        names.push_back(WindowsName(id, "English " + std::to_string(id)));
        names.push_back(WindowsName(id, "French " + std::to_string(id), kFrench));
    }
    return names;
}

// A font that has something to answer to every question.
Bytes FullFont() {
    Os2Fields os2{.weight_class = 700};
    os2.unicode_ranges[0] = 1u << 11; // Hebrew
    return FontBuilder()
        .Names(ManyNames())
        .Table("OS/2", Os2Table(os2))
        .Table("cmap",
               CmapTable({{1, 1, CmapFormat4({{'A', 'Z', 1}})}, {3, 1, CmapFormat4({{'A', 'Z', 1}})}}))
        .Table("fvar", FvarTable({{"wght", 100, 400, 900, 256}}, {}))
        .Build();
}

// A question: a key, and for names whether all of them are asked for.
struct Question {
    const ValString *key;
    bool all;
};

bool operator<(const Question &a, const Question &b) {
    return std::pair(a.key, a.all) < std::pair(b.key, b.all);
}

// What reading the file decides; its path, and so URL and format, are known without.
std::vector<Question> QuestionsOfTheContent() {
    std::vector<Question> questions;
    for (const ValString *key :
         {kVLFontPropertyName, kVLFontPropertyFamilyName, kVLFontPropertyFullName,
          kVLFontPropertySubfamilyName, kVLFontPropertyVersionName, kVLFontPropertyCopyrightName})
        for (const bool all : {false, true}) questions.push_back({key, all});
    for (const ValString *key :
         {kVLFontPropertyLocalizedNames, kVLFontPropertyTraits, kVLFontPropertyCharacterSet,
          kVLFontPropertySupportedLanguages, kVLFontPropertyStringEncoding, kVLFontPropertyUnicodeRanges})
        questions.push_back({key, false});
    return questions;
}

std::vector<Question> Questions() {
    auto questions = QuestionsOfTheContent();
    for (const ValString *key : {kVLFontPropertyURL, kVLFontPropertyVariationAxes,
                                 kVLFontPropertyVariations, kVLFontPropertyFormat, kVLFontPropertyFlags})
        questions.push_back({key, false});
    return questions;
}

using Answers = std::map<Question, Ref<const void>>;

Answers AskAll(const TClientFontEntity &entity, const std::vector<Question> &questions = Questions()) {
    Answers answers;
    for (const Question &question : questions)
        answers[question] = entity.CopyProperty(question.key, question.all);
    return answers;
}

void ExpectTheSameObjects(const Answers &a, const Answers &b) {
    for (const auto &[question, answer] : a) {
        EXPECT_TRUE(answer) << TextOf(question.key);
        EXPECT_EQ(answer.Get(), b.at(question).Get()) << TextOf(question.key) << ' ' << question.all;
    }
}

void ExpectEqual(const Answers &a, const Answers &b) {
    for (const auto &[question, answer] : a)
        EXPECT_TRUE(ValEqual(answer.Get(), b.at(question).Get()))
            << TextOf(question.key) << ' ' << question.all;
}

class KeptFacts : public ::testing::Test {
protected:
    // Another font of the file, which has nothing of what another has kept.
    Ref<const GxFont> FreshFont() const {
        FacetFontPurgeCaches(nullptr);
        return CreateFontFromURL(url.Get());
    }

    void MoveAway() const { fs::rename(folder.File("a.ttf"), folder.File("away")); }
    void MoveBack() const { fs::rename(folder.File("away"), folder.File("a.ttf")); }

    FontFolder folder;
    const Ref<const ValURL> url = folder.Add("a.ttf", FullFont());
    const Ref<const GxFont> font = FreshFont();
};

TEST_F(KeptFacts, AreTheSameObjectsWhenTheyAreAskedForAgain) {
    const TClientFontEntity entity(font);
    ExpectTheSameObjects(AskAll(entity), AskAll(entity));
}

TEST_F(KeptFacts, AreTheSameObjectsForEveryEntityOverTheFont) {
    const auto first = AskAll(TClientFontEntity(font));
    ExpectTheSameObjects(first, AskAll(TClientFontEntity(font)));
    EXPECT_EQ(TClientFontEntity(font).GetURL(), TClientFontEntity(font).GetURL());
}

TEST_F(KeptFacts, DoNotMakeAnotherFontsFacts) {
    const auto a = AskAll(TClientFontEntity(font)), b = AskAll(TClientFontEntity(FreshFont()));
    ExpectEqual(a, b);
    const Question traits = {kVLFontPropertyTraits, false};
    EXPECT_NE(a.at(traits).Get(), b.at(traits).Get());
}

TEST_F(KeptFacts, OfAnEntityWithMetadataOfItsOwnAreItsAlone) {
    const auto with = AskAll(TClientFontEntity(font, Metadata({{"ID_FullName_Aliases", String("Alias")}})));
    const auto without = AskAll(TClientFontEntity(font));
    const Question names = {kVLFontPropertyFullName, true};
    EXPECT_THAT(All(with.at(names)), ::testing::Contains("Alias"));
    EXPECT_THAT(All(without.at(names)), ::testing::Not(::testing::Contains("Alias")));
}

TEST_F(KeptFacts, OutliveTheFile) {
    const auto before = AskAll(TClientFontEntity(font));
    fs::remove(folder.File("a.ttf"));
    ExpectTheSameObjects(before, AskAll(TClientFontEntity(font)));
}

TEST_F(KeptFacts, OutliveAFileThatChanged) {
    const auto before = AskAll(TClientFontEntity(font));
    folder.Add("a.ttf", NamedFace{"Changed"});
    ExpectTheSameObjects(before, AskAll(TClientFontEntity(font)));
}

TEST_F(KeptFacts, LiveAsLongAsAnybodyHoldsThem) {
    Answers answers;
    {
        auto passing = FreshFont();
        answers = AskAll(TClientFontEntity(passing));
        FacetFontPurgeCaches(nullptr);
    }
    ExpectEqual(answers, AskAll(TClientFontEntity(FreshFont())));
}

// ---- while the file cannot be read ------------------------------------------------------------------

TEST_F(KeptFacts, AreNotThoseDerivedWhileTheFileWasAway) {
    for (const Question &question : Questions()) {
        const auto fresh = FreshFont(), other = FreshFont();
        MoveAway();
        TClientFontEntity(fresh).CopyProperty(question.key, question.all);
        MoveBack();
        EXPECT_TRUE(ValEqual(TClientFontEntity(fresh).CopyProperty(question.key, question.all).Get(),
                             TClientFontEntity(other).CopyProperty(question.key, question.all).Get()))
            << TextOf(question.key) << ' ' << question.all;
    }
}

TEST_F(KeptFacts, AreAllThereAfterEverythingWasAskedWhileTheFileWasAway) {
    const auto expected = AskAll(TClientFontEntity(FreshFont()));
    const auto fresh = FreshFont();
    MoveAway();
    AskAll(TClientFontEntity(fresh));
    const auto table = GxFontCopyTable(fresh.Get(), MakeTag("OS/2"));
    MoveBack();
    EXPECT_FALSE(table); // or nothing was tested
    ExpectEqual(expected, AskAll(TClientFontEntity(fresh)));
    ExpectTheSameObjects(AskAll(TClientFontEntity(fresh)), AskAll(TClientFontEntity(fresh)));
}

TEST_F(KeptFacts, AreNotThoseOfAFontThatWasOnlyPartlyRead) {
    const auto expected = AskAll(TClientFontEntity(FreshFont()));
    for (const Question &first : QuestionsOfTheContent()) {
        const auto fresh = FreshFont();
        TClientFontEntity(fresh).CopyProperty(first.key, first.all);
        MoveAway();
        AskAll(TClientFontEntity(fresh));
        MoveBack();
        ExpectEqual(expected, AskAll(TClientFontEntity(fresh)));
    }
}

TEST_F(KeptFacts, CountTheFailuresThatTheyDependOn) {
    const uint32_t before = tPassingFailures;
    AskAll(TClientFontEntity(FreshFont()));
    EXPECT_EQ(tPassingFailures, before);
    const auto fresh = FreshFont();
    MoveAway();
    TClientFontEntity(fresh).CopyTraits();
    EXPECT_NE(tPassingFailures, before);
}

// ---- threads ----------------------------------------------------------------------------------------

TEST(ConcurrentFaceFacts, AreTheSameObjectsForEveryThread) {
    FontFolder folder;
    const auto url = folder.Add("a.ttf", FullFont());
    const auto collection = folder.Add("a.ttc", MakeCollection({{"A"}, {"B"}}));
    for (int round = 0; round < 5; ++round) {
        FacetFontPurgeCaches(nullptr);
        std::vector<Ref<const GxFont>> fonts = {CreateFontFromURL(url.Get()), FontOf(FullFont())};
        const auto faces = CreateFontsFromURL(collection.Get());
        for (const void *face : Elements(faces.Get()))
            fonts.push_back(Retain(static_cast<const GxFont *>(face)));
        std::vector<std::vector<Answers>> seen(kThreads, std::vector<Answers>(fonts.size()));
        OnEveryThread([&](size_t thread) {
            auto questions = Questions();
            std::rotate(questions.begin(), questions.begin() + static_cast<std::ptrdiff_t>(2 * thread),
                        questions.end());
            for (size_t i = 0; i < fonts.size(); ++i)
                seen[thread][i] = AskAll(TClientFontEntity(fonts[i]), questions);
        });
        for (size_t i = 0; i < fonts.size(); ++i)
            for (size_t thread = 1; thread < kThreads; ++thread)
                for (const auto &[question, answer] : seen[0][i])
                    EXPECT_EQ(answer.Get(), seen[thread][i].at(question).Get()) << TextOf(question.key);
        ExpectTheSameObjects(seen[0][0], AskAll(TClientFontEntity(fonts[0])));
    }
}

} // namespace
} // namespace vellum::test
