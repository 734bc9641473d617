// SPDX-License-Identifier: MIT
// Which files are disabled for the user, as this process knows: by the user's list (user_list.hpp), and by
// what could not be written into it.
#pragma once

#include "disabled_fonts.hpp"

#include <sys/stat.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::legacy {

// Not safe for threads: the service's mutex guards it.
class TUserFonts {
public:
    // Reads the list again if it is another file than last time. Whether it was.
    bool Refresh();

    // Whether all of a file is disabled, by the list or, where that could not be written, in this process.
    bool IsFileDisabled(std::string_view path) const;

    // Notes a change; `is_kept`: the list says so too.
    void Remember(const std::vector<SelectedFont> &fonts, bool enables, bool is_kept);

private:
    const bool *FindUnwritten(std::string_view path) const;

    struct stat status_ = {}; // of the list when it was read
    TDisabledFonts fonts_;
    std::map<std::string, bool, std::less<>> unwritten_; // whether a file, or all in a folder, is disabled
                                                         // in this process, whatever the list says
};

} // namespace vellum::legacy
