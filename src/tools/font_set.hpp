// SPDX-License-Identifier: MIT
// Which fonts a verb asks about: those of the machine, or those of files that were named.
#pragma once

#include "tools/exit_code.hpp"
#include "tools/font_files.hpp"
#include "tools/json.hpp"

#include <vellum/vellum.hpp>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace vellum::tool {

struct FontChoice {
    std::vector<std::string> paths; // none: the machine's fonts
    std::string scope;              // empty: everybody's and the process's own
};

// The options that name the files, or the register; `choice` must outlive the parsing.
void AddFontSetOptions(CLI::App &verb, FontChoice &choice);

class FontSet {
public:
    // Registers the fonts of the files and folders for this process; with none, nothing. Says on standard
    // error what was refused, and that no server holds the machine's fonts. `more` may have kVLScopeSilent.
    explicit FontSet(const FontChoice &choice, VLScope more = kVLScopeSilent);

    // To be asked with: the process's own fonts where files were named, else all that the machine has.
    VLScope Scope() const noexcept { return scope_; }

    const std::vector<Refusal> &Refusals() const noexcept { return refusals_; }

    // The code for "here it is": it tells whether some of the named files are no fonts.
    ExitCode Found() const noexcept { return refusals_.empty() ? kDone : kNothingFound; }

    // The code for "this is not there", or for why none of the named files is a font.
    ExitCode NotFound() const noexcept { return not_found_; }

private:
    VLScope scope_;
    std::vector<Refusal> refusals_;
    ExitCode not_found_ = kNothingFound;
};

// Looking for fonts activates none.
inline constexpr VLActivationOptions kActivateNothing =
    kVLActivationNotFromProviders | kVLActivationNotFromSearch;

// A face as verbs that find fonts show it.
struct FoundFont {
    std::string url;
    std::string path;
    std::string postscript_name; // empty names are names that it has not
    std::string family;
    std::string style;
    std::string full_name;
};

FoundFont Describe(const ValURL *font, VLScope scope);
std::vector<FoundFont> DescribeAll(const ValArray *fonts, VLScope scope);

Json ToJson(const FoundFont &font);

// For people: what it is called, and the file that it is in.
std::string NameOf(const FoundFont &font);
std::string ToLine(const FoundFont &font);

} // namespace vellum::tool
