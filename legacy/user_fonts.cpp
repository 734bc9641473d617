// SPDX-License-Identifier: MIT
// Keeping of the user's list. The list is written before what is made from it: should the process end in
// between, the next change of any process writes the rest.
#include "user_fonts.hpp"

#include "configuration_text.hpp"
#include "user_files.hpp"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>

namespace vellum::legacy {
namespace {

constexpr const char *kList = "/vellum/disabled-fonts";
constexpr const char *kConfigurationFolder = "/fontconfig/conf.d";
constexpr const char *kConfiguration = "/50-vellum.conf";
constexpr std::chrono::seconds kPatience{5}; // with another process that writes, which takes milliseconds
constexpr int kMostAside = 100;

bool IsSameFile(const struct stat &a, const struct stat &b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// Gives a file another name, which fontconfig does not read.
bool PutAside(const std::string &path) noexcept {
    for (int i = 1; i <= kMostAside; ++i) {
        const std::string aside = path + ".saved" + std::to_string(i);
        if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

Outcome WriteConfigurationOf(const TDisabledFonts &fonts, const std::string &folder) {
    const std::string path = folder + kConfiguration;
    if (!MakeFolders(folder)) return Outcome::Kept;
    const auto former = ReadSmallFile(path);
    const std::string text = ConfigurationText(fonts);
    if (former == text) return Outcome::Kept;
    const bool is_ours = former && (former->empty() || IsOurConfiguration(*former));
    if (!is_ours && !PutAside(path)) return Outcome::Kept;
    return ReplaceFile(path, text) ? Outcome::Rewritten : Outcome::Kept;
}

} // namespace

bool TUserFonts::Refresh() {
    const std::string home = ConfigHome();
    const std::string path = home + kList;
    struct stat status = {};
    if (home.empty() || stat(path.c_str(), &status) != 0) status = {};
    if (IsSameFile(status, status_)) return false;
    status_ = status;
    fonts_ = TDisabledFonts(home.empty() ? "" : ReadSmallFile(path).value_or(""));
    return true;
}

bool TUserFonts::IsFileDisabled(const std::string &path) const {
    const auto found = unwritten_.find(path);
    return found == unwritten_.end() ? fonts_.IsFileDisabled(path) : found->second;
}

bool TUserFonts::SetEnabled(const std::vector<SelectedFont> &fonts, bool enables) {
    const Outcome outcome = Edit([&](TDisabledFonts &list) {
        for (const SelectedFont &font : fonts) enables ? list.Enable(font) : list.Disable(font);
    });
    Remember(fonts, enables, outcome != Outcome::Failed);
    return outcome == Outcome::Rewritten;
}

// A face alone is none of a process's affairs: see font_service.hpp.
void TUserFonts::Remember(const std::vector<SelectedFont> &fonts, bool enables, bool is_kept) {
    for (const SelectedFont &font : fonts) {
        if (is_kept)
            unwritten_.erase(font.path);
        else if (enables || font.is_whole_file)
            unwritten_[font.path] = !enables;
    }
}

bool TUserFonts::WriteConfiguration() {
    return Edit([](TDisabledFonts &) {}) == Outcome::Rewritten;
}

Outcome TUserFonts::Edit(const std::function<void(TDisabledFonts &)> &edit) {
    const std::string home = ConfigHome();
    if (home.empty() || !MakeFolders(home + "/vellum")) return Outcome::Failed;
    const TFileLock lock(home + kList + ".lock", kPatience);
    return lock ? EditLocked(home, edit) : Outcome::Failed;
}

Outcome TUserFonts::EditLocked(const std::string &home, const std::function<void(TDisabledFonts &)> &edit) {
    const std::string list = home + kList;
    const auto former = ReadSmallFile(list);
    if (!former) return Outcome::Failed;
    TDisabledFonts fonts(*former);
    edit(fonts);
    // A list of nothing is not begun.
    const bool is_begun = !former->empty() || !fonts.Files().empty();
    const std::string text = fonts.Text();
    if (is_begun && text != *former && !ReplaceFile(list, text)) return Outcome::Failed;

    return WriteConfigurationOf(fonts, home + kConfigurationFolder);
}

} // namespace vellum::legacy
