// SPDX-License-Identifier: MIT
// Fragments of font URLs: what tells one face of a file from the others.
//
//     postscript-name=Foo-Bold;var:wght=700
#pragma once

#include "platform/font/face.hpp"

#include <string>
#include <vector>

namespace vellum {

// The face's own fragment, escaped; empty when nothing tells it from others.
std::string MakeFaceFragment(const TFace &face);

// The parameters of a fragment that select faces.
class TFaceSelector {
public:
    // `fragment` is escaped. It is split first and decoded then, so that an escaped separator is text.
    explicit TFaceSelector(std::string_view fragment);

    // False when no parameter selects anything.
    explicit operator bool() const noexcept { return !names_.empty() || !axes_.empty(); }

    // True when the face fits every parameter.
    bool Fits(const TFace &face) const;

private:
    struct TAxisValue {
        std::string axis; // its name, or its tag
        double value;
    };

    void AddParameter(std::string_view key, std::string_view value);

    std::vector<Ref<const ValString>> names_;
    std::vector<TAxisValue> axes_;
};

} // namespace vellum
