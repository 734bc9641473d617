// SPDX-License-Identifier: MIT
#include "server/font_folders.hpp"

#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "store/system_fonts.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace vellum {

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kFileCame = IN_CLOSE_WRITE | IN_MOVED_TO;
constexpr uint32_t kFileWent = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t kFolderCame = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t kFolderWent = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT;
constexpr uint32_t kEvents = kFileCame | kFileWent | kFolderCame | kFolderWent | IN_ONLYDIR;

// Where the user puts fonts.
std::string UserFontFolder() {
    const char *data = GetEnvironment("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/fonts";
    const char *home = GetEnvironment("HOME");
    return home && *home == '/' ? std::string(home) + "/.local/share/fonts" : std::string();
}

// What is in a folder, in the order of the names; what cannot be read is empty.
std::vector<fs::path> EntriesOf(const std::string &folder) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        entries.push_back(at->path());
    std::ranges::sort(entries);
    return entries;
}

bool IsFolder(const fs::path &path) noexcept {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error)); // links to folders could go round
}

bool IsBelow(const std::string &path, const std::string &folder) noexcept {
    return path.starts_with(folder) && path[folder.size()] == '/';
}

} // namespace

FontFolders::FontFolders(EventLoop &loop, SharedRegister &fonts, Tell tell)
    : loop_(loop), register_(fonts), tell_(std::move(tell)),
      inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!inotify_.IsOpen()) throw std::system_error(errno, std::generic_category());
    loop_.Watch(inotify_.Get(), EPOLLIN, [this](uint32_t) { ReadEvents(); });
}

FontFolders::~FontFolders() {
    loop_.Forget(inotify_.Get());
}

void FontFolders::Load(const std::vector<SavedDirectory> &saved) {
    Round round;
    // With its own root the system has exactly the folders that it says; else whole trees, whose folders
    // are named one by one.
    const Depth depth = GetEnvironment("VELLUM_FONTS_ROOT") ? Depth::kFolderAlone : Depth::kTree;
    for (const std::string &folder : SystemFontDirectories()) AddRoot(folder, depth, round);
    if (const std::string own = UserFontFolder(); !own.empty()) AddRoot(own, Depth::kTree, round);
    for (const SavedDirectory &directory : saved) {
        registered_.emplace(directory.path, directory);
        AddRoot(directory.path, DepthOf(directory), round);
    }
    while (Slice(round)) {
    }
}

FontFolders::Depth FontFolders::DepthOf(const SavedDirectory &directory) noexcept {
    return directory.options & 1 ? Depth::kFolderAlone : Depth::kTree;
}

bool FontFolders::Register(const SavedDirectory &directory) {
    if (directory.path.empty() || !IsFolder(directory.path) || registered_.contains(directory.path))
        return false;
    registered_.emplace(directory.path, directory);
    register_.KeepDirectory(directory);
    Round round;
    AddRoot(directory.path, DepthOf(directory), round);
    FinishLater(std::move(round));
    return true;
}

bool FontFolders::Unregister(const std::string &path) {
    if (registered_.erase(path) == 0) return false;
    register_.ForgetDirectory(path);
    roots_.erase(path);
    Round round;
    round.lets_go = true;
    if (!HasRootAbove(path)) LetGo(path, round);
    FinishLater(std::move(round));
    return true;
}

void FontFolders::AddRoot(const std::string &path, Depth depth, Round &round) {
    roots_.emplace(path, depth);
    if (IsFolder(path))
        TakeIn(path, depth, round);
    else
        AwaitRoot(path);
}

// Watches the nearest folder that is there.
void FontFolders::AwaitRoot(const std::string &path) {
    fs::path above = fs::path(path).parent_path();
    while (above.has_relative_path() && !IsFolder(above)) above = above.parent_path();
    if (!folders_.contains(above)) Watch(above, Depth::kWaiting);
}

bool FontFolders::HasRootAbove(const std::string &path) const {
    return std::ranges::any_of(
        roots_, [&](const auto &root) { return root.second == Depth::kTree && IsBelow(path, root.first); });
}

void FontFolders::Watch(const std::string &path, Depth depth) {
    const int number = ::inotify_add_watch(inotify_.Get(), path.c_str(), kEvents);
    if (number < 0 && errno == ENOSPC)
        Log(LogLevel::kWarning, "The system has no room to watch %s: what changes there is seen later",
            path.c_str());
    folders_[path] = {number, depth};
    if (number >= 0) paths_[number] = path;
}

