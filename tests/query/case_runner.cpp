// SPDX-License-Identifier: MIT
#include "case_runner.hpp"

#include "describe/basic_font_entity.hpp"
#include "support/values.hpp"
#include "values/merge_sort.hpp"
#include "values/val_dictionary.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <set>
#include <stdexcept>
#include <vector>

namespace vellum::test {

namespace {

int Sign(int result) {
    return (result > 0) - (result < 0);
}

struct Face {
    std::string label;
    Ref<const ValDictionary> properties;
    TBasicFontEntity entity;
};

class Case {
public:
    explicit Case(const Json &json)
        : json_(json), values_(Part("objects")),
          request_(values_.Dictionary(Part("request"), CaseKeys::kProperties)) {
        for (const auto &[label, face] : Part("faces").items()) {
            const auto properties = values_.Dictionary(face, CaseKeys::kProperties);
            faces_.push_back({label, properties, TBasicFontEntity(properties)});
        }
        if (Has("request"))
            context_.emplace(request_.Get());
        else if (Has("keys"))
            context_.emplace((keys_ = values_.PropertyKeys(Part("keys"))).Get());
    }

    void Run() {
        RefuseUnknownParts();
        if (Has("answers")) ExpectAnswers();
        if (Has("order")) ExpectOrder();
        if (Has("compare")) ExpectComparisons();
        if (Has("fits")) ExpectFits();
        if (Has("compareTraits")) ExpectTraitComparisons();
        if (Has("familyNames")) ExpectNameComparisons("familyNames", TFontEntity::CompareFamilyNames);
        if (Has("postScriptNames"))
            ExpectNameComparisons("postScriptNames", TFontEntity::ComparePostScriptNames);
    }

private:
    bool Has(const char *part) const { return json_.contains(part); }
    const Json &Part(const char *part) const {
        static const Json none;
        return Has(part) ? json_.at(part) : none;
    }

    // A part that nobody reads would be a case that expects nothing.
    void RefuseUnknownParts() const {
        static const std::set<std::string> parts = {
            "says",  "objects",       "faces",       "request",        "keys",       "answers",
            "order", "compare",       "fragment",    "traits",         "variations", "among",
            "fits",  "compareTraits", "familyNames", "postScriptNames"};
        for (const auto &[part, value] : json_.items())
            if (!parts.contains(part)) throw std::invalid_argument("no part of a case: " + part);
        const bool expects = Has("answers") || Has("order") || Has("compare") || Has("fits") ||
                             Has("compareTraits") || Has("familyNames") || Has("postScriptNames");
        if (!expects) throw std::invalid_argument("the case expects nothing");
    }

    const TFontEntityComparisonContext *Context() const { return context_ ? &*context_ : nullptr; }

    const Face &FaceAt(const Json &label) const {
        const auto name = label.get<std::string>();
        const auto at = std::ranges::find(faces_, name, &Face::label);
        if (at == faces_.end()) throw std::invalid_argument("no face: " + name);
        return *at;
    }

    std::vector<std::string> Sorted(std::vector<const Face *> faces) const {
        MergeSort(faces,
                  [&](const Face *a, const Face *b) { return a->entity.Compare(b->entity, Context()); });
        std::vector<std::string> labels;
        for (const Face *face : faces) labels.push_back(face->label);
        return labels;
    }

    void ExpectAnswers() const {
        std::vector<const Face *> matching;
        for (const Face &face : faces_) {
            if (face.entity.MatchesProperties(request_.Get())) matching.push_back(&face);
            ExpectAgreementOfTheSingleTest(face);
        }
        EXPECT_EQ(Sorted(matching), json_.at("answers").get<std::vector<std::string>>());
    }

    // A whole request holds just when each of its keys does.
    void ExpectAgreementOfTheSingleTest(const Face &face) const {
        bool all = true;
        for (const auto &[key, value] : TValDict(request_))
            all = face.entity.MatchesProperty(static_cast<const ValString *>(key), value) && all;
        EXPECT_EQ(face.entity.MatchesProperties(request_.Get()), all) << face.label;
    }

    void ExpectOrder() const {
        std::vector<const Face *> all;
        for (const Face &face : faces_) all.push_back(&face);
        EXPECT_EQ(Sorted(all), json_.at("order").get<std::vector<std::string>>());
    }

    void ExpectComparisons() const {
        for (const Json &row : json_.at("compare")) {
            const Face &a = FaceAt(row.at(0)), &b = FaceAt(row.at(1));
            const int expected = row.at(2).get<int>();
            EXPECT_EQ(a.entity.Compare(b.entity, Context()), expected) << row;
            EXPECT_EQ(
                TBasicFontEntity::CompareBasicFontInfo(a.properties.Get(), b.properties.Get(), Context()),
                expected)
                << row;
        }
    }

    bool Fits(const Face &face) const {
        if (Has("fragment")) return face.entity.MatchesFragment(values_.Text(Part("fragment")).Get());
        if (Has("variations"))
            return face.entity.MatchesVariations(
                values_.Dictionary(Part("variations"), CaseKeys::kPlain).Get(),
                values_.Dictionary(Part("among"), CaseKeys::kPlain).Get());
        return face.entity.MatchesTraits(values_.Dictionary(json_.at("traits"), CaseKeys::kTraits).Get(),
                                         values_.Dictionary(Part("among"), CaseKeys::kTraits).Get());
    }

    void ExpectFits() const {
        std::vector<std::string> fitting;
        for (const Face &face : faces_)
            if (Fits(face)) fitting.push_back(face.label);
        EXPECT_EQ(fitting, json_.at("fits").get<std::vector<std::string>>());
    }

    void ExpectTraitComparisons() const {
        for (const Json &row : json_.at("compareTraits")) {
            const auto a = values_.Dictionary(row.at(0), CaseKeys::kTraits);
            const auto b = values_.Dictionary(row.at(1), CaseKeys::kTraits);
            EXPECT_EQ(TFontEntity::CompareTraits(a.Get(), b.Get()), row.at(2).get<int>()) << row;
        }
    }

    template <class Compare>
    void ExpectNameComparisons(const char *part, Compare compare) const {
        for (const Json &row : json_.at(part)) {
            const auto a = values_.Text(row.at(0)), b = values_.Text(row.at(1));
            EXPECT_EQ(Sign(compare(a.Get(), b.Get())), row.at(2).get<int>()) << row;
        }
    }

    const Json &json_;
    const CaseValues values_;
    const Ref<const ValDictionary> request_;
    Ref<const ValSet> keys_;
    std::optional<TFontEntityComparisonContext> context_; // borrows from request_ or keys_
    std::vector<Face> faces_;
};

} // namespace

void RunCase(const Json &json) {
    Case(json).Run();
}

} // namespace vellum::test
