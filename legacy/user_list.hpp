// SPDX-License-Identifier: MIT
// The fonts that are disabled for the user, in two files of the user's:
//
//     $XDG_CONFIG_HOME/vellum/disabled-fonts                  what is so: disabled_fonts.hpp
//     $XDG_CONFIG_HOME/fontconfig/conf.d/50-vellum.conf       made from it, for fontconfig to read
//
// Both are replaced whole, under a lock file beside the first: processes that change them at the same time
// do so one after the other. A 50-vellum.conf that somebody else wrote is put aside, not overwritten. There
// is one of ours as long as something is registered or disabled for the user.
//
// Changes wait for other processes and for the disk: no lock that a query may want is held over them.
#pragma once

#include "disabled_fonts.hpp"

#include <string>
#include <vector>

namespace vellum::legacy {

// What has come of a change: the list could not be written; it says what it should; or fontconfig has
// another file to read besides.
enum class Outcome { Failed, Kept, Rewritten };

// Enables or disables fonts for the user.
Outcome ChangeUserList(const std::vector<SelectedFont> &fonts, bool enables);

// Has the folder of registered fonts looked into, if there are any.
Outcome WriteUserConfiguration();

// Where the list is, whether or not there is one; empty without a home.
std::string UserListPath();

} // namespace vellum::legacy
