// SPDX-License-Identifier: MIT
// Where fonts are looked for, and where not.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellum {

struct CrawlRoot {
    std::string path;       // absolute, without symbolic links; empty for the root of all
    bool was_named = false; // by the user, who may name what lies on another machine
};

struct CrawlRoots {
    std::vector<CrawlRoot> roots; // none below another, each there
    std::vector<std::string> left_out;

    // Whether a folder that was come to below a root is passed over: hidden ones are, what programs have
    // fetched or made and can again, and what was left out.
    bool PassesOver(const std::string &folder, std::string_view name) const;
};

// Those that VELLUM_INDEX_ROOTS lists, with colons between them; else those in the file index-roots in
// vellum in $XDG_CONFIG_HOME: a line a folder, one with "!" before it to be left out, "#" before what is
// for people. Where neither names any: the user's home, /opt, /srv, and where drives are mounted. Throws
// std::bad_alloc.
CrawlRoots FindCrawlRoots();

// True for a folder whose files are on a disk of this machine. What the system only shows as files is not,
// nor what lies on another machine.
bool IsOnOwnDisk(const std::string &folder) noexcept;

} // namespace vellum
