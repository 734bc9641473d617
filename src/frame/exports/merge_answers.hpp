// SPDX-License-Identifier: MIT
// Two registers' answers as one.
#pragma once

#include <vellum/values.hpp>

namespace vellum {

// Merges what two registers say of the fonts that answer a request: two arrays of property dictionaries
// (null: none), each in order, as one in order. Nothing is left out, so that a font that both know stands
// there twice; of fonts that tie, the process's own come first. Null when there is none.
Ref<const ValArray> MergeAnswers(const ValArray *own, const ValArray *shared, const ValDictionary *request);

// The URLs of property dictionaries, in their order; null when there is none.
Ref<const ValArray> CopyURLs(const ValArray *fonts);

} // namespace vellum
