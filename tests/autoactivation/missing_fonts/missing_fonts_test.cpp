// SPDX-License-Identifier: MIT
// Applications that ask for fonts which no register has: what they get, from where, and who hears of it.
#include "machine.hpp"
#include "support/other_process.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <utime.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

constexpr char kApp[] = "org.example.App";

class MissingFonts : public ::testing::Test {
protected:
    // A file, last changed so many seconds after the others of which nothing is said.
    void Add(const std::string &name, const Bytes &font, time_t age = 0) {
        const auto url = machine.Files().Add(name, font);
        const utimbuf times = {1'600'000'000 + age, 1'600'000'000 + age};
        ASSERT_EQ(::utime(machine.Files().File(name).c_str(), &times), 0);
    }
    void Add(const std::string &name, const NamedFace &face, time_t age = 0) {
        Add(name, MakeFont(face), age);
    }
    std::string File(const std::string &name) { return machine.Files().File(name); }

    Machine machine;
};

TEST(MissingFontsOfOtherVolumes, AreActivatedInStableStorageForTheOneWhoAsked) {
    struct stat memory = {}, root = {};
    if (::stat("/dev/shm", &memory) != 0 || ::stat("/", &root) != 0 || memory.st_dev == root.st_dev)
        GTEST_SKIP() << "there is no volume but the root";
    Machine machine(Volume::kInMemory);
    machine.Files().Add("deep/in/foo.ttf", NamedFace{"Foo"});
    machine.Start();
    Application one(kApp), other("org.example.Other");
    EXPECT_EQ(one.Do("known Foo-Regular"), "none");
    const std::string copy = machine.StableStorageOf(one) + "/foo.ttf";
    EXPECT_EQ(one.Do("find Foo-Regular"), copy);
    EXPECT_TRUE(fs::exists(copy));
    EXPECT_EQ(one.Do("heard"), "added " + copy);
    EXPECT_EQ(one.Do("calm"), "0");
    EXPECT_EQ(one.Do("known Foo-Regular"), copy);
    EXPECT_EQ(other.Do("known Foo-Regular"), "none");
    EXPECT_EQ(other.Do("calm"), "0");
}

TEST_F(MissingFonts, AreFoundByEachEntryPointAndToldOfOnce) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    for (const char *question : {"find Foo-Regular", "best Foo", "every Foo"}) {
        Application application(kApp);
        const std::string font = File("foo.ttf");
        EXPECT_EQ(application.Do(question), font) << question;
        EXPECT_EQ(application.Do("heard"), "added " + font) << question;
        EXPECT_EQ(application.Do(question), font) << question;
        EXPECT_EQ(application.Do("calm"), "0") << question;
    }
}

TEST_F(MissingFonts, AreNotSoughtWhereThatIsRuledOutOrTheProcessAsksForNoneOfItsOwn) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    Application application(kApp);
    for (const char *question :
         {"ask 7 65536 Foo-Regular", "ask 7 131072 Foo-Regular", "ask 7 196608 Foo-Regular",
          "ask 6 0 Foo-Regular", "ask 2 0 Foo-Regular", "ask 0 0 Foo-Regular"})
        EXPECT_EQ(application.Do(question), "none") << question;
    EXPECT_EQ(application.Do("ask 1 0 Foo-Regular"), File("foo.ttf"));
}

TEST_F(MissingFonts, AreSoughtByTheNamesOfARequestAlone) {
    Add("foo.ttf", NamedFace{"Foo", "Bold", "Foo-Bold"});
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("bold"), "none");
    EXPECT_EQ(application.Do("find Foo Bold"), "none") << "no PostScript name has a space";
    EXPECT_EQ(application.Do("styled Bold"), "none") << "no face is matched by its style alone";
    EXPECT_EQ(application.Do("find foo-bold"), "none") << "the index compares names as they are";
    EXPECT_EQ(application.Do("find Foo-Bold"), File("foo.ttf"));
}

TEST_F(MissingFonts, AreOfTheFirstFolderThatHasOneThatFits) {
    Add("a/new.ttf", NamedFace{"Foo"}, 2);
    Add("b/old.ttf", NamedFace{"Foo"}, 0);
    Add("a/newest.ttf", NamedFace{"Foo"}, 3);
    Add("b/newer.ttf", NamedFace{"Foo"}, 1);
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("every Foo"), File("b/old.ttf") + " " + File("b/newer.ttf"));
    EXPECT_EQ(application.Do("every Foo"), File("b/old.ttf") + " " + File("b/newer.ttf"));
}

