// SPDX-License-Identifier: MIT
// The exported functions that change a register: what they take, which register they change, what they hand
// back.
#include "query_registers.hpp"

#include <filesystem>
#include <fstream>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ExportedChanges : public QueryRegisters {
protected:
    struct Answer {
        bool succeeded;
        Ref<const ValArray> errors;
    };

    static Answer Register(const Ref<const ValArray> &urls, VLScope scope) {
        const ValArray *errors = urls.Get(); // something that must not stay
        const bool succeeded = VLRegisterFonts(urls.Get(), 0, scope, &errors);
        return {succeeded, Adopt(errors)};
    }
    static Answer Unregister(const Ref<const ValArray> &urls, VLScope scope) {
        const ValArray *errors = urls.Get();
        const bool succeeded = VLUnregisterFonts(urls.Get(), 0, scope, &errors);
        return {succeeded, Adopt(errors)};
    }
    static std::string TextOfURL(const Ref<const ValURL> &url) {
        return TextOf(ValURLGetString(url.Get()));
    }
    static std::vector<std::string> Names(VLScope scope) {
        return Texts(Adopt(VLCopyAvailableFontNames(scope)));
    }
};

TEST_F(ExportedChanges, NoURLsChangeNothingAndClearTheErrors) {
    const auto left = Array({folder.URLOf("x.ttf")});
    const ValArray *errors = left.Get();
    EXPECT_FALSE(VLRegisterFonts(nullptr, 0, kVLScopeProcess, &errors));
    EXPECT_EQ(errors, nullptr);
    errors = left.Get();
    EXPECT_FALSE(VLUnregisterFonts(nullptr, 0, kVLScopeProcess, &errors));
    EXPECT_EQ(errors, nullptr);
    EXPECT_FALSE(VLRegisterFont(nullptr, 0, kVLScopeProcess));
    EXPECT_FALSE(VLUnregisterFont(nullptr, 0, kVLScopeProcess));
    VLEnableFonts(nullptr, 0, kVLScopeAll);
    VLDisableFonts(nullptr, 0, kVLScopeAll);
    VLGetFunctions()->enable_font(nullptr, 0, kVLScopeAll);
    VLGetFunctions()->disable_font(nullptr, 0, kVLScopeAll);
    ExpectNoRegister();
}

TEST_F(ExportedChanges, NoRegisterGivesEveryURLBack) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"})), b = folder.Add("b.ttf", MakeFont({"B"}));
    for (const VLScope scope : {VLScope{0}, VLScope{kVLScopeSilent}, kVLScopeLegacyTold}) {
        const Answer registered = Register(Array({a, b}), scope);
        EXPECT_FALSE(registered.succeeded);
        EXPECT_THAT(Texts(registered.errors), ElementsAre(TextOfURL(a), TextOfURL(b)));
        const Answer unregistered = Unregister(Array({a, b}), scope);
        EXPECT_FALSE(unregistered.succeeded);
        EXPECT_THAT(Texts(unregistered.errors), ElementsAre(TextOfURL(a), TextOfURL(b)));
    }
    ExpectNoRegister();
}

TEST_F(ExportedChanges, WhatFailsIsHandedBackAndTheRestIsRegistered) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"})), broken = folder.Add("b.ttf", Bytes{1});
    const Answer answer = Register(Array({broken, a, a}), kVLScopeProcess);
    EXPECT_FALSE(answer.succeeded);
    EXPECT_THAT(Texts(answer.errors), ElementsAre(TextOfURL(broken), TextOfURL(a)));
    EXPECT_THAT(Names(kVLScopeProcess), ElementsAre("A-Regular"));
}

TEST_F(ExportedChanges, SuccessHandsNothingBack) {
    const Answer answer = Register(Array({folder.Add("a.ttf", MakeFont({"A"}))}), kVLScopeProcess);
    EXPECT_TRUE(answer.succeeded);
    EXPECT_FALSE(answer.errors);
}

