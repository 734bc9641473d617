// SPDX-License-Identifier: MIT
#include "frame/exports/merge_answers.hpp"

#include "describe/basic_font_entity.hpp"
#include "query/comparison_key.hpp"
#include "values/merge_sort.hpp"
#include "values/val_array.hpp"

#include <vector>

namespace vellum {

namespace {

// A font, and what its place depends on, read once.
struct Answer {
    Ref<const ValDictionary> properties;
    ComparisonKey key;
};

std::vector<Answer> ReadAnswers(const ValArray *fonts) {
    std::vector<Answer> answers;
    for (const void *element : Elements(fonts)) {
        auto properties = Retain(Cast<ValDictionary>(element));
        ComparisonKey key{TBasicFontEntity(properties)};
        answers.push_back({std::move(properties), std::move(key)});
    }
    return answers;
}

} // namespace

Ref<const ValArray> MergeAnswers(const ValArray *own, const ValArray *shared,
                                 const ValDictionary *request) {
    if (!own || !shared) return Retain(own ? own : shared);
    auto left = ReadAnswers(own), right = ReadAnswers(shared);
    std::vector<Answer> merged(left.size() + right.size());
    const TFontEntityComparisonContext context(request);
    const auto compare = [&](const Answer &a, const Answer &b) {
        return CompareKeys(a.key, b.key, &context).order;
    };
    MergeRuns(std::span(left), std::span(right), merged.data(), compare);
    TValMutableArray fonts;
    for (const Answer &answer : merged) fonts.Append(answer.properties.Get());
    return fonts.Publish();
}

Ref<const ValArray> CopyURLs(const ValArray *fonts) {
    TValMutableArray urls;
    for (const void *element : Elements(fonts)) {
        const auto url = TBasicFontEntity(Retain(Cast<ValDictionary>(element))).CopyURL();
        if (url) urls.Append(url.Get());
    }
    return urls.IsEmpty() ? nullptr : urls.Publish();
}

} // namespace vellum
