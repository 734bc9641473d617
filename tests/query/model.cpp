// SPDX-License-Identifier: MIT
#include "query/model.hpp"

#include "query/model_matching.hpp"
#include "query/model_search.hpp"
#include "support/values.hpp"

#include <algorithm>
#include <functional>
#include <set>

namespace vellum::test {
namespace {

// Lookups are ordered as if they asked for a PostScript name.
constexpr ModelContext kLookup = {true, nullptr};

ModelAnswer URLsOf(const ModelFaces &faces) {
    ModelAnswer urls;
    for (const ModelFace *face : faces) urls.push_back(face->url_text);
    return urls;
}

ModelAnswer FirstOf(ModelAnswer answer) {
    if (answer.size() > 1) answer.resize(1);
    return answer;
}

ModelContext ContextOf(const ValDictionary *request) {
    if (ValDictionaryContainsKey(request, kVLFontPropertyName)) return kLookup;
    const void *subfamily = ValDictionaryGetValue(request, kVLFontPropertySubfamilyName);
    return {false, static_cast<const ValString *>(subfamily)};
}

ModelAnswer Sorted(ModelFaces faces, const ModelContext &context) {
    ModelSort(faces, context);
    return URLsOf(faces);
}

// The preferred names of a kind, each once.
ModelAnswer NamesOf(const ModelFaces &faces, size_t kind) {
    std::set<std::string> names;
    for (const ModelFace *face : faces) {
        if (face->preferred[kind]) names.insert(face->preferred[kind]->text);
    }
    return {names.begin(), names.end()};
}

// Takes out of `from` the faces under a URL that fit its fragment, and gives them in their order.
ModelFaces TakeOut(ModelFaces &from, const ValURL *url, const std::optional<std::string> &fragment) {
    const auto taken = [&](const ModelFace *face) {
        return !ModelFacesUnder({face}, url).empty() &&
               (!fragment || ModelMatchesFragment(*face, *fragment));
    };
    const auto first = std::stable_partition(from.begin(), from.end(), std::not_fn(taken));
    ModelFaces faces(first, from.end());
    from.erase(first, from.end());
    return faces;
}

} // namespace

bool Model::Register(const ValURL *file) {
    if (!ModelFacesUnder(enabled_, file).empty()) return false;
    const auto [known, is_new] = files_.try_emplace(ModelPathOf(file));
    if (is_new) known->second = ReadModelFaces(file);
    for (const ModelFace &face : known->second) enabled_.push_back(&face);
    return !known->second.empty();
}

void Model::Unregister(const ValURL *url) {
    TakeOut(enabled_, url, std::nullopt);
    TakeOut(disabled_, url, std::nullopt);
}

void Model::Disable(const ValURL *url) {
    for (const ModelFace *face : TakeOut(enabled_, url, ModelFragmentOf(url))) disabled_.push_back(face);
}

void Model::Enable(const ValURL *url) {
    for (const ModelFace *face : TakeOut(disabled_, url, ModelFragmentOf(url))) enabled_.push_back(face);
}

ModelAnswer Model::FontsForRequest(const ValDictionary *request) const {
    return Sorted(ModelSearch(enabled_, request).Run(), ContextOf(request));
}

ModelAnswer Model::FontForName(const ValString *name) const {
    for (const size_t kind : {kModelPostScript, kModelFull, kModelFamily}) {
        const auto faces = ModelFacesWithName(enabled_, kind, name);
        if (!faces.empty()) return FirstOf(Sorted(faces, kLookup));
    }
    return {};
}

ModelAnswer Model::FontForCharacter(uint32_t character) const {
    ModelFaces faces;
    for (const ModelFace *face : enabled_) {
        const auto &name = face->preferred[kModelPostScript];
        if (name && name->text == "Endstop") continue;
        if (ModelCovers(*face, {character, character})) faces.push_back(face);
    }
    return FirstOf(Sorted(faces, {}));
}

ModelAnswer Model::FontsForURL(const ValURL *url) const {
    const auto fragment = ModelFragmentOf(url);
    auto faces = ModelFacesUnder(enabled_, url);
    ModelSort(faces, kLookup);
    std::erase_if(
        faces, [&](const ModelFace *face) { return fragment && !ModelMatchesFragment(*face, *fragment); });
    return URLsOf(faces);
}

ModelAnswer Model::FontDescribed(const ValURL *url, bool disabled_too) const {
    const auto fragment = ModelFragmentOf(url);
    for (const bool enabled : {true, false}) {
        if (!enabled && !disabled_too) break;
        for (const ModelFace *face : ModelFacesUnder(enabled ? enabled_ : disabled_, url)) {
            if (!fragment || ModelMatchesFragment(*face, *fragment))
                return {face->url_text, enabled ? "enabled" : "disabled"};
        }
    }
    return {};
}

bool Model::IsRegistered(const ValURL *url) const {
    return !ModelFacesUnder(enabled_, url).empty();
}

ModelAnswer Model::Families() const {
    return NamesOf(enabled_, kModelFamily);
}

ModelAnswer Model::PostScriptNames() const {
    return NamesOf(enabled_, kModelPostScript);
}

ModelAnswer Model::URLs() const {
    const auto urls = URLsOf(enabled_);
    const std::set<std::string> sorted(urls.begin(), urls.end());
    return {sorted.begin(), sorted.end()};
}

ModelAnswer Model::FamiliesForLanguage(const ValString *language) const {
    ModelFaces faces;
    for (const ModelFace *face : enabled_) {
        if (face->languages && std::ranges::count(*face->languages, TextOf(language)) != 0)
            faces.push_back(face);
    }
    return NamesOf(faces, kModelFamily);
}

std::vector<const ModelFace *> Model::AllFaces() const {
    Faces faces;
    for (const auto &[path, file] : files_) {
        for (const ModelFace &face : file) faces.push_back(&face);
    }
    return faces;
}

} // namespace vellum::test
