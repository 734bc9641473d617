// SPDX-License-Identifier: MIT
// JSON as the tool writes it: names in the order in which they were put.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace vellum::tool {

using Json = nlohmann::ordered_json;

// `indent` below 0 gives one line. Text that is no Unicode is replaced.
inline std::string Dump(const Json &json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// What a document begins with: a reader finds there whether it understands the rest.
inline Json Document(const char *schema, int version) {
    return {{"schema", {{"name", schema}, {"version", version}}}};
}

} // namespace vellum::tool
