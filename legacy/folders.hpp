// SPDX-License-Identifier: MIT
// Paths and the folders above them. Paths are absolute, and spelt as fontconfig spells them.
//
// Nothing counts as below the root, as it is with the registers: who names the root means no font.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellum::legacy {

// The folder that something lies in; empty when that is the root.
constexpr std::string_view FolderAbove(std::string_view path) noexcept {
    const size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

// The names of what lies in a folder, but for those that begin with a dot: fontconfig looks at none of
// these. Empty when the folder can't be read.
std::vector<std::string> NamesIn(const std::string &folder);

// Calls visit(entry) for the entries below a folder, in a map by path. The folder itself is none of them.
template <class Map, class Visit>
void ForEachBelow(Map &map, std::string_view folder, Visit visit) {
    const std::string first = std::string(folder) + '/';
    for (auto entry = map.lower_bound(first); entry != map.end() && entry->first.starts_with(first);)
        visit(*entry++);
}

// Takes them out of the map.
template <class Map>
void EraseBelow(Map &map, std::string_view folder) {
    constexpr char kAfterSlash = '/' + 1; // what is below a folder sorts between the two
    map.erase(map.lower_bound(std::string(folder) + '/'),
              map.lower_bound(std::string(folder) + kAfterSlash));
}

} // namespace vellum::legacy
