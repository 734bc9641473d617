// SPDX-License-Identifier: MIT
// Whatever a register keeps in order to answer quickly, it answers what sorting all candidates answers,
// from the order in which its table has them. Fonts come, go, hide and return at random; many of them
// contradict each other: slants of one magnitude, and slants that tie with their neighbours but not with
// the next.
#include "describe/client_font_entity.hpp"
#include "query_fixture.hpp"
#include "values/merge_sort.hpp"
#include "values/val_number.hpp"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <random>

namespace vellum::test {
namespace {

using Faces = std::vector<const TClientFontEntity *>;

std::string NameOf(const TClientFontEntity *face) {
    return face ? TextOf(face->CopyPostScriptName(false)) : "(null)";
}

std::vector<std::string> NamesOf(const Faces &faces) {
    if (faces.empty()) return {"(null)"};
    std::vector<std::string> names;
    for (const TClientFontEntity *face : faces) names.push_back(NameOf(face));
    return names;
}

// A horizontal header whose caret rises by so many units over ten thousand.
Bytes LeaningHhea(int lean) {
    Bytes table = HheaTable(1);
    const Bytes slope = ByteWriter().I16(lean).I16(10000);
    std::ranges::copy(slope, table.begin() + 18);
    return table;
}

class OrderOfAnswers : public QueryTest, public ::testing::WithParamInterface<unsigned> {
protected:
    static constexpr size_t kFonts = 48;

    OrderOfAnswers() {
        for (size_t i = 0; i < kFonts; ++i) urls.push_back(MakeRandomFont(i));
    }

    template <class T>
    const T &Pick(const std::vector<T> &items) {
        return items[random() % items.size()];
    }

    Ref<const ValURL> MakeRandomFont(size_t number) {
        static const std::vector<std::string> families = {"Foo", "foo", "Bar", "Linotype Foo"};
        static const std::vector<std::string> subfamilies = {"Regular", "Regular", "Cut 2", "Cut 10"};
        // One step is about two thirds of the distance from which on slants differ.
        static const std::vector<int> leans = {0,     -10300, 10300,  -10520, -10740,
                                               10520, 10740,  -10960, 5000};
        const std::string text = std::to_string(number);
        const std::string postscript = number == 0 ? "Endstop" : "Font" + text;
        // The first few see to it that there are contradictions.
        const bool is_given = number < leans.size();
        const std::string family = is_given ? "Foo" : Pick(families);
        const std::string subfamily = is_given ? "Regular" : Pick(subfamilies);
        const int lean = is_given ? leans[number] : Pick(leans);
        const uint32_t first = 'A' + static_cast<uint32_t>(random() % 4);
        return folder.Add(text + ".ttf",
                          FontWith({family, subfamily, family + ' ' + subfamily, postscript}, first, 'E')
                              .Table("hhea", LeaningHhea(lean))
                              .Build());
    }

    void ChangeSomething() {
        const auto &url = Pick(urls);
        switch (random() % 5) {
        case 0:
        case 1:
            registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess);
            break;
        case 2:
            registry.UnregisterFont(url.Get(), kVLScopeProcess);
            break;
        case 3:
            registry.DisableFont(url.Get(), kVLScopeProcess);
            break;
        default:
            registry.EnableFont(url.Get(), kVLScopeProcess);
        }
    }

    // The faces of the table, in its order.
    void ReadTable() {
        table.clear();
        const auto all =
            registry.CopyPropertiesForAllFonts(Keys({kVLFontPropertyURL}).Get(), kVLScopeProcess);
        for (size_t i = 0; i < ValArrayGetCount(all.Get()); ++i) {
            const auto *told = static_cast<const ValDictionary *>(ValArrayGetValue(all.Get(), i));
            const auto *url = static_cast<const ValURL *>(ValDictionaryGetValue(told, kVLFontPropertyURL));
            const FontReference reference = registry.GetFontReference(url);
            table.push_back(
                std::make_unique<TClientFontEntity>(Retain(registry.GetPossiblyDisabledFont(reference))));
        }
    }