// The folder is watched before it is read: what comes meanwhile is seen twice rather than never.
void FontFolders::TakeIn(const std::string &path, Depth depth, Round &round) {
    const auto known = folders_.find(path);
    if (known != folders_.end() && known->second.depth != Depth::kWaiting) return;
    Watch(path, depth);
    for (const fs::path &entry : EntriesOf(path)) {
        if (!IsFolder(entry))
            round.there.push_back(entry);
        else if (depth == Depth::kTree)
            TakeIn(entry, depth, round);
    }
}

void FontFolders::LetGo(const std::string &path, Round &round) {
    for (auto at = folders_.lower_bound(path); at != folders_.end() && at->first.starts_with(path);) {
        if (at->first != path && !IsBelow(at->first, path)) {
            ++at;
            continue;
        }
        if (at->second.number >= 0) {
            ::inotify_rm_watch(inotify_.Get(), at->second.number);
            paths_.erase(at->second.number);
        }
        at = folders_.erase(at);
    }
    for (std::string &file : register_.FilesAt(path)) round.gone.push_back(std::move(file));
    if (roots_.contains(path)) AwaitRoot(path);
}

// Everything may have happened.
void FontFolders::LookAgain(Round &round) {
    for (const auto &[path, depth] : roots_) {
        LetGo(path, round);
        if (IsFolder(path)) TakeIn(path, depth, round);
    }
}

void FontFolders::ReadEvents() {
    Round round;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    for (;;) {
        const ssize_t size = ::read(inotify_.Get(), buffer.data(), buffer.size());
        if (size <= 0) break;
        for (const char *at = buffer.data(); at < buffer.data() + size;) {
            inotify_event event;
            std::memcpy(&event, at, sizeof event);
            HandleEvent(event.wd, event.mask, event.len ? at + sizeof event : "", round);
            at += sizeof event + event.len;
        }
    }
    FinishLater(std::move(round));
}

void FontFolders::HandleEvent(int number, uint32_t mask, const char *name, Round &round) {
    if (mask & IN_Q_OVERFLOW) return LookAgain(round);
    const auto found = paths_.find(number);
    if (found == paths_.end()) return;
    const std::string folder = found->second, path = folder + "/" + name;
    const Depth depth = folders_.at(folder).depth;
    if (depth == Depth::kWaiting) {
        for (const auto &[root, root_depth] : roots_)
            if (!folders_.contains(root)) AddRoot(root, root_depth, round);
    } else if (mask & kFolderWent) {
        LetGo(folder, round);
    } else if (mask & IN_ISDIR) {
        if (mask & kFileWent) LetGo(path, round);
        if (mask & kFolderCame && depth == Depth::kTree) TakeIn(path, depth, round);
    } else if (mask & kFileWent) {
        round.gone.push_back(path);
    } else if (mask & kFileCame) {
        round.there.push_back(path);
    }
}

// One file; false when there are none left.
bool FontFolders::Slice(Round &round) {
    if (round.next_gone < round.gone.size()) {
        FileWent(round.gone[round.next_gone++], round.lets_go, round.news);
        return true;
    }
    if (round.next_there < round.there.size()) {
        FileCame(round.there[round.next_there++], round.news);
        return true;
    }
    return false;
}

// What the events said is looked up when its turn has come: a file that is there has come, one that is not
// has gone, whatever happened in which order.
void FontFolders::FinishLater(Round round) {
    if (round.there.empty() && round.gone.empty()) return;
    loop_.AddWork([this, round = std::make_shared<Round>(std::move(round))] {
        if (Slice(*round)) return true;
        if (!round->news.came.empty() || !round->news.went.empty()) tell_(round->news);
        return false;
    });
}

void FontFolders::FileCame(const std::string &path, FolderNews &news) {
    const std::string text(TValURL::FromPath(path).Text());
    if (register_.IsWanted(path) && register_.Vanished(path)) news.went.push_back(text);
    if (register_.Found(path)) news.came.push_back(text);
}

void FontFolders::FileWent(const std::string &path, bool lets_go, FolderNews &news) {
    std::error_code error;
    if (!lets_go && fs::exists(path, error)) return FileCame(path, news); // another of that name
    if (lets_go ? register_.LetGo(path) : register_.Vanished(path))
        news.went.push_back(std::string(TValURL::FromPath(path).Text()));
}

} // namespace vellum
