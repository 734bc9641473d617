// SPDX-License-Identifier: MIT
#include "tools/json.hpp"

namespace vellum::tool {

namespace {

// JSON as it stands within something else: every line but the first is moved in.
std::string Nested(const Json &json, size_t depth) {
    const std::string text = Dump(json, 2);
    std::string nested;
    for (const char c : text) {
        nested += c;
        if (c == '\n') nested.append(2 * depth, ' ');
    }
    return nested;
}

} // namespace

FaceDocument::FaceDocument(std::ostream &out, const char *schema, int version) : out_(out) {
    const Json about = {{"name", schema}, {"version", version}};
    out_ << "{\n  \"schema\": " << Nested(about, 1) << ",\n  \"faces\": [";
}

void FaceDocument::Add(const Json &face) {
    out_ << (empty_ ? "\n    " : ",\n    ") << Nested(face, 2);
    empty_ = false;
}

void FaceDocument::Finish(const Json &refused) {
    out_ << (empty_ ? "]" : "\n  ]") << ",\n  \"refused\": " << Nested(refused, 1) << "\n}\n";
}

} // namespace vellum::tool