    Faces Sorted(const std::function<bool(const TClientFontEntity &)> &fits,
                 const TFontEntityComparisonContext &context = {}) const {
        Faces faces;
        for (const auto &face : table)
            if (fits(*face)) faces.push_back(face.get());
        MergeSort(faces, [&](auto *a, auto *b) { return a->Compare(*b, &context); });
        return faces;
    }

    void ExpectAnswers(const Ref<const ValDictionary> &request,
                       const std::function<bool(const TClientFontEntity &)> &fits) const {
        const auto expected = NamesOf(Sorted(fits, TFontEntityComparisonContext(request.Get())));
        // In both orders: the one may have made what the other finds.
        if (random() % 2) {
            EXPECT_EQ(NameIn(registry.CopyFontForRequest(request.Get(), kVLScopeProcess)),
                      expected.front());
        }
        EXPECT_EQ(NamesIn(registry.CopyFontsForRequest(request.Get(), kVLScopeProcess)), expected)
            << TextOf(Adopt(ValCopyDescription(request.Get())));
        EXPECT_EQ(NameIn(registry.CopyFontForRequest(request.Get(), kVLScopeProcess)), expected.front());
    }

    void ExpectAllAnswers() const {
        ExpectAnswers(Request({}), [](auto &) { return true; });
        for (const char *family : {"Foo", "Bar", "Linotype Foo", "Nobody"}) {
            const auto named = [&](const TClientFontEntity &face) {
                return TextOf(Adopt(ValStringCopyLowercase(
                           static_cast<const ValString *>(face.CopyFamilyName(false).Get())))) ==
                       TextOf(Adopt(ValStringCopyLowercase(String(family).Get())));
            };
            ExpectAnswers(Request({{kVLFontPropertyFamilyName, String(family)}}), named);
            const auto key = Keys({kVLFontPropertyName});
            const auto best = Sorted(named, TFontEntityComparisonContext(key.Get()));
            EXPECT_EQ(NameIn(registry.CopyFontForName(String(family).Get(), kVLScopeProcess)),
                      NamesOf(best).front());
        }
        for (uint32_t character = 'A'; character <= 'F'; ++character) {
            const auto characters = Characters(character, character);
            const auto draws = [&](const TClientFontEntity &face) {
                return ValCharacterSetContains(face.CopyCharacterSet().Get(), character) &&
                       NameOf(&face) != "Endstop";
            };
            EXPECT_EQ(NameIn(registry.CopyFontForCharacter(character, kVLScopeProcess, 0)),
                      NamesOf(Sorted(draws)).front());
            ExpectAnswers(Request({{kVLFontPropertyCharacterSet, characters}}), draws);
        }
        const auto bits = MakeNumber(int32_t{kVLFontTraitItalic});
        ExpectAnswers(Request({{kVLFontPropertyTraits, Request({{kVLFontTraitSymbolic, bits}})}}),
                      [](const TClientFontEntity &face) {
                          const auto traits = face.CopyTraits();
                          return (ReadSInt32(ValDictionaryGetValue(traits.Get(), kVLFontTraitSymbolic)) &
                                  kVLFontTraitItalic) != 0;
                      });
    }

