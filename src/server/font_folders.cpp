// SPDX-License-Identifier: MIT
#include "server/font_folders.hpp"

#include "platform/fs/folder.hpp"
#include "store/font_path_index.hpp"

#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

namespace vellum {

namespace {

constexpr uint32_t kCame = IN_CREATE | IN_MOVED_TO;
constexpr uint32_t kWent = IN_DELETE | IN_MOVED_FROM;
constexpr uint32_t kFolderItselfWent = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT;

// The nearest folder above one that is not there.
std::string FolderAbove(const std::string &path) {
    std::filesystem::path above = std::filesystem::path(path).parent_path();
    while (above.has_relative_path() && !LeadsToFolder(above.c_str())) above = above.parent_path();
    return above;
}

bool IsAtOrBelow(const std::string &path, const std::string &folder) noexcept {
    return path == folder || IsBelow(path, folder);
}

} // namespace

FontFolders::FontFolders(EventLoop &loop, SharedRegister &fonts, Tell tell)
    : loop_(loop), register_(fonts), tell_(std::move(tell)),
      watch_(loop, [this](const std::vector<FolderEvent> &events) { HandleEvents(events); }) {}

EventLoop::Slice FontFolders::Load(const std::vector<SavedDirectory> &saved) {
    const auto round = std::make_shared<Round>();
    roots_.AddOwn();
    for (const SavedDirectory &directory : saved) {
        registered_.emplace(directory.path, directory);
        if (!roots_.Over(directory.path)) roots_.Add(RootFor(directory));
    }
    for (auto &[name, root] : roots_) Enter(root, *round);
    return [this, round] {
        if (Slice(*round)) return true;
        PollLater();
        return false;
    };
}

bool FontFolders::Register(const SavedDirectory &asked, bool on_disk) {
    SavedDirectory directory = asked;
    directory.path = RealFolderPath(asked.path);
    if (directory.path.empty() || !IsOfFiles(directory.path) || registered_.contains(directory.path))
        return false;
    register_.KeepDirectory(directory);
    if (!register_.Save(on_disk)) return false;
    registered_.emplace(directory.path, directory);
    if (roots_.Over(directory.path)) return true; // its fonts are there
    Round round;
    Enter(roots_.Add(RootFor(directory)), round);
    FinishLater(std::move(round));
    return true;
}

// What other roots still want there is taken in again.
bool FontFolders::Unregister(const std::string &asked, bool on_disk) {
    const std::string path = NameOfFolder(asked);
    if (!registered_.contains(path)) return false;
    register_.ForgetDirectory(path);
    if (!register_.Save(on_disk)) return false;
    registered_.erase(path);
    const FontRoot *root = roots_.Find(path);
    if (!root || !root->is_registered) return true;
    roots_.Erase(path);
    Round round;
    LetGo(path, round);
    if (roots_.Over(path)) round.Read(path, FolderDepth::kTree, Again::kNo);
    for (const auto &[other, kept] : registered_)
        if (!roots_.Over(other)) Enter(roots_.Add(RootFor(kept)), round);
    FinishLater(std::move(round));
    return true;
}

// Takes in a root, or waits for it. What happens between the look and the watch is looked for again.
void FontFolders::Enter(FontRoot &root, Round &round) {
    root.awaited_in.clear();
    do {
        if (!LeadsToFolder(root.path.c_str())) continue;
        root.awaited_in.clear();
        const bool is_known = folders_.contains(root.path);
        return round.Read(root.path, root.depth, is_known ? Again::kWithThoseBelow : Again::kNo);
    } while (Await(root));
}

// Watches the nearest folder that is there; true when there is more by now, or less.
bool FontFolders::Await(FontRoot &root) {
    const std::string above = FolderAbove(root.path);
    if (!watch_.Add(above)) return errno == ENOENT || errno == ENOTDIR; // polling finds out about others
    awaited_.insert(above);
    root.awaited_in = above;
    return LeadsToFolder(root.path.c_str()) || FolderAbove(root.path) != above;
}

// Something has happened at a path (empty: anywhere) above or at which roots are waited for.
void FontFolders::LookForAwaited(const std::string &path, Round &round) {
    std::set<std::string> needed;
    for (auto &[name, root] : roots_) {
        if (root.inode == 0 && (path.empty() || IsAtOrBelow(name, path))) Enter(root, round);
        if (!root.awaited_in.empty()) needed.insert(root.awaited_in);
    }
    awaited_.swap(needed);
    for (const std::string &folder : needed) Unwatch(folder);
}

// Nobody has it watched any more, unless it is needed otherwise.
void FontFolders::Unwatch(const std::string &path) noexcept {
    if (!awaited_.contains(path) && !folders_.contains(path)) watch_.Remove(path);
}

void FontFolders::LetGo(const std::string &path, Round &round) {
    for (auto at = folders_.lower_bound(path); at != folders_.end() && at->first.starts_with(path);) {
        if (!IsAtOrBelow(at->first, path)) {
            ++at;
            continue;
        }
        const std::string folder = at->first;
        for (const auto &[name, file] : at->second.files)
            if (file.state.is_link) links_.erase(folder + "/" + name);
        at = folders_.erase(at);
        Unwatch(folder);
    }
    for (std::string &file : register_.FilesAt(path)) round.Add(std::move(file), true);
    const std::string name = NormalizePath(path);
    for (auto &[other, root] : roots_) {
        if (!IsAtOrBelow(other, name)) continue;
        root.device = root.inode = 0;
        Enter(root, round);
    }
}

void FontFolders::HandleEvents(const std::vector<FolderEvent> &events) {
    Round round;
    for (const FolderEvent &event : events) HandleEvent(event, round);
    FinishLater(std::move(round));
}

void FontFolders::HandleEvent(const FolderEvent &event, Round &round) {
    if (event.mask & IN_Q_OVERFLOW) return ReadAllAgain(round);
    const std::string &folder = event.folder;
    const bool has_gone = event.mask & (kFolderItselfWent | IN_IGNORED);
    if (has_gone && awaited_.erase(folder)) {
        Unwatch(folder);
        LookForAwaited({}, round);
    } else if (awaited_.contains(folder) && event.mask & (kCame | IN_ATTRIB)) {
        LookForAwaited(NormalizePath(folder + "/" + event.name), round);
    }
    const auto known = folders_.find(folder);
    if (known == folders_.end()) return;
    if (event.mask & kFolderItselfWent)
        LetGo(folder, round);
    else if (event.name.empty())
        round.Read(folder, known->second.depth, Again::kAlone); // it may be readable now
    else
        HandleEntryEvent(known->second, folder + "/" + event.name, event, round);
}

void FontFolders::HandleEntryEvent(const Folder &folder, const std::string &path, const FolderEvent &event,
                                   Round &round) {
    if (event.mask & IN_ISDIR) {
        if (event.mask & kWent) LetGo(path, round);
        if (event.mask & (kCame | IN_ATTRIB) && folder.depth == FolderDepth::kTree)
            round.Read(path, folder.depth, Again::kAlone);
    } else if (event.mask & (kWent | IN_CLOSE_WRITE | IN_MOVED_TO)) {
        round.Add(path, true);
    } else if (event.mask & IN_CREATE ? IsLinkOrHasSeveralNames(path) : folder.files.contains(event.name)) {
        round.Add(path, false); // else it is being written
    }
}

// Everything may have happened.
void FontFolders::ReadAllAgain(Round &round) {
    round.begin = last_reading_ + 1;
    for (auto &[name, root] : roots_) {
        if (root.inode != 0 && !LeadsToFolder(root.path.c_str()))
            LetGo(root.path, round);
        else
            Enter(root, round);
    }
}

} // namespace vellum
