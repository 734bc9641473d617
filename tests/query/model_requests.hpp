// SPDX-License-Identifier: MIT
// Requests made by chance: of what faces have, of what they nearly have, and of what none has.
#pragma once

#include "query/model_face.hpp"
#include "query/model_random.hpp"

namespace vellum::test {

class ModelRequests {
public:
    ModelRequests(std::vector<const ModelFace *> faces, uint64_t seed)
        : faces_(std::move(faces)), random_(seed) {}

    // Of up to four keys; mostly of one face's values, so that something answers.
    Ref<const ValDictionary> Next();

    // A URL of a face: with its own fragment, with one made of its names and places, or of a folder.
    Ref<const ValURL> NextURL();

    // A value for a property, right or wrong.
    Ref<const void> Value(size_t number, const ModelFace &face);

    // By axis names or identifiers.
    Ref<const ValDictionary> Variations(const ModelFace &face);

    // Of a name in its own or another letter case; of a face's names sometimes the very object.
    Ref<const void> Name(size_t kind, const ModelFace &face);

    const ModelFace &AnyFace() { return *random_.Of(faces_); }
    ModelRandom &Random() { return random_; }

private:
    Ref<const void> Traits(const ModelFace &face);
    Ref<const void> Symbolic(const ModelFace &face);
    Ref<const void> Real(double value);
    Ref<const void> URL(const ModelFace &face);
    Ref<const void> Characters(const ModelFace &face);
    Ref<const void> Axes(const ModelFace &face);
    Ref<const void> Languages(const ModelFace &face);
    Ref<const void> Oddity();
    std::string Fragment(const ModelFace &face);
    std::string Parameter(const ModelFace &face);
    std::string AxisParameter(const ModelFace &face);
    std::string Respelt(const std::string &text);

    const std::vector<const ModelFace *> faces_;
    ModelRandom random_;
};

// A text in the other letter case, as far as it is ASCII.
std::string ModelOtherCase(std::string text);

} // namespace vellum::test
