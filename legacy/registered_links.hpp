// SPDX-License-Identifier: MIT
// Fonts that are registered for the user: symbolic links to their files, in a folder that every program's
// fontconfig looks into.
//
// Nothing counts how many processes registered a file: the link is there or it is not. A link whose file
// has gone does no harm.
#pragma once

#include <string>
#include <vector>

namespace vellum::legacy {

// Below the user's data folder; what the configuration that we write calls it, too.
inline constexpr const char *kRegisteredFontsFolder = "vellum/registered-fonts";

// Where the link to a file stands, whether or not it does: a hash of the path, so that equal names don't
// meet, and of the name what every file can be written with. Empty without a data folder.
std::string LinkPathOf(const std::string &path);

// Whether the link is there afterwards.
bool AddLink(const std::string &path);

// Whether there was one.
bool RemoveLink(const std::string &path);

struct RegisteredLink {
    std::string path;   // of the link
    std::string target; // the font file
};

// All links that were laid here, by path. What else lies in the folder is left out.
std::vector<RegisteredLink> RegisteredLinks();

// Whether there is anything in the folder.
bool HasLinks();

} // namespace vellum::legacy