TEST_F(MissingFonts, ComeBestFirst) {
    Add("a.ttf", NamedFace{"Foo", "Style 10"}, 0);
    Add("b.ttf", NamedFace{"Foo", "Style 2"}, 1);
    Add("c.ttf", NamedFace{"Foo", "Style 1"}, 2);
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("every Foo"), File("c.ttf") + " " + File("b.ttf") + " " + File("a.ttf"));
}

TEST_F(MissingFonts, OfOneFileComeTogether) {
    Add("foo.ttc",
        MakeCollection({NamedFace{"Foo", "Regular"}, NamedFace{"Foo", "Bold"}, NamedFace{"Bar"}}));
    machine.Start();
    Application application(kApp);
    const std::string font = File("foo.ttc");
    EXPECT_EQ(application.Do("every Foo"), font + " " + font);
    EXPECT_EQ(application.Do("known Bar-Regular"), font) << "a file is registered whole";
}

TEST_F(MissingFonts, AreNoneThatSomebodyDisabled) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    const auto url = FileURL(File("foo.ttf"));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeSession));
    VLDisableFonts(OneElement(url.Get()).Get(), 0, kVLScopeSession);
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_EQ(application.Do("calm"), "0");
    VLUnregisterFonts(OneElement(url.Get()).Get(), 0, kVLScopeSession, nullptr);
    EXPECT_EQ(application.Do("find Foo-Regular"), File("foo.ttf"));
}

TEST_F(MissingFonts, AreOfTheNextFolderWhereAllOfTheFirstAreDisabled) {
    Add("a/foo.ttf", NamedFace{"Foo"}, 0);
    Add("b/foo.ttf", NamedFace{"Foo"}, 1);
    machine.Start();
    const auto url = FileURL(File("a/foo.ttf"));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeSession));
    VLDisableFonts(OneElement(url.Get()).Get(), 0, kVLScopeSession);
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), File("b/foo.ttf"));
}

TEST_F(MissingFonts, AreNoneInAFolderThatIsMarked) {
    Add("a/foo.ttf", NamedFace{"Foo"}, 0);
    Add("b/foo.ttf", NamedFace{"Foo"}, 1);
    machine.Files().Write("a/.FountDoNotAutoActivate", "");
    machine.Start();
    Application application(kApp);
    machine.Files().Write("b/.FountDoNotAutoActivate", "");
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    fs::remove(File("b/.FountDoNotAutoActivate"));
    EXPECT_EQ(application.Do("find Foo-Regular"), File("b/foo.ttf"));
}

TEST_F(MissingFonts, AreNoneThatWentSinceTheyWereIndexed) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    Application application(kApp);
    ::kill(static_cast<pid_t>(RunningBeacon::Number("crawler")), SIGSTOP);
    fs::remove(File("foo.ttf"));
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_EQ(application.Do("disabled"), "no");
}

// ---- names that mean to be more ----

TEST_F(MissingFonts, AreNotFoundByNamesThatBreakOutOfTheirClause) {
    Add("foo.ttf", NamedFace{"Foo"});
    Add("bar.ttf", NamedFace{"B\\ar"});
    machine.Start();
    Application application(kApp);
    for (const char *name :
         {"x\" && com_orrery_fount_name_family == \"Foo", "Foo\" ", "Foo\\", "\"", "\\\""})
        EXPECT_EQ(application.Do(std::string("every ") + name), "none") << name;
    EXPECT_EQ(application.Do("disabled"), "no") << "a query that can't be read is answered";
    EXPECT_EQ(application.Do("every B\\ar"), File("bar.ttf"));
}

// ---- the user's word ----

TEST_F(MissingFonts, AreActivatedOnceTheUserSaysSo) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    machine.AnswerWith("echo once");
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), File("foo.ttf"));
    EXPECT_EQ(machine.Questions(), 1);
    EXPECT_EQ(application.Do("own?"), "0");
}

TEST_F(MissingFonts, AreNotSoughtAgainOnceTheUserRefusedThem) {
    Add("foo.ttf", NamedFace{"Foo"});
    Add("bar.ttf", NamedFace{"Bar"});
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    machine.AnswerWith("echo not-now");
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    machine.AnswerWith("echo once");
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_EQ(machine.Questions(), 1);
    EXPECT_EQ(application.Do("best Foo"), File("foo.ttf")) << "another request";
    EXPECT_EQ(machine.Questions(), 2);
    Application other("org.example.Other");
    EXPECT_EQ(other.Do("find Foo-Regular"), File("foo.ttf")) << "another process";
}

