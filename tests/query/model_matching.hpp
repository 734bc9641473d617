// SPDX-License-Identifier: MIT
// How the model matches one face with one thing that is asked for.
#pragma once

#include "query/model_face.hpp"

namespace vellum::test {

// One key of a request, by its number, with its value.
bool ModelMatches(const ModelFace &face, size_t number, const void *value);

bool ModelMatchesTraits(const ModelFace &face, const ValDictionary *requested);

// `fragment` is decoded.
bool ModelMatchesFragment(const ModelFace &face, const std::string &fragment);

// Where the face stands on its axes.
bool ModelMatchesVariations(const ModelFace &face, const ValDictionary *requested);

bool ModelCovers(const ModelFace &face, CodeRange requested);

// The pieces between occurrences of a character.
std::vector<std::string> ModelPieces(const std::string &text, char separator);

} // namespace vellum::test
