// SPDX-License-Identifier: MIT
// The application fonts of the program's configuration: those that this service put there, among those that
// the program did.
//
// fontconfig leaves it to programs not to change application fonts in one thread while another walks over
// them, and so does this: a font that comes or goes is a change of them.
#pragma once

#include "font_set_index.hpp"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vellum::legacy {

// Not safe for threads: the service's mutex guards it.
class TApplicationFonts {
public:
    // Looks at the configuration that is current now. False when it no longer has the fonts that were
    // added, or may have other system fonts: then nothing counts as added any more.
    bool Follow(FcConfig *config);

    // Whether fontconfig has a file by itself.
    bool SystemHas(FcConfig *config, const std::string &path);

    // Whether a file was added here.
    bool Owns(const std::string &path) const { return own_.contains(path); }

    // Adds the fonts of a file, unless the program has added it.
    void Add(FcConfig *config, const std::string &path);

    // Takes files out that were added here. fontconfig can only take all out: the others are put back, each
    // once, in their order.
    void Remove(FcConfig *config, const std::unordered_set<std::string> &paths);

    // Puts the program's application fonts into another configuration.
    void CopyForeign(FcConfig *from, FcConfig *into) const;

    // How many faces fontconfig found in a file that was added here.
    size_t FacesOf(const std::string &path) const;

private:
    struct Own {
        int fonts = 0;    // that the file brought
        size_t faces = 0; // named instances count, the font that stands for all of them does not
    };

    struct Files {
        std::vector<std::string> order; // each once
        std::unordered_map<std::string, int> fonts;
    };

    static Files FilesOf(FcConfig *config);
    static Own AddFile(FcConfig *config, const std::string &path);
    bool IsForeign(const Files &files, const std::string &path) const;

    const FcConfig *config_ = nullptr; // the one that was followed, known by its address alone
    TFontSetIndex system_;
    TFontSetIndex application_;
    std::unordered_map<std::string, Own> own_;
};

} // namespace vellum::legacy