TEST_F(MissingFonts, AreAnsweredForEverWhereTheUserSaysSo) {
    Add("foo.ttf", NamedFace{"Foo"});
    Add("bar.ttf", NamedFace{"Bar"});
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    machine.AnswerWith("echo always");
    machine.Start();
    Application application(kApp), other("org.example.Other");
    EXPECT_EQ(application.Do("find Foo-Regular"), File("foo.ttf"));
    EXPECT_EQ(application.Do("own?"), "2");
    EXPECT_EQ(application.Do("find Bar-Regular"), File("bar.ttf"));
    EXPECT_EQ(machine.Questions(), 1);
    machine.AnswerWith("echo never");
    EXPECT_EQ(other.Do("find Foo-Regular"), "none");
    EXPECT_EQ(other.Do("own?"), "1");
    EXPECT_EQ(other.Do("find Bar-Regular"), "none");
    EXPECT_EQ(machine.Questions(), 2);
}

TEST_F(MissingFonts, AreThoseThatTheUserPicked) {
    Add("a.ttf", NamedFace{"Foo", "Style 1"});
    Add("b.ttf", NamedFace{"Foo", "Style 2"});
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    machine.InstallCompanion(VELLUM_PICKY_COMPANION);
    machine.Start();
    Application application(kApp);
    EXPECT_EQ(application.Do("every Foo"), File("b.ttf"));
}

// ---- providers ----

// Offers a file until it is killed, to whoever asks; says how it was asked by adding to a file.
class Provider {
public:
    Provider(const std::string &font, const std::string &questions)
        : process_([&] {
              font_ = font;
              questions_ = questions;
              const auto port = Adopt(VLCreateFontProviderLocalPort(Answer, nullptr, nullptr));
              if (port) OtherProcess::IsReady();
              for (;;) {
                  pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
                  ::poll(&ready, 1, -1);
                  VLDeliverNotifications();
              }
          }) {}

    void Kill() { process_.Kill(); }

private:
    static const void *Answer(void *, const ValDictionary *request, int32_t process) {
        const auto *name =
            static_cast<const ValString *>(ValDictionaryGetValue(request, kVLFontPropertyName));
        std::ofstream(questions_, std::ios::app) << process << ' ' << TextOf(name) << '\n';
        return OneElement(FileURL(font_).Get()).Release();
    }

    static inline std::string font_, questions_;
    OtherProcess process_;
};

std::string Contents(const std::string &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class ProvidedFonts : public MissingFonts {
protected:
    // Where the index does not look.
    const TempDir elsewhere;
    const std::string font = elsewhere.Write("foo.ttf", MakeFont({"Foo"}));
    const std::string questions = elsewhere.File("questions");
};

TEST_F(ProvidedFonts, AreRegisteredForTheOneWhoAskedFromWhereTheyLie) {
    machine.Start();
    const Provider provider(font, questions);
    Application application(kApp), other("org.example.Other");
    EXPECT_EQ(application.Do("find Foo-Regular"), font);
    EXPECT_EQ(application.Do("heard"), "added " + font);
    EXPECT_EQ(application.Do("calm"), "0");
    EXPECT_EQ(other.Do("known Foo-Regular"), "none");
    EXPECT_EQ(Contents(questions), std::to_string(application.Process()) + " Foo-Regular\n");
}

TEST_F(ProvidedFonts, ComeBeforeThoseOfTheIndex) {
    Add("foo.ttf", NamedFace{"Foo"});
    machine.Start();
    const Provider provider(font, questions);
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), font);
}

// Who asks its own register alone has not asked the server yet.
TEST_F(ProvidedFonts, ThatTheServerHasAreItsOwn) {
    machine.Start();
    const Provider provider(font, questions);
    ASSERT_TRUE(VLRegisterFont(FileURL(font).Get(), 0, kVLScopeSession));
    Application application(kApp);
    EXPECT_EQ(application.Do("ask 1 0 Foo-Regular"), font);
    EXPECT_EQ(application.Do("heard"), "added " + font);
    EXPECT_EQ(application.Do("every-own Foo"), font);
    EXPECT_EQ(application.Do("ask 1 65536 Foo-Regular"), "none") << "the process has registered nothing";
}

TEST_F(ProvidedFonts, AreHadWhateverTheUserSaysOfSearching) {
    machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationDisable</string>");
    machine.Start();
    const Provider provider(font, questions);
    Application application(kApp, "<key>FountDisableAutoActivation</key><true/>");
    EXPECT_EQ(application.Do("find Foo-Regular"), font);
}

TEST_F(ProvidedFonts, ThatDoNotFitLeaveTheSearchToTheIndex) {
    Add("bar.ttf", NamedFace{"Bar"});
    machine.Start();
    const Provider provider(font, questions);
    Application application(kApp);
    EXPECT_EQ(application.Do("find Bar-Regular"), File("bar.ttf"));
    EXPECT_EQ(application.Do("known Foo-Regular"), font) << "what a provider gives is registered";
}

} // namespace
} // namespace vellum::test
