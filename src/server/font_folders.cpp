// SPDX-License-Identifier: MIT
#include "server/font_folders.hpp"

#include "platform/fs/folder.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "store/font_path_index.hpp"
#include "store/system_fonts.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <sys/statfs.h>
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

bool IsOwnFolder(const fs::path &path) noexcept {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error)); // links to folders could go round
}

// Not the windows into the kernel, which have no end and no fonts.
bool IsOfFiles(const std::string &folder) noexcept {
    struct statfs system = {};
    if (::statfs(folder.c_str(), &system) != 0) return false;
    for (const long kind :
         {0x9fa0L /* proc */, 0x62656572L /* sys */, 0x1cd1L /* pts */, 0x27e0ebL /* cgroup */,
          0x63677270L /* cgroup 2 */, 0x64626720L /* debug */, 0x74726163L /* trace */})
        if (static_cast<long>(system.f_type) == kind) return false;
    return true;
}

// What a folder is registered as, however it is spelled; one that is gone by its text alone.
std::string NameOfFolder(const std::string &path) {
    const std::string real = RealFolderPath(path);
    return real.empty() ? NormalizePath(path) : real;
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

EventLoop::Slice FontFolders::Load(const std::vector<SavedDirectory> &saved) {
    Round round;
    // With its own root the system has exactly the folders that it says; else whole trees, whose folders
    // are named one by one.
    const Depth depth = GetEnvironment("VELLUM_FONTS_ROOT") ? Depth::kFolderAlone : Depth::kTree;
    for (const std::string &folder : SystemFontDirectories()) {
        const uint32_t priority = IsLocalFontDirectory(folder) ? kLocalPriority : kSystemPriority;
        AddRoot(folder, {depth, priority, kSystemFontFlags}, round);
    }
    if (const std::string own = UserFontFolder(); !own.empty())
        AddRoot(own, {Depth::kTree, kUserPriority, 0}, round);
    for (const SavedDirectory &directory : saved) {
        registered_.emplace(directory.path, directory);
        if (!HasRootOver(directory.path)) AddRoot(directory.path, RootFor(directory), round);
    }
    return [this, round = std::move(round)]() mutable { return Slice(round); };
}

FontFolders::Root FontFolders::RootFor(const SavedDirectory &directory) noexcept {
    const Depth depth = directory.options & 1 ? Depth::kFolderAlone : Depth::kTree;
    return {depth, kUserPriority, directory.flags, true};
}

bool FontFolders::Register(const SavedDirectory &asked) {
    SavedDirectory directory = asked;
    directory.path = RealFolderPath(asked.path);
    if (directory.path.empty() || !IsOfFiles(directory.path) || registered_.contains(directory.path))
        return false;
    registered_.emplace(directory.path, directory);
    register_.KeepDirectory(directory);
    if (HasRootOver(directory.path)) return true; // its fonts are there
    Round round;
    AddRoot(directory.path, RootFor(directory), round);
    FinishLater(std::move(round));
    return true;
}

// What other roots still want there is taken in again.
bool FontFolders::Unregister(const std::string &asked) {
    const std::string path = NameOfFolder(asked);
    if (registered_.erase(path) == 0) return false;
    register_.ForgetDirectory(path);
    const auto root = roots_.find(path);
    Round letting_go, taking_in;
    if (root != roots_.end() && root->second.is_registered) {
        roots_.erase(root);
        letting_go.lets_go = true;
        LetGo(path, letting_go);
        for (const auto &[other, kept] : roots_)
            if (IsBelow(other, path)) TakeIn(other, kept.depth, taking_in);
        for (const auto &[other, kept] : registered_)
            if (!HasRootOver(other)) AddRoot(other, RootFor(kept), taking_in);
    }
    FinishLater(std::move(letting_go));
    FinishLater(std::move(taking_in));
    return true;
}

void FontFolders::AddRoot(const std::string &path, const Root &root, Round &round) {
    const auto [known, is_new] = roots_.emplace(path, root);
    if (!is_new && root.depth == Depth::kTree) known->second.depth = Depth::kTree;
    if (IsOwnFolder(path))
        TakeIn(path, known->second.depth, round);
    else
        AwaitRoot(path);
}

// The nearest one above a file.
const FontFolders::Root *FontFolders::RootOf(const std::string &file) const {
    for (size_t end = file.rfind('/'); end != std::string::npos && end > 0;
         end = file.rfind('/', end - 1)) {
        const auto root = roots_.find(file.substr(0, end));
        if (root != roots_.end()) return &root->second;
    }
    return nullptr;
}

// Watches the nearest folder that is there.
void FontFolders::AwaitRoot(const std::string &path) {
    fs::path above = fs::path(path).parent_path();
    while (above.has_relative_path() && !IsOwnFolder(above)) above = above.parent_path();
    if (!folders_.contains(above)) Watch(above, Depth::kWaiting);
}

// Roots may be spelled with doubled slashes.
bool FontFolders::HasRootOver(const std::string &path) const {
    return std::ranges::any_of(roots_, [&](const auto &entry) {
        const std::string root = NormalizePath(entry.first);
        return root == path || (entry.second.depth == Depth::kTree && IsBelow(path, root));
    });
}

// The system gives one number to one folder: that of another name for it stays with the first.
void FontFolders::Watch(const std::string &path, Depth depth) {
    int number = ::inotify_add_watch(inotify_.Get(), path.c_str(), kEvents);
    if (number < 0 && errno == ENOSPC)
        Log(LogLevel::kWarning, "The system has no room to watch %s: what changes there is seen later",
            path.c_str());
    if (number >= 0 && !paths_.emplace(number, path).second && paths_[number] != path) number = -1;
    folders_[path] = {number, depth};
}

void FontFolders::TakeIn(std::string path, Depth depth, Round &round) {
    round.folders.push_back({std::move(path), depth});
}

// The folder is watched before it is read: what comes meanwhile is seen twice rather than never.
void FontFolders::Read(const FolderToRead &folder, Round &round) {
    const auto known = folders_.find(folder.path);
    if (known != folders_.end() && known->second.depth != Depth::kWaiting &&
        (known->second.depth == Depth::kTree || folder.depth == known->second.depth))
        return;
    if (folders_.size() >= kMostFolders) {
        if (!std::exchange(is_full_, true))
            Log(LogLevel::kWarning,
                "Fonts are not looked for in %s and further folders: there are too many",
                folder.path.c_str());
        return;
    }
    if (!IsOfFiles(folder.path)) return;
    Watch(folder.path, folder.depth);
    for (const fs::path &entry : EntriesOf(folder.path)) {
        if (!IsOwnFolder(entry))
            round.there.push_back(entry);
        else if (folder.depth == Depth::kTree)
            TakeIn(entry, folder.depth, round);
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
    for (const auto &[path, root] : roots_) {
        LetGo(path, round);
        if (IsOwnFolder(path)) TakeIn(path, root.depth, round);
    }
}

void FontFolders::ReadEvents() {
    Round round;
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    const ssize_t size = ::read(inotify_.Get(), buffer.data(), buffer.size()); // the rest is told again
    for (const char *at = buffer.data(); at < buffer.data() + size;) {
        inotify_event event;
        std::memcpy(&event, at, sizeof event);
        HandleEvent(event.wd, event.mask, event.len ? at + sizeof event : "", round);
        at += sizeof event + event.len;
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
        for (const auto &[waiting, root] : roots_) {
            const auto known = folders_.find(waiting);
            if (known == folders_.end() || known->second.depth == Depth::kWaiting)
                AddRoot(waiting, root, round);
        }
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

// One folder or one file; false when there are none left.
bool FontFolders::Slice(Round &round) {
    const auto take = [](auto &queue) {
        auto first = std::move(queue.front());
        queue.pop_front();
        return first;
    };
    if (!round.gone.empty())
        FileWent(take(round.gone), round.lets_go, round.news);
    else if (!round.there.empty())
        FileCame(take(round.there), round.news);
    else if (!round.folders.empty())
        Read(take(round.folders), round);
    else
        return false;
    return true;
}

// What the events said is looked up when its turn has come: a file that is there has come, one that is not
// has gone, whatever happened in which order.
void FontFolders::FinishLater(Round round) {
    if (round.IsEmpty()) return;
    loop_.AddWork([this, round = std::make_shared<Round>(std::move(round))] {
        if (Slice(*round)) return true;
        if (!round->news.came.empty() || !round->news.went.empty()) tell_(round->news);
        return false;
    });
}

void FontFolders::FileCame(const std::string &path, FolderNews &news) {
    const Root *root = RootOf(path);
    if (!root) return; // it is not wanted any more
    const std::string text(TValURL::FromPath(path).Text());
    if (register_.IsWanted(path) && register_.Vanished(path)) news.went.push_back(text);
    if (register_.Found(path, root->flags, root->priority)) news.came.push_back(text);
}

void FontFolders::FileWent(const std::string &path, bool lets_go, FolderNews &news) {
    std::error_code error;
    if (!lets_go && fs::exists(path, error)) return FileCame(path, news); // another of that name
    if (lets_go ? register_.LetGo(path) : register_.Vanished(path))
        news.went.push_back(std::string(TValURL::FromPath(path).Text()));
}

} // namespace vellum
