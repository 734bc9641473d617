// SPDX-License-Identifier: MIT
// The application fonts of the program's configuration: those that this service put there, among those that
// the program did. These are never touched: they need have no file that could be read again.
//
// fontconfig leaves it to programs not to change application fonts in one thread while another walks over
// them. A font that goes does such a thread no harm (retired_fonts.hpp); one that comes may.
#pragma once

#include "font_set_index.hpp"
#include "retired_fonts.hpp"

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

    // Takes out what was added here of these files; nothing else is moved but up. All or, when memory is
    // exhausted, nothing.
    void Remove(FcConfig *config, const std::unordered_set<std::string> &paths);

    // Has another configuration share the program's application fonts, in their order.
    void CopyForeign(FcConfig *from, FcConfig *into) const;

    // Gives up what was taken out: for who knows that nobody looks at it.
    void FreeRetired() noexcept { retired_.Clear(); }

    // How many faces fontconfig found in a file that was added here.
    size_t FacesOf(const std::string &path) const;

private:
    struct Own {
        std::vector<const FcPattern *> fonts; // never followed: known by their addresses and their file
        std::string file;                     // as fontconfig has it, which may look below another root
        size_t faces = 0; // named instances count, the font that stands for all of them does not
    };

    static Own OwnFrom(const FcFontSet &set, int first);
    static bool IsIn(const FcFontSet *set, const Own &own) noexcept;

    const FcConfig *config_ = nullptr; // the one that was followed, known by its address alone
    TFontSetIndex system_;
    TFontSetIndex application_;
    std::unordered_map<std::string, Own> own_;
    TRetiredFonts retired_;
};

} // namespace vellum::legacy
