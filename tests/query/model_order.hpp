// SPDX-License-Identifier: MIT
// The order in which the model answers faces.
#pragma once

#include "query/model_face.hpp"

namespace vellum::test {

// What a request says about the order of its answer.
struct ModelContext {
    bool names_postscript_name = false;
    const ValString *preferred_subfamily = nullptr; // borrowed of the request: the object matters
};

int ModelCompareFamilies(const ModelName *a, const ModelName *b);
int ModelCompareTraits(const ModelTraits *a, const ModelTraits *b);
int ModelCompare(const ModelFace &a, const ModelFace &b, const ModelContext &context);

// Neighbouring runs are merged, of 1, 2, 4 and more faces, until one is left; of two faces the right one
// goes first only where the comparison is positive. The comparison is no order: no other sort will do.
void ModelSort(std::vector<const ModelFace *> &faces, const ModelContext &context);

} // namespace vellum::test
