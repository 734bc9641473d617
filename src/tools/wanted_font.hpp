// SPDX-License-Identifier: MIT
// A font that somebody wants by a name: whether it is there, or where it could be had.
#pragma once

#include "tools/json.hpp"

#include <vellum/vellum.hpp>

#include <string>
#include <vector>

namespace vellum::tool {

struct WantedFont {
    enum class State { kActive, kFound, kMissing };

    std::string name;
    State state = State::kMissing;
    bool is_offered = false;        // by a program that provides fonts
    std::vector<std::string> files; // where it is, or would come from
};

// A font by its PostScript, its full or its family's name. First the registers are asked, then programs
// that provide fonts, then the index of font files.
WantedFont FindWantedFont(const std::string &name);

// Whether a file was downloaded: browsers write down where from.
bool IsDownloaded(const std::string &path);

// For programs: the name, its "state" ("active", "found", "missing"), "offered" and "files".
Json ToJson(const WantedFont &font);

} // namespace vellum::tool
