// SPDX-License-Identifier: MIT
// What an entity says of one face, or of two, compared with what the model says.
#include "describe/basic_font_entity.hpp"
#include "describe/client_font_entity.hpp"
#include "query/model_matching.hpp"
#include "query/model_world.hpp"
#include "support/values.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <memory>

namespace vellum::test {
namespace {

constexpr size_t kQuestions = 20000;

class ModelOfOneFace : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        sFolder = std::make_unique<GeneratedWorld>();
        sRequests = std::make_unique<ModelRequests>(sFolder->model.AllFaces(), 11);
    }
    static void TearDownTestSuite() {
        sRequests.reset();
        sFolder.reset();
    }

    static ModelRandom &Random() { return sRequests->Random(); }
    static const ModelFace &AnyFace() { return sRequests->AnyFace(); }

    // The same face or any other: so that most questions are near to a hit.
    static const ModelFace &Near(const ModelFace &face) { return Random().OneIn(3) ? AnyFace() : face; }

    static std::unique_ptr<GeneratedWorld> sFolder;
    static std::unique_ptr<ModelRequests> sRequests;
};

std::unique_ptr<GeneratedWorld> ModelOfOneFace::sFolder;
std::unique_ptr<ModelRequests> ModelOfOneFace::sRequests;

TEST_F(ModelOfOneFace, MatchesEveryPropertyAsTheEntityDoes) {
    size_t matches = 0;
    for (size_t i = 0; i < kQuestions; ++i) {
        const ModelFace &face = AnyFace();
        const size_t number = Random().Between(1, 27);
        const auto value = sRequests->Value(number, Near(face));
        const auto key = Random().OneIn(4) ? String(TextOf(ModelKey(number))) : Retain(ModelKey(number));
        const bool expected = ModelMatches(face, number, value.Get());
        ASSERT_EQ(TClientFontEntity(face.font).MatchesProperty(key.Get(), value.Get()), expected)
            << face.url_text << "\n"
            << TextOf(key) << "\n"
            << TextOf(Adopt(ValCopyDescription(value.Get())));
        matches += expected ? 1 : 0;
    }
    EXPECT_GT(matches, kQuestions / 10);
}

TEST_F(ModelOfOneFace, MatchesRequestsWithoutAnyIndex) {
    for (size_t i = 0; i < kQuestions / 4; ++i) {
        const auto request = sRequests->Next();
        const ModelFace &face = AnyFace();
        bool expected = true;
        size_t cursor = 0;
        for (const void *key, *value; ValDictionaryNext(request.Get(), &cursor, &key, &value);)
            expected = expected &&
                       ModelMatches(face, ModelNumberOfKey(static_cast<const ValString *>(key)), value);
        ASSERT_EQ(TClientFontEntity(face.font).MatchesProperties(request.Get()), expected)
            << face.url_text << "\n"
            << TextOf(Adopt(ValCopyDescription(request.Get())));
    }
}

TEST_F(ModelOfOneFace, MatchesVariationsAsTheEntityDoes) {
    size_t matches = 0;
    for (size_t i = 0; i < kQuestions; ++i) {
        const ModelFace &face = AnyFace();
        const auto requested = sRequests->Variations(Near(face));
        const TClientFontEntity entity(face.font);
        const bool expected = ModelMatchesVariations(face, requested.Get());
        ASSERT_EQ(entity.MatchesVariations(requested.Get(), entity.CopyVariations().Get()), expected)
            << face.url_text << "\n"
            << TextOf(Adopt(ValCopyDescription(requested.Get())));
        matches += expected ? 1 : 0;
    }
    EXPECT_GT(matches, kQuestions / 50);
}

TEST_F(ModelOfOneFace, MatchesFragmentsAsTheEntityDoes) {
    for (size_t i = 0; i < kQuestions; ++i) {
        const auto fragment = ModelFragmentOf(sRequests->NextURL().Get());
        if (!fragment) continue;
        const ModelFace &face = AnyFace();
        ASSERT_EQ(TClientFontEntity(face.font).MatchesFragment(String(*fragment).Get()),
                  ModelMatchesFragment(face, *fragment))
            << face.url_text << "\n"
            << *fragment;
    }
}