    mutable std::minstd_rand random{GetParam() + 1};
    std::vector<Ref<const ValURL>> urls;
    std::vector<std::unique_ptr<TClientFontEntity>> table;
};

TEST_P(OrderOfAnswers, IsThatOfSortingAllCandidatesAfterEveryChange) {
    for (int round = 0; round < 40 && !HasFailure(); ++round) {
        for (size_t changes = random() % 6; changes > 0; --changes) ChangeSomething();
        ReadTable();
        ExpectAllAnswers();
    }
}

TEST_P(OrderOfAnswers, ContradictsItselfInWhatIsTriedHere) {
    for (const auto &url : urls) registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess);
    ReadTable();
    int both_after = 0, ties_that_do_not_carry_over = 0;
    for (const auto &a : table)
        for (const auto &b : table) {
            both_after += a->Compare(*b, nullptr) > 0 && b->Compare(*a, nullptr) > 0;
            for (const auto &c : table)
                ties_that_do_not_carry_over += a->Compare(*b, nullptr) == 0 &&
                                               b->Compare(*c, nullptr) == 0 && a->Compare(*c, nullptr) != 0;
        }
    EXPECT_GT(both_after, 0);
    EXPECT_GT(ties_that_do_not_carry_over, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, OrderOfAnswers, ::testing::Range(0U, 8U));

using OrderOfAnswersTest = QueryTest;

// The face in the middle ties with the first by its slant, and each of it and the last comes after the
// other: while it is there the three have no order. What it leaves behind has one.
TEST_F(OrderOfAnswersTest, FacesWhoseContradictionIsGoneAreInOrder) {
    const auto add = [&](const char *name, const char *subfamily, int lean) {
        return Add(std::string(name) + ".ttf",
                   FontWith({"Foo", subfamily, name, name}).Table("hhea", LeaningHhea(lean)).Build());
    };
    add("first", "Cut 10", 10300);
    const auto middle = add("middle", "Cut 2", 10520);
    add("last", "Regular", -10520);
    ASSERT_EQ(Find({}).size(), 3U);
    ASSERT_TRUE(registry.UnregisterFont(middle.Get(), kVLScopeProcess));
    EXPECT_THAT(Find({}), ::testing::ElementsAre("first", "last"));
    EXPECT_EQ(NameIn(registry.CopyFontForCharacter('A', kVLScopeProcess, 0)), "first");
}

// ---- the sorter ----

class FontRefSorter : public QueryTest {
protected:
    FontReference Of(const Ref<const ValURL> &url) const { return registry.GetFontReference(url.Get()); }
};

TEST_F(FontRefSorter, ComparesTheFacesOfTwoReferences) {
    const auto b = Add("b.ttf", NamedFace{"B"}), a = Add("a.ttf", NamedFace{"A"});
    const TLocalGlypharyImp::TFontRefSorter sorter(registry, nullptr);
    EXPECT_EQ(sorter(Of(a), Of(b)), -1);
    EXPECT_EQ(sorter(Of(b), Of(a)), 1);
    EXPECT_EQ(sorter(Of(a), Of(a)), 0);
}

TEST_F(FontRefSorter, TakesAReferenceWithoutAFaceForAFaceWithoutProperties) {
    const auto a = Add("a.ttf", NamedFace{"A"});
    const TLocalGlypharyImp::TFontRefSorter sorter(registry, nullptr);
    EXPECT_EQ(sorter(0, Of(a)), -1);
    EXPECT_EQ(sorter(Of(a), 0), 1);
    EXPECT_EQ(sorter(0, 0), 0);
}

TEST_F(FontRefSorter, SortsUnderItsContext) {
    const auto z = Add("z.ttf", NamedFace{"Z", "Regular", "Foo"});
    const auto a = Add("a.ttf", NamedFace{"A", "Regular", "Foo"});
    const auto key = Keys({kVLFontPropertyName});
    const TFontEntityComparisonContext context(key.Get());
    std::vector<FontReference> plain = {Of(z), Of(a)}, named = plain;
    TLocalGlypharyImp::TFontRefSorter(registry, nullptr).Sort(plain);
    TLocalGlypharyImp::TFontRefSorter(registry, &context).Sort(named);
    EXPECT_THAT(plain, ::testing::ElementsAre(Of(a), Of(z)));
    EXPECT_THAT(named, ::testing::ElementsAre(Of(z), Of(a)));
}

TEST_F(FontRefSorter, SortsNothingAndOne) {
    const auto a = Add("a.ttf", NamedFace{"A"});
    std::vector<FontReference> none, one = {Of(a)};
    const TLocalGlypharyImp::TFontRefSorter sorter(registry, nullptr);
    sorter.Sort(none);
    sorter.Sort(one);
    EXPECT_TRUE(none.empty());
    EXPECT_THAT(one, ::testing::ElementsAre(Of(a)));
}

} // namespace
} // namespace vellum::test
