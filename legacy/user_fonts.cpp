// SPDX-License-Identifier: MIT
// What is known of the user's list, without writing any of it.
#include "user_fonts.hpp"

#include "folders.hpp"
#include "user_files.hpp"
#include "user_list.hpp"

namespace vellum::legacy {
namespace {

bool IsSameFile(const struct stat &a, const struct stat &b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

} // namespace

bool TUserFonts::Refresh() {
    const std::string path = UserListPath();
    struct stat status = {};
    if (path.empty() || stat(path.c_str(), &status) != 0) status = {};
    if (IsSameFile(status, status_)) return false;
    fonts_ = TDisabledFonts(path.empty() ? "" : ReadSmallFile(path).value_or(""));
    status_ = status;
    return true;
}

// What was said of the file itself, or else of the innermost folder above it; null when nothing was.
const bool *TUserFonts::FindUnwritten(std::string_view path) const {
    if (unwritten_.empty()) return nullptr;
    for (; !path.empty(); path = FolderAbove(path)) {
        const auto found = unwritten_.find(path);
        if (found != unwritten_.end()) return &found->second;
    }
    return nullptr;
}

bool TUserFonts::IsFileDisabled(std::string_view path) const {
    const bool *const is_disabled = FindUnwritten(path);
    return is_disabled ? *is_disabled : fonts_.IsFileDisabled(path);
}

// A face alone is none of a process's affairs: see font_service.hpp.
void TUserFonts::Remember(const std::vector<SelectedFont> &fonts, bool enables, bool is_kept) {
    for (const SelectedFont &font : fonts) {
        if (font.is_whole_file) EraseBelow(unwritten_, font.path);
        if (is_kept) unwritten_.erase(font.path);
        // Of what was kept, too, where a folder above it is what could not be written.
        if ((!is_kept || FindUnwritten(font.path)) && (enables || font.is_whole_file))
            unwritten_[font.path] = !enables;
    }
}

} // namespace vellum::legacy
