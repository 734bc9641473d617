// SPDX-License-Identifier: MIT
// One face as the tool shows it: its properties, and what else the library tells of its file.
#pragma once

#include "tools/face_properties.hpp"

#include <string>
#include <string_view>

namespace vellum::tool {

// What is asked about faces: everything, or one thing by the name that it has in JSON, or by its property
// key.
class FaceQuestion {
public:
    FaceQuestion() = default;

    // Throws CLI::ValidationError for a name that there is not.
    explicit FaceQuestion(const std::string &name);

    bool IsAboutEverything() const noexcept { return name_.empty(); }
    bool IsAbout(std::string_view name) const noexcept { return name_.empty() || name_ == name; }
    const std::string &Name() const noexcept { return name_; }

    // The keys that a face's properties are asked for with.
    Ref<const ValSet> Keys() const;

private:
    std::string name_;
};

// The answers of a face, by their names: stable, names may be added and never changed. `properties` is a
// property dictionary with the question's keys.
Json ReadFace(const ValDictionary *properties, const FaceQuestion &question);

// For people; it may change. `face` is what ReadFace says of everything.
std::string ToText(const Json &face, bool colour);

// One answer on one line, as scripts want it: texts and numbers bare, lists of them with blanks between,
// all else as JSON; nothing for null.
std::string ToLine(const Json &answer);

} // namespace vellum::tool
