// SPDX-License-Identifier: MIT
// A model of a register: a plain list of faces that is walked for every question.
//
// It has no index and keeps nothing but the faces, those that are enabled and those that are disabled, each
// in the order in which they came there. It answers URLs as texts; nothing is an empty list.
#pragma once

#include "query/model_order.hpp"

#include <memory>

namespace vellum::test {

using ModelAnswer = std::vector<std::string>;

class Model {
public:
    // ---- changes ----
    // Takes the faces of a file, which the model reads the first time that it meets it. False when an
    // enabled face of the file is there already, and for what is no font.
    bool Register(const ValURL *file);

    // Every face at or below the path of a URL, enabled or not.
    void Unregister(const ValURL *url);

    // Those of them that fit the URL's fragment.
    void Disable(const ValURL *url);
    void Enable(const ValURL *url);

    // Changes the places of two enabled faces: the model is then wrong.
    void Swap(size_t a, size_t b) { std::swap(enabled_[a], enabled_[b]); }

    // ---- questions ----
    ModelAnswer FontsForRequest(const ValDictionary *request) const;
    ModelAnswer FontForName(const ValString *name) const;
    ModelAnswer FontForCharacter(uint32_t character) const;
    ModelAnswer FontsForURL(const ValURL *url) const;

    // The face that a copy of properties by URL is of, with "enabled" or "disabled".
    ModelAnswer FontDescribed(const ValURL *url, bool disabled_too) const;
    bool IsRegistered(const ValURL *url) const;

    // Each once, in ascending order.
    ModelAnswer Families() const;
    ModelAnswer PostScriptNames() const;
    ModelAnswer URLs() const;
    ModelAnswer FamiliesForLanguage(const ValString *language) const;

    const std::vector<const ModelFace *> &Enabled() const { return enabled_; }
    const std::vector<const ModelFace *> &Disabled() const { return disabled_; }

    // All faces of all files that the model ever met.
    std::vector<const ModelFace *> AllFaces() const;

private:
    using Faces = std::vector<const ModelFace *>;

    std::map<std::string, std::vector<ModelFace>> files_; // by path; they stay
    Faces enabled_;
    Faces disabled_;
};

} // namespace vellum::test
