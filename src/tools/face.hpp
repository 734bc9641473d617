// SPDX-License-Identifier: MIT
// One face as the tool shows it, in both of its forms.
#pragma once

#include "tools/text.hpp"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace vellum::tool {

using Json = nlohmann::ordered_json;

struct Axis {
    std::string tag;
    std::optional<std::string> name;
    double minimum, default_value, maximum;
};

struct Face {
    std::string path;
    std::string url;
    std::optional<std::string> postscript_name, family_name, full_name, subfamily_name;
    std::optional<std::string> type_identifier;
    int32_t format = 0;
    bool is_instance = false;
    std::vector<std::string> table_tags;
    std::vector<Axis> axes;
    std::vector<std::pair<std::string, double>> variations; // axis name and place
};

// The keys that a face's properties are asked for with.
Ref<const ValSet> FaceKeys();

// From a property dictionary with those keys.
Face ReadFace(const ValDictionary *properties);

// Stable: names may be added, never changed.
Json ToJson(const Face &face);

// For people; it may change.
std::string ToText(const Face &face, bool colour);

} // namespace vellum::tool
