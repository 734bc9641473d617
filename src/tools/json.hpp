// SPDX-License-Identifier: MIT
// JSON as the tool writes it: names in the order in which they were put.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace vellum::tool {

using Json = nlohmann::ordered_json;

// `indent` below 0 gives one line. Text that is no Unicode is replaced.
inline std::string Dump(const Json &json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// A document with a list of faces, each written when it is there: a folder may hold more than fits in
// memory. It begins with a schema, where a reader finds whether it understands the rest.
class FaceDocument {
public:
    FaceDocument(std::ostream &out, const char *schema, int version);

    void Add(const Json &face);

    // Ends the document with what could not be read.
    void Finish(const Json &refused);

private:
    std::ostream &out_;
    bool empty_ = true;
};

} // namespace vellum::tool
