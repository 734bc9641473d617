// SPDX-License-Identifier: MIT
// The model's search for the faces that answer a request.
#pragma once

#include "query/model_order.hpp"

namespace vellum::test {

using ModelFaces = std::vector<const ModelFace *>;

// The faces with a name of a kind, letter case ignored; none for what is no string.
ModelFaces ModelFacesWithName(const ModelFaces &faces, size_t kind, const void *name);

// The faces whose file a URL names, or a folder around it; none for what is no URL.
ModelFaces ModelFacesUnder(const ModelFaces &faces, const void *url);

// One search.
class ModelSearch {
public:
    ModelSearch(const ModelFaces &faces, const ValDictionary *request);

    // The faces that fit the request, not sorted.
    ModelFaces Run();

private:
    struct Entry {
        size_t number; // of its key
        const void *value;
    };

    // The value of a key that is still to be resolved, which then is none any more.
    const void *Take(size_t number);

    // What the register looks up for a property, or none when it looks up nothing.
    std::optional<ModelFaces> Look(size_t number, const void *value) const;

    // One property: false when it is not asked for or nobody has it.
    bool Resolve(size_t number);
    void ResolvePostScriptName();
    bool ResolveAll();
    bool MatchesRest(const ModelFace &face) const;

    const ModelFaces &faces_;
    std::vector<Entry> rest_; // of the request, what no index has resolved
    ModelFaces candidates_;
    bool indexed_ = false;
};

} // namespace vellum::test
