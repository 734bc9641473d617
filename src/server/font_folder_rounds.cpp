// SPDX-License-Identifier: MIT
// How what has happened in folders is looked up, slice by slice, and how those that cannot be watched are
// polled.
#include "platform/fs/folder.hpp"
#include "platform/fs/volume_flags.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "server/font_folders.hpp"
#include "values/val_url.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <utility>

namespace vellum {

namespace {

// How much a slice does: names are read by the hundred, states of files cost a system call or three.
constexpr int kNamesAtOnce = 256, kStatesAtOnce = 16;

// How long what cannot be watched is left alone; VELLUM_POLL_MILLISECONDS says otherwise.
std::chrono::milliseconds PollPeriod() noexcept {
    int64_t period = 0;
    const char *text = GetEnvironment("VELLUM_POLL_MILLISECONDS");
    if (text) std::from_chars(text, text + std::strlen(text), period);
    constexpr int64_t kDay = 86'400'000;
    return std::chrono::milliseconds(period > 0 ? std::min(period, kDay) : 30'000);
}

std::string URLText(const std::string &path) {
    return std::string(TValURL::FromPath(path).Text());
}

std::string ParentOf(const std::string &path) {
    return path.substr(0, path.rfind('/'));
}

// The folder to which a path leads; false for none.
bool FindFolder(const std::string &path, struct stat &status) noexcept {
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

// What events say of one file comes in one piece.
void FontFolders::Round::Add(std::string path, bool has_changed) {
    if (files.empty() || files.back().path != path)
        files.push_back({std::move(path), has_changed});
    else
        files.back().has_changed |= has_changed;
}

// Some of a folder, or one file; false when there are none left.
bool FontFolders::Slice(Round &round) {
    if (!round.files.empty()) {
        const FileToLookAt file = std::move(round.files.front());
        round.files.pop_front();
        LookAt(file, round.news);
    } else if (round.folders.empty()) {
        return false;
    } else if (round.reading ? !ReadOn(round) : !Begin(round)) {
        round.reading.reset();
        round.folders.pop_front();
    }
    return true;
}

void FontFolders::FinishLater(Round round, std::function<void()> then) {
    if (round.files.empty() && round.folders.empty() && !then) return;
    loop_.AddWork([this, round = std::make_shared<Round>(std::move(round)), then = std::move(then)] {
        if (Slice(*round)) return true;
        if (!round->news.came.empty() || !round->news.went.empty()) tell_(round->news);
        if (then) then();
        return false;
    });
}

// False for a folder that was read already, and where there are too many.
bool FontFolders::IsToBeRead(const FolderToRead &folder, const Round &round) {
    const auto known = folders_.find(folder.path);
    if (known != folders_.end()) {
        const bool is_deeper = folder.depth == FolderDepth::kTree && known->second.depth != folder.depth;
        const bool is_done = folder.again == Again::kWithThoseBelow && round.begin != 0 &&
                             known->second.reading >= round.begin;
        return !is_done && (folder.again != Again::kNo || is_deeper);
    }
    if (folders_.size() < kMostFolders) return true;
    if (!std::exchange(is_full_, true))
        Log(LogLevel::kWarning, "Fonts are not looked for in %s and further folders: there are too many",
            folder.path.c_str());
    return false;
}

// True when there is something to be read of the first folder. It is watched before it is read: what comes
// meanwhile is seen twice rather than never.
bool FontFolders::Begin(Round &round) {
    const FolderToRead folder = round.folders.front();
    if (!IsToBeRead(folder, round)) return false;
    const bool is_watched = watch_.Add(folder.path);
    const int error = is_watched ? 0 : errno;
    struct stat status;
    if (error == ENOENT || error == ENOTDIR || !FindFolder(folder.path, status)) {
        LetGo(folder.path, round); // it has gone before its turn came; another may have come by now
        Unwatch(folder.path);
        return false;
    }
    if (!IsOfFiles(folder.path)) {
        Unwatch(folder.path);
        return false;
    }
    if (error == ENOSPC) SayThatItIsScarce(folder.path);
    if (FontRoot *root = roots_.Find(folder.path)) {
        root->device = status.st_dev;
        root->inode = status.st_ino;
    }
    Folder &taken = folders_[folder.path];
    if (folder.depth == FolderDepth::kTree) taken.depth = folder.depth;
    taken.is_polled = !is_watched || !(GetVolumeFlags(folder.path.c_str()) & kVolumeIsLocal);
    taken.reading = ++last_reading_;
    round.reading = std::make_unique<FolderReading>(folder.path);
    round.has_names = false;
    return true;
}

void FontFolders::SayThatItIsScarce(const std::string &path) {
    if (std::exchange(is_scarce_, true)) return;
    Log(LogLevel::kWarning,
        "The system has no room to watch %s and further folders: they are looked at every %d milliseconds",
        path.c_str(), static_cast<int>(PollPeriod().count()));
}

// False when the first folder has been read.
bool FontFolders::ReadOn(Round &round) {
    const std::string path = round.folders.front().path;
    const auto known = folders_.find(path);
    if (known == folders_.end()) return false; // let go meanwhile
    if (!round.has_names) {
        round.has_names = !round.reading->ReadOn(kNamesAtOnce);
        return true;
    }
    Folder &folder = known->second;
    std::string name;
    for (int i = 0; i < kStatesAtOnce; ++i) {
        if (!round.reading->TakeFile(name)) {
            EndReading(folder, round);
            return false;
        }
        const std::string file_path = path + "/" + name;
        const auto [file, is_new] = folder.files.try_emplace(name);
        file->second.reading = folder.reading;
        if (is_new || file->second.state != ReadFileState(file_path))
            round.files.push_back({file_path, false});
    }
    return true;
}

void FontFolders::EndReading(const Folder &folder, Round &round) {
    const FolderToRead read = round.folders.front();
    for (const auto &[name, file] : folder.files)
        if (file.reading != folder.reading) round.files.push_back({read.path + "/" + name, false});
    if (folder.depth == FolderDepth::kAlone) return;
    const std::set<std::string> &names = round.reading->Folders();
    const Again again = read.again == Again::kWithThoseBelow ? read.again : Again::kNo;
    for (const std::string &name : names) round.Read(read.path + "/" + name, folder.depth, again);
    if (read.again == Again::kNo) return;
    std::vector<std::string> gone;
    const std::string prefix = read.path + "/";
    for (auto at = folders_.lower_bound(prefix); at != folders_.end() && at->first.starts_with(prefix);
         ++at) {
        const std::string name = at->first.substr(prefix.size());
        if (name.find('/') == std::string::npos && !names.contains(name) && !roots_.Find(at->first))
            gone.push_back(at->first);
    }
    for (const std::string &path : gone) LetGo(path, round);
}

// A file that is there has come, one that is not has gone, whatever happened in which order.
void FontFolders::LookAt(const FileToLookAt &asked, FolderNews &news) {
    const std::string &path = asked.path;
    const FileState state = ReadFileState(path);
    const std::string folder_path = ParentOf(path);
    const auto folder = folders_.find(folder_path);
    const FontRoot *root = roots_.Over(folder_path);
    if (folder == folders_.end() || !root) { // it is not wanted any more
        if (state.is_file ? register_.LetGo(path) : register_.Vanished(path))
            news.went.push_back(URLText(path));
        return;
    }
    Folder::File &known = folder->second.files[path.substr(folder_path.size() + 1)];
    if (!asked.has_changed && known.state == state) return;
    known.state = state;
    if (state.is_link)
        links_.insert(path);
    else
        links_.erase(path);
    if (state == FileState()) folder->second.files.erase(path.substr(folder_path.size() + 1));
    if (register_.Vanished(path)) news.went.push_back(URLText(path));
    if (state.is_readable && register_.Found(path, root->flags, root->priority))
        news.came.push_back(URLText(path));
}

void FontFolders::PollLater() {
    loop_.CallLater(PollPeriod(), [this] { Poll(); });
}

// Roots and links may lead elsewhere, of which nobody tells.
void FontFolders::Poll() {
    Round round;
    round.begin = last_reading_ + 1;
    for (auto &[name, root] : roots_) {
        struct stat status = {};
        const bool is_there = FindFolder(root.path, status);
        if (is_there && (status.st_dev != root.device || status.st_ino != root.inode))
            round.Read(root.path, root.depth, Again::kWithThoseBelow);
        else if (!is_there && root.inode != 0)
            LetGo(root.path, round);
    }
    for (const std::string &link : links_) round.files.push_back({link, false});
    for (const auto &[path, folder] : folders_)
        if (folder.is_polled) to_poll_.push_back(path);
    FinishLater(std::move(round), [this] { PollNext(); });
}

// One folder at a time: others' changes come in between.
void FontFolders::PollNext() {
    if (to_poll_.empty()) return PollLater();
    Round round;
    const auto folder = folders_.find(to_poll_.back());
    if (folder != folders_.end()) round.Read(folder->first, folder->second.depth, Again::kAlone);
    to_poll_.pop_back();
    FinishLater(std::move(round), [this] { PollNext(); });
}

} // namespace vellum
