// SPDX-License-Identifier: MIT
// Lookups and listings, answered by a register and by the model of it: of everything that there is.
#include "query/model_world.hpp"
#include "support/values.hpp"

#include <memory>
#include <set>

namespace vellum::test {
namespace {

constexpr size_t kCharacters = 2000;
constexpr size_t kParts = 4; // of the characters, for tests that end soon

template <class World>
class ModelLookupsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { sWorld = std::make_unique<World>(); }
    static void TearDownTestSuite() { sWorld.reset(); }

    // Of every face and kind, each once and in another letter case too; and what is no name.
    static void AskNames() {
        std::set<std::string> names = {"", "Unknown of all", "Regular", "REGULAR"};
        for (const ModelFace *face : sWorld->model.Enabled()) {
            for (const auto &kind : face->names) {
                for (const ModelName &name : kind) names.insert({name.text, ModelOtherCase(name.text)});
            }
        }
        for (const std::string &name : names) ASSERT_TRUE(sWorld->AgreeOnName(String(name).Get()));
        EXPECT_GT(names.size(), 150u);
    }

    static void AskURLs() {
        for (const ModelFace *face : sWorld->model.Enabled()) {
            ASSERT_TRUE(sWorld->AgreeOnURL(face->url.Get()));
            ASSERT_TRUE(sWorld->AgreeOnURL(FileURL(face->path).Get()));
        }
        ModelRequests requests(sWorld->model.Enabled(), 7);
        for (size_t i = 0; i < 600; ++i)
            ASSERT_TRUE(sWorld->AgreeOnURL(requests.NextURL().Get())) << "number " << i;
        for (const char *text : {"http://example.org/a.ttf", "file:///", "file:///nowhere#full-name=x"})
            ASSERT_TRUE(sWorld->AgreeOnURL(MakeURL(text).Get()));
    }

    static void AskProperties() {
        ModelRequests requests(sWorld->model.Enabled(), 8);
        for (size_t i = 0; i < 300; ++i) {
            ASSERT_TRUE(sWorld->AgreeOnFontDescribed(requests.NextURL().Get())) << "number " << i;
            ASSERT_TRUE(sWorld->AgreeOnFontsDescribed(requests.Next().Get())) << "number " << i;
        }
        ASSERT_TRUE(sWorld->AgreeOnRequest(nullptr)); // everything
    }

    static void AskListings() {
        ASSERT_TRUE(sWorld->AgreeOnListings());
        for (const std::string &language : Languages())
            ASSERT_TRUE(sWorld->AgreeOnLanguage(String(language).Get()));
    }

    // Thirty that faces have, and others.
    static std::set<std::string> Languages() {
        std::set<std::string> all;
        for (const ModelFace *face : sWorld->model.Enabled()) {
            if (face->languages) all.insert(face->languages->begin(), face->languages->end());
        }
        std::set<std::string> chosen = {"", "xx", "EN", "en-GB", "de-AT", "English"};
        size_t place = 0;
        for (const std::string &language : all) {
            if (place++ % std::max<size_t>(all.size() / 30, 1) == 0) chosen.insert(language);
        }
        EXPECT_GE(chosen.size(), 30u);
        return chosen;
    }

    // From every page of which any face has a character, some that are there and some at random; and from
    // everywhere. One part of them.
    static void AskCharacters(size_t part) {
        std::set<uint32_t> pages;
        for (const ModelFace *face : sWorld->model.Enabled()) {
            for (const CodeRange &range : face->coverage) {
                for (uint32_t page = range.first >> 8; page <= range.second >> 8; ++page)
                    pages.insert(page);
            }
        }
        ModelRandom random(part);
        ASSERT_FALSE(pages.empty());
        for (const uint32_t page : pages) {
            const size_t count = kCharacters / kParts / pages.size();
            for (size_t i = 0; i <= count; ++i)
                ASSERT_TRUE(sWorld->AgreeOnCharacter(page << 8 | static_cast<uint32_t>(random.Below(256))));
        }
        for (size_t i = 0; i < 60; ++i)
            ASSERT_TRUE(sWorld->AgreeOnCharacter(static_cast<uint32_t>(random.Below(0x110000))));
        for (const uint32_t character : {0u, 0xD800u, 0xFFFFu, 0x10FFFFu, 0x110000u, UINT32_MAX})
            ASSERT_TRUE(sWorld->AgreeOnCharacter(character));
    }

    static std::unique_ptr<World> sWorld;
};

template <class World>
std::unique_ptr<World> ModelLookupsTest<World>::sWorld;

class ModelLookupsInGeneratedFonts : public ModelLookupsTest<GeneratedWorld> {};

class ModelLookupsInInstalledFonts : public ModelLookupsTest<InstalledWorld> {
protected:
    void SetUp() override { ASSERT_EQ(sWorld->error, ""); }
};

TEST_F(ModelLookupsInGeneratedFonts, AgreeOnEveryName) {
    AskNames();
}

TEST_F(ModelLookupsInGeneratedFonts, AgreeOnURLs) {
    AskURLs();
}

TEST_F(ModelLookupsInGeneratedFonts, AgreeOnWhosePropertiesAreCopied) {
    AskProperties();
}

TEST_F(ModelLookupsInGeneratedFonts, AgreeOnListings) {
    AskListings();
}

TEST_F(ModelLookupsInInstalledFonts, AgreeOnEveryName) {
    AskNames();
}

TEST_F(ModelLookupsInInstalledFonts, AgreeOnURLs) {
    AskURLs();
}

TEST_F(ModelLookupsInInstalledFonts, AgreeOnWhosePropertiesAreCopied) {
    AskProperties();
}

TEST_F(ModelLookupsInInstalledFonts, AgreeOnListings) {
    AskListings();
}

class ModelCharactersInGeneratedFonts : public ModelLookupsInGeneratedFonts,
                                        public ::testing::WithParamInterface<size_t> {};
class ModelCharactersInInstalledFonts : public ModelLookupsInInstalledFonts,
                                        public ::testing::WithParamInterface<size_t> {};

TEST_P(ModelCharactersInGeneratedFonts, AreFoundInTheSameFonts) {
    AskCharacters(GetParam());
}

TEST_P(ModelCharactersInInstalledFonts, AreFoundInTheSameFonts) {
    AskCharacters(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Parts, ModelCharactersInGeneratedFonts, ::testing::Range<size_t>(0, kParts));
INSTANTIATE_TEST_SUITE_P(Parts, ModelCharactersInInstalledFonts, ::testing::Range<size_t>(0, kParts));

} // namespace
} // namespace vellum::test