TEST_F(ModelOfOneFace, ComparesWithAnotherAsTheEntitiesDo) {
    for (size_t i = 0; i < kQuestions; ++i) {
        const ModelFace &a = AnyFace(), &b = AnyFace();
        const auto request = sRequests->Next();
        const TFontEntityComparisonContext context(request.Get());
        ModelContext expected = {ValDictionaryContainsKey(request.Get(), kVLFontPropertyName), nullptr};
        if (!expected.names_postscript_name)
            expected.preferred_subfamily = static_cast<const ValString *>(
                ValDictionaryGetValue(request.Get(), kVLFontPropertySubfamilyName));
        ASSERT_EQ(TClientFontEntity(a.font).Compare(TClientFontEntity(b.font), &context),
                  ModelCompare(a, b, expected))
            << a.url_text << "\n"
            << b.url_text << "\n"
            << TextOf(Adopt(ValCopyDescription(request.Get())));
    }
}

// Traits that no font has: of few values, some within a tolerance, of any kind of number, or missing.
Ref<const ValDictionary> AnyTraits(ModelRandom &random) {
    static constexpr int32_t kSymbolic[] = {
        0, 1, 3, 0x10000001, 0x20000001, -0x70000000 + 1, -0x40000000 + 1};
    static constexpr double kValues[] = {0, 0.4, -0.4, 0.40005, 0.4001, 0.40015, -0.40005, 1, 0.39995};
    TValMutableDict traits;
    if (!random.OneIn(8)) traits.Set(kVLFontTraitSymbolic, MakeNumber(random.Of(kSymbolic)).Get());
    for (const ValString *key : {kVLFontTraitWeight, kVLFontTraitSlant, kVLFontTraitWidth}) {
        const double value = random.Of(kValues);
        if (random.OneIn(8)) continue;
        if (random.OneIn(10))
            traits.Set(key, random.OneIn(2) ? kValBooleanTrue : kValBooleanFalse);
        else
            traits.Set(key, random.OneIn(2) ? MakeNumber(value).Get()
                                            : MakeNumber(static_cast<float>(value)).Get());
    }
    return traits.Publish();
}

ModelTraits Read(const Ref<const ValDictionary> &traits) {
    const auto of = [&](const ValString *key) { return ValDictionaryGetValue(traits.Get(), key); };
    return {ModelBits(of(kVLFontTraitSymbolic)), ModelReal(of(kVLFontTraitWeight)),
            ModelReal(of(kVLFontTraitWidth)), ModelReal(of(kVLFontTraitSlant))};
}

TEST(ModelOfTwo, ComparesAndMatchesInventedTraitsAsTheEntityDoes) {
    ModelRandom random(5);
    const TBasicFontEntity entity(nullptr);
    for (size_t i = 0; i < kQuestions; ++i) {
        const auto a = AnyTraits(random), b = AnyTraits(random);
        const ModelTraits read_a = Read(a), read_b = Read(b);
        const std::string both =
            TextOf(Adopt(ValCopyDescription(a.Get()))) + "\n" + TextOf(Adopt(ValCopyDescription(b.Get())));
        ASSERT_EQ(TFontEntity::CompareTraits(a.Get(), b.Get()), ModelCompareTraits(&read_a, &read_b))
            << both;
        ASSERT_EQ(TFontEntity::CompareTraits(nullptr, b.Get()), ModelCompareTraits(nullptr, &read_b))
            << both;
        ModelFace face;
        face.traits = read_b;
        ASSERT_EQ(entity.MatchesTraits(a.Get(), b.Get()), ModelMatchesTraits(face, a.Get())) << both;
    }
}

TEST(ModelOfTwo, ComparesInventedFamiliesAsTheEntityDoes) {
    static constexpr const char *kParts[] = {
        "Adobe",    "Orrery", "Bauer",     "Berthold", "Bitstream", "ITC", "WTC",     "Linotype",
        "Monotype", "PMN",    "Simoncini", "Stempel",  "URW",       "#",   "",        "itc",
        " ",        "Opal",   "opal",      "2",        "10",        "010", "\xC3\x84"};
    ModelRandom random(6);
    const auto any = [&] {
        const std::string text = std::string(random.Of(kParts)) + random.Of(kParts) + random.Of(kParts);
        return ModelName{text, "", String(text)};
    };
    for (size_t i = 0; i < kQuestions; ++i) {
        const ModelName a = any(), b = any();
        ASSERT_EQ(TFontEntity::CompareFamilyNames(a.object.Get(), b.object.Get()),
                  ModelCompareFamilies(&a, &b))
            << a.text << "\n"
            << b.text;
    }
}

} // namespace
} // namespace vellum::test
