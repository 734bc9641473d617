// SPDX-License-Identifier: MIT
// The roots beneath which the server finds fonts: the system's, the user's own, and the folders that were
// registered.
#pragma once

#include "server/state_database.hpp"

#include <vellum/vellum.h>

#include <map>
#include <string>

namespace vellum {

enum class FolderDepth { kAlone, kTree };

struct FontRoot {
    std::string path; // as it is spelled: slashes may be doubled, and it may lead through links
    FolderDepth depth;
    uint32_t priority; // of the fonts
    VLFontFlags flags; // theirs, too
    bool is_registered = false;
    uint64_t device = 0, inode = 0; // of the folder that was taken in last; 0 while there is none
    std::string awaited_in = {};    // the folder that is watched, then, for it to come
};

class FontRoots {
public:
    // However the path is spelled; null for what is no root.
    FontRoot *Find(const std::string &path);

    // The nearest one whose fonts include those of a folder; null for none.
    const FontRoot *Over(const std::string &folder) const;

    // Adds one; one that is there already is as it was, or becomes deep.
    FontRoot &Add(FontRoot root);
    void Erase(const std::string &path);

    // Adds those of the system and of the user.
    void AddOwn();

    auto begin() noexcept { return roots_.begin(); }
    auto end() noexcept { return roots_.end(); }

private:
    std::map<std::string, FontRoot> roots_; // by normalized path
};

FontRoot RootFor(const SavedDirectory &directory) noexcept;

// What a folder is registered as, however it is spelled; one that is gone by its text alone.
std::string NameOfFolder(const std::string &path);

// Not the windows into the kernel, which have no end and no fonts.
bool IsOfFiles(const std::string &folder) noexcept;

// False for the path itself.
bool IsBelow(const std::string &path, const std::string &folder) noexcept;

} // namespace vellum
