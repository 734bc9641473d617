// SPDX-License-Identifier: MIT
// Writing of the user's list. The list is written before what is made from it: should the process end in
// between, the next change of any process writes the rest.
#include "user_list.hpp"

#include "configuration_text.hpp"
#include "registered_links.hpp"
#include "user_files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>

namespace vellum::legacy {
namespace {

constexpr const char *kList = "/vellum/disabled-fonts";
constexpr const char *kConfigurationFolder = "/fontconfig/conf.d";
constexpr const char *kConfiguration = "/50-vellum.conf";
constexpr std::chrono::seconds kPatience{5}; // with another process that writes, which takes milliseconds
constexpr int kMostAside = 100;

// Gives a file another name, which fontconfig does not read.
bool PutAside(const std::string &path) noexcept {
    for (int i = 1; i <= kMostAside; ++i) {
        const std::string aside = path + ".saved" + std::to_string(i);
        if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

bool IsSymbolicLink(const std::string &path) noexcept {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

Outcome WriteConfiguration(const TDisabledFonts &fonts, const std::string &folder,
                           const std::optional<std::string> &former) {
    const std::string path = folder + kConfiguration;
    const std::string text = ConfigurationText(fonts);
    if (former == text) return Outcome::Kept;
    const bool is_ours = former && (former->empty() || IsOurConfiguration(*former));
    if (!MakeFolders(folder) || (!is_ours && !PutAside(path))) return Outcome::Kept;
    return ReplaceFile(path, text) ? Outcome::Rewritten : Outcome::Kept;
}

// A file that says nothing any more goes; but where somebody laid a symbolic link, that stays.
Outcome RemoveConfiguration(const TDisabledFonts &fonts, const std::string &folder,
                            const std::optional<std::string> &former) {
    const std::string path = folder + kConfiguration;
    if (!former || !IsOurConfiguration(*former)) return Outcome::Kept;
    if (IsSymbolicLink(path)) return WriteConfiguration(fonts, folder, former);
    return unlink(path.c_str()) == 0 ? Outcome::Rewritten : Outcome::Kept;
}

// Whoever lays a link comes here afterwards, and then finds the link: no file goes that one needs.
Outcome UpdateConfiguration(const TDisabledFonts &fonts, const std::string &folder) {
    const auto former = ReadSmallFile(folder + kConfiguration);
    const bool is_needed = !fonts.Files().empty() || HasLinks();
    return is_needed ? WriteConfiguration(fonts, folder, former)
                     : RemoveConfiguration(fonts, folder, former);
}

Outcome EditLocked(const std::string &home, const std::function<void(TDisabledFonts &)> &edit) {
    const std::string list = home + kList;
    const auto former = ReadSmallFile(list);
    if (!former) return Outcome::Failed;
    RemoveUnfinished(list);
    RemoveUnfinished(home + kConfigurationFolder + kConfiguration);
    TDisabledFonts fonts(*former);
    edit(fonts);
    // A list of nothing is not begun.
    const bool is_begun = !former->empty() || !fonts.Files().empty();
    const std::string text = fonts.Text();
    if (is_begun && text != *former && !ReplaceFile(list, text)) return Outcome::Failed;
    return UpdateConfiguration(fonts, home + kConfigurationFolder);
}

Outcome Edit(const std::function<void(TDisabledFonts &)> &edit) {
    const std::string home = ConfigHome();
    if (home.empty() || !MakeFolders(home + "/vellum")) return Outcome::Failed;
    const TFileLock lock(home + kList + ".lock", kPatience);
    return lock ? EditLocked(home, edit) : Outcome::Failed;
}

} // namespace

Outcome ChangeUserList(const std::vector<SelectedFont> &fonts, bool enables) {
    return Edit([&](TDisabledFonts &list) {
        for (const SelectedFont &font : fonts) enables ? list.Enable(font) : list.Disable(font);
    });
}

Outcome WriteUserConfiguration() {
    return Edit([](TDisabledFonts &) {});
}

std::string UserListPath() {
    const std::string home = ConfigHome();
    return home.empty() ? home : home + kList;
}

} // namespace vellum::legacy
