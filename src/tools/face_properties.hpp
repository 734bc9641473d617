// SPDX-License-Identifier: MIT
// The table of properties as the tool names and shows them.
#pragma once

#include "tools/json.hpp"
#include "tools/text.hpp"

#include <span>

namespace vellum::tool {

// A property: its name in JSON, its key (read through its address, as the library sets it), and how its
// value becomes JSON; the value may be null, and of any kind.
struct FaceProperty {
    const char *name;
    const ValString *const *key;
    Json (*to_json)(const void *value);
};

// In the order of the library's own list of keys.
std::span<const FaceProperty> FaceProperties() noexcept;

// The value that a property dictionary has for one of those keys, as JSON: null when it has none.
Json PropertyOf(const ValDictionary *properties, const ValString *key);

// As JSON; null for null.
Json ToJson(const ValArray *texts);
Json ToJson(const ValCharacterSet *characters);
Json ToJson(const ValString *text);

} // namespace vellum::tool