TEST_F(ExportedChanges, FragmentsRelativePathsAndWhatIsNoFileAreMadePathsOrDropped) {
    const auto url = folder.Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto face = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=A-Regular").Get()));
    const auto base = FileURL(folder.Path() + "/");
    const auto relative = Adopt(ValURLCreateWithString(String("ab.ttc").Get(), base.Get()));
    const Answer answer =
        Register(Array({face, relative, MakeURL("https://example.org/a.ttf")}), kVLScopeProcess);
    EXPECT_FALSE(answer.succeeded); // two of them are one file, and what is no file is not there
    EXPECT_THAT(Texts(answer.errors), ElementsAre(TextOfURL(url)));
    EXPECT_THAT(Names(kVLScopeProcess), ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(ExportedChanges, NothingButWhatIsNoFileSucceeds) {
    const auto urls =
        Array({MakeURL("https://example.org/a.ttf"), MakeURL("file://inMemory_0x1#postscript-name=A")});
    const Answer registered = Register(urls, kVLScopeProcess);
    EXPECT_TRUE(registered.succeeded);
    EXPECT_FALSE(registered.errors);
    EXPECT_TRUE(Unregister(urls, kVLScopeProcess).succeeded);
}

TEST_F(ExportedChanges, BothRegistersInAScopeMeanTheSharedOneForFiles) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    EXPECT_TRUE(Unregister(Array({shared}), kVLScopeAll).succeeded);
    EXPECT_THAT(Names(kVLScopeUser), IsEmpty());
    const auto own = Add("b.ttf", MakeFont({"B"}));
    EXPECT_TRUE(Unregister(Array({own}), kVLScopeAll).succeeded); // unknown there: no failure
    EXPECT_THAT(Names(kVLScopeProcess), ElementsAre("B-Regular"));
}

// The shared register is one of the process's kind as long as no server holds it, and takes no other scope
// than the process's.
TEST_F(ExportedChanges, ASharedRegisterInTheProcessTakesNoFiles) {
    const Answer answer = Register(Array({folder.Add("a.ttf", MakeFont({"A"}))}), kVLScopeUser);
    EXPECT_FALSE(answer.succeeded);
    EXPECT_FALSE(answer.errors);
}

TEST_F(ExportedChanges, EnablingAndDisablingReachBothRegisters) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    const auto own = Add("b.ttf", MakeFont({"B"}));
    const auto urls = Array({shared, own});
    VLDisableFonts(urls.Get(), 0, kVLScopeAll);
    EXPECT_THAT(Names(kVLScopeAll), IsEmpty());
    VLEnableFonts(urls.Get(), 0, kVLScopeProcess);
    EXPECT_THAT(Names(kVLScopeAll), ElementsAre("B-Regular"));
    VLEnableFonts(urls.Get(), 0, kVLScopeSession);
    EXPECT_THAT(Names(kVLScopeAll), ElementsAre("A-Regular", "B-Regular"));
    VLGetFunctions()->disable_font(shared.Get(), 0, kVLScopeAll);
    VLGetFunctions()->disable_font(own.Get(), 0, kVLScopeUser);
    EXPECT_THAT(Names(kVLScopeAll), ElementsAre("B-Regular"));
}

TEST_F(ExportedChanges, ADirectoryIsTakenForTheUserAlone) {
    const auto directory = FileURL(folder.Path() + "/");
    for (const VLScope scope : {0U, 1U, 3U, 4U, 5U, 6U, 7U}) {
        EXPECT_FALSE(VLRegisterFontDirectory(directory.Get(), 0, 0, scope)) << scope;
        EXPECT_FALSE(VLUnregisterFontDirectory(directory.Get(), 0, scope)) << scope;
    }
    EXPECT_FALSE(VLRegisterFontDirectory(nullptr, 0, 0, kVLScopeUser));
    ExpectNoRegister();
    VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser);
    EXPECT_TRUE(TGlobalGlyphary::IsCreated());
}

// Puts other bytes of the same number into a file, which nobody sees from outside.
void ReplaceUnnoticed(const std::string &path, const Bytes &bytes) {
    ASSERT_EQ(std::filesystem::file_size(path), bytes.size());
    const auto time = std::filesystem::last_write_time(path);
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    std::filesystem::last_write_time(path, time);
}

// The parser may keep what it read of a file: not beyond the file's being unregistered.
TEST_F(ExportedChanges, AFileThatIsUnregisteredAndReplacedIsReadAnew) {
    const auto url = Add("a.ttf", MakeFont({"Old"}));
    EXPECT_THAT(Names(kVLScopeProcess), ElementsAre("Old-Regular"));
    ReplaceUnnoticed(folder.File("a.ttf"), MakeFont({"New"}));
    EXPECT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(Names(kVLScopeProcess), ElementsAre("New-Regular"));
}

// ---- what the parser keeps ----

TEST_F(ExportedChanges, OfOneFileMakeTheParserForgetThatFileAlone) {
    const auto one = Add("1.ttf", MakeFont({"A"})), two = Add("2.ttf", MakeFont({"B"}));
    const auto first = CreateFontFromURL(one.Get()), second = CreateFontFromURL(two.Get());
    ASSERT_EQ(CreateFontFromURL(one.Get()).Get(), first.Get());
    EXPECT_TRUE(Unregister(Array({one}), kVLScopeProcess).succeeded);
    EXPECT_NE(CreateFontFromURL(one.Get()).Get(), first.Get());
    EXPECT_EQ(CreateFontFromURL(two.Get()).Get(), second.Get());
}

TEST_F(ExportedChanges, OfSeveralFilesMakeTheParserForgetEverything) {
    const auto one = Add("1.ttf", MakeFont({"A"})), two = Add("2.ttf", MakeFont({"B"})),
               third = Add("3.ttf", MakeFont({"C"}));
    const auto kept = CreateFontFromURL(third.Get());
    ASSERT_EQ(CreateFontFromURL(third.Get()).Get(), kept.Get());
    EXPECT_TRUE(Unregister(Array({one, two}), kVLScopeProcess).succeeded);
    EXPECT_NE(CreateFontFromURL(third.Get()).Get(), kept.Get());
}

} // namespace
} // namespace vellum::test
