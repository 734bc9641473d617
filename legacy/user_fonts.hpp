// SPDX-License-Identifier: MIT
// The fonts that are disabled for the user, in two files of the user's:
//
//     $XDG_CONFIG_HOME/vellum/disabled-fonts                  what is so: disabled_fonts.hpp
//     $XDG_CONFIG_HOME/fontconfig/conf.d/50-vellum.conf       made from it, for fontconfig to read
//
// Both are replaced whole, under a lock file beside the first: processes that change them at the same time
// do so one after the other. A 50-vellum.conf that somebody else wrote is put aside, not overwritten.
#pragma once

#include "disabled_fonts.hpp"

#include <sys/stat.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vellum::legacy {

// What has come of a change: the list could not be written; it says what it should; or fontconfig has
// another file to read besides.
enum class Outcome { Failed, Kept, Rewritten };

// Not safe for threads: the service's mutex guards it.
class TUserFonts {
public:
    // Reads the list again if it is another file than last time. Whether it was.
    bool Refresh();

    // Whether all of a file is disabled, by the list or, where that could not be written, in this process.
    bool IsFileDisabled(const std::string &path) const;

    // Enables or disables fonts for the user. Whether fontconfig has another file to read now.
    bool SetEnabled(const std::vector<SelectedFont> &fonts, bool enables);

    // Has the folder of registered fonts looked into. Whether fontconfig has another file to read now.
    bool WriteConfiguration();

private:
    Outcome Edit(const std::function<void(TDisabledFonts &)> &edit);
    Outcome EditLocked(const std::string &home, const std::function<void(TDisabledFonts &)> &edit);
    void Remember(const std::vector<SelectedFont> &fonts, bool enables, bool is_kept);

    struct stat status_ = {}; // of the list when it was read
    TDisabledFonts fonts_;
    std::map<std::string, bool>
        unwritten_; // whether a file is disabled in this process, whatever the list says
};

} // namespace vellum::legacy
