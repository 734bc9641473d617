// SPDX-License-Identifier: MIT
#include "query/model_search.hpp"

#include "query/model_matching.hpp"
#include "values/val_dictionary.hpp"

#include <algorithm>

namespace vellum::test {
namespace {

// The properties that a search looks up, by their numbers.
constexpr size_t kNameNumber = 1, kFamilyNumber = 2, kFullNumber = 3, kSubfamilyNumber = 4, kURLNumber = 10;

ModelFaces Where(const ModelFaces &faces, const auto &is) {
    ModelFaces found;
    std::ranges::copy_if(faces, std::back_inserter(found),
                         [&](const ModelFace *face) { return is(*face); });
    return found;
}

} // namespace

ModelFaces ModelFacesWithName(const ModelFaces &faces, size_t kind, const void *name) {
    const auto *string = Cast<ValString>(name);
    if (!string) return {};
    return Where(faces, [&, key = ModelLowercase(string)](const ModelFace &face) {
        return std::ranges::any_of(face.names[kind], [&](const ModelName &own) { return own.key == key; });
    });
}

ModelFaces ModelFacesUnder(const ModelFaces &faces, const void *url) {
    const std::string path = ModelPathOf(Cast<ValURL>(url));
    if (path.empty()) return {}; // nothing is kept under the root
    return Where(faces, [&](const ModelFace &face) {
        return face.path == path || face.path.starts_with(path + '/');
    });
}

ModelSearch::ModelSearch(const ModelFaces &faces, const ValDictionary *request) : faces_(faces) {
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(request, &cursor, &key, &value);)
        rest_.push_back({ModelNumberOfKey(static_cast<const ValString *>(key)), value});
}

const void *ModelSearch::Take(size_t number) {
    const auto entry = std::ranges::find(rest_, number, &Entry::number);
    if (entry == rest_.end()) return nullptr;
    const void *value = entry->value;
    rest_.erase(entry);
    return value;
}

std::optional<ModelFaces> ModelSearch::Look(size_t number, const void *value) const {
    ModelFaces found = number == kURLNumber ? ModelFacesUnder(faces_, value)
                                            : ModelFacesWithName(faces_, number - 1, value);
    if (found.empty()) return std::nullopt;
    return found;
}

bool ModelSearch::Resolve(size_t number) {
    const void *value = Take(number);
    if (!value) return false;
    indexed_ = true;
    const auto found = Look(number, value);
    if (!found) return false;
    // Candidates that nothing is left of are filled anew.
    if (candidates_.empty())
        candidates_ = *found;
    else
        candidates_ = Where(candidates_, [&](const ModelFace &face) {
            return std::ranges::find(*found, &face) != found->end();
        });
    return true;
}

// A name that no face goes by may be a name of another kind.
void ModelSearch::ResolvePostScriptName() {
    const auto entry = std::ranges::find(rest_, kNameNumber, &Entry::number);
    const void *value = entry->value;
    if (Resolve(kNameNumber)) return;
    for (const size_t number : {kFamilyNumber, kFullNumber, kSubfamilyNumber}) {
        if (const auto found = Look(number, value)) {
            candidates_ = *found;
            return;
        }
    }
}

bool ModelSearch::ResolveAll() {
    const auto asks = [&](size_t number) {
        return std::ranges::any_of(rest_, [&](const Entry &e) { return e.number == number; });
    };
    if (rest_.empty()) return false;
    if (asks(kNameNumber)) {
        ResolvePostScriptName();
        if (candidates_.empty()) return false;
    }
    Resolve(kFamilyNumber);
    Resolve(kFullNumber);
    Resolve(kSubfamilyNumber);
    if (asks(kURLNumber) && !Resolve(kURLNumber)) candidates_.clear();
    return !candidates_.empty();
}

bool ModelSearch::MatchesRest(const ModelFace &face) const {
    return std::ranges::all_of(rest_,
                               [&](const Entry &e) { return ModelMatches(face, e.number, e.value); });
}

ModelFaces ModelSearch::Run() {
    const auto matches = [&](const ModelFace &face) { return MatchesRest(face); };
    if (ResolveAll()) return Where(candidates_, matches);
    return indexed_ ? ModelFaces() : Where(faces_, matches);
}

} // namespace vellum::test
