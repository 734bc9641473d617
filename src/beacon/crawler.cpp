// SPDX-License-Identifier: MIT
#include "beacon/crawler.hpp"

#include "beacon/font_names.hpp"
#include "platform/font/limits.hpp"
#include "platform/fs/directory.hpp"
#include "platform/log/log.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vellum {

namespace {

using Clock = std::chrono::steady_clock;

// A slice: who wants something of the crawler meanwhile, or of the processor, waits no longer.
constexpr auto kLongestSlice = std::chrono::milliseconds(30);
constexpr size_t kMostWritten = 64;

// Deeper nobody keeps fonts; where one folder is shown in another, it ends here.
constexpr uint32_t kDeepest = 64;

// So deep below a root everything is watched: what is new there is seen at once.
constexpr uint32_t kWatchedAnyway = 1;

// By this the owner of a folder says that all in it can be made again.
constexpr std::string_view kCacheMark = "CACHEDIR.TAG";

std::string PathIn(const std::string &folder, std::string_view name) {
    return folder + "/" + std::string(name);
}

bool IsBelow(std::string_view path, std::string_view folder) noexcept {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

// A file itself, not what a link leads to: that is found where it is, if it is below a root.
bool IsFile(const std::string &path, TFileIdentity &identity) noexcept {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    identity = TFileIdentity::Of(status);
    return identity.size > 0 && identity.size <= limits::kFileSize;
}

bool IsItselfAFolder(const std::string &path) noexcept {
    struct stat status;
    return ::lstat(path.empty() ? "/" : path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

Crawler::Crawler(NameIndex &index, CrawlProgress &progress)
    : index_(index), progress_(progress),
      watches_({[this](const std::string &folder) { AddIfBelowRoot(folder, false); },
                [this](const std::string &folder) { AddIfBelowRoot(folder, true); },
                [this](const std::string &folder) { FolderWent(folder); },
                [this] { has_lost_changes_ = true; }}) {}

void Crawler::Begin(CrawlRoots roots, bool reads_all) {
    if (reads_all) {
        index_.Begin();
        index_.ForgetIdentities();
        index_.Commit();
    }
    roots_ = std::move(roots);
    waiting_.clear();
    has_entries_ = false;
    has_lost_changes_ = false;
    is_whole_ = true;
    progress_.folders_read = 0;
    ShowCounts();
    const auto known = index_.Folders();
    not_met_ = {known.begin(), known.end()};
    for (auto root = roots_.roots.rbegin(); root != roots_.roots.rend(); ++root)
        waiting_.push_back({root->path, 0, true, root->was_named});
}

const CrawlRoot *Crawler::RootOf(const std::string &folder) const noexcept {
    for (const CrawlRoot &root : roots_.roots)
        if (folder == root.path || IsBelow(folder, root.path)) return &root;
    return nullptr;
}

// The same folder is often told of many times in a row.
void Crawler::AddIfBelowRoot(const std::string &folder, bool has_inner) {
    const CrawlRoot *root = RootOf(folder);
    const bool waits = std::ranges::any_of(waiting_, [&](const WaitingFolder &other) {
        return other.path == folder && other.has_inner >= has_inner;
    });
    if (!root || waits) return;
    const auto depth = std::ranges::count(std::string_view(folder).substr(root->path.size()), '/');
    waiting_.push_back({folder, static_cast<uint32_t>(depth), has_inner, root->was_named});
}

// With all that was known below it.
void Crawler::FolderWent(const std::string &folder) {
    for (const std::string &known : index_.Folders())
        if (known == folder || IsBelow(known, folder)) {
            watches_.Remove(known);
            AddIfBelowRoot(known, false);
        }
}

void Crawler::Change() {
    if (!index_.IsChanging()) index_.Begin();
    ++written_;
}

void Crawler::Work() {
    if (std::exchange(has_lost_changes_, false)) return Begin(std::move(roots_), false);
    written_ = 0;
    const auto end = Clock::now() + kLongestSlice;
    while (Step() && written_ < kMostWritten && Clock::now() < end) {
    }
    if (index_.IsChanging()) {
        index_.Commit();
        progress_.changes.fetch_add(1, std::memory_order_relaxed);
    }
    ShowProgress();
}

void Crawler::ShowProgress() {
    progress_.folders_waiting = waiting_.size();
    if (written_) ShowCounts();
}

void Crawler::ShowCounts() {
    const IndexCounts counts = index_.Count();
    progress_.files = counts.files;
    progress_.faces = counts.faces;
}

// One file, or one folder; false when there is nothing left to do.
bool Crawler::Step() {
    if (has_entries_) {
        if (open_.next < open_.names.size())
            Meet(open_.names[open_.next++]);
        else
            Leave();
        return true;
    }
    if (!waiting_.empty()) {
        WaitingFolder next = std::move(waiting_.back());
        waiting_.pop_back();
        Enter(std::move(next));
        return true;
    }
    if (is_whole_) End();
    return false;
}

bool Crawler::IsWanted(const WaitingFolder &folder) const {
    if (folder.depth > kDeepest || !IsItselfAFolder(folder.path)) return false;
    const std::string_view name = std::string_view(folder.path).substr(folder.path.rfind('/') + 1);
    if (folder.depth > 0 && roots_.PassesOver(folder.path, name)) return false;
    return folder.may_be_far || IsOnOwnDisk(folder.path);
}

// Where nothing is wanted, what was known goes: the list of what there is stays empty.
void Crawler::Enter(WaitingFolder folder) {
    open_ = {std::move(folder), {}, {}, 0, false};
    open_.known = index_.FilesIn(open_.folder.path);
    has_entries_ = true;
    const std::string &path = open_.folder.path;
    if (is_whole_) not_met_.erase(path);
    progress_.folders_read.fetch_add(1, std::memory_order_relaxed);
    if (!IsWanted(open_.folder)) return;
    const bool is_watched = open_.folder.depth <= kWatchedAnyway || !open_.known.empty();
    if (is_watched) watches_.Add(path);
    const auto entries = ListDirectory(path.empty() ? "/" : path.c_str());
    if (std::ranges::find(entries, kCacheMark, &DirectoryEntry::name) != entries.end()) return;
    for (const DirectoryEntry &entry : entries) {
        if (!entry.is_directory)
            open_.names.push_back(entry.name);
        else if (open_.folder.has_inner)
            waiting_.push_back(
                {PathIn(path, entry.name), open_.folder.depth + 1, true, open_.folder.may_be_far});
    }
}

void Crawler::Meet(const std::string &name) {
    const bool has_suffix = HasFontSuffix(name);
    if (!has_suffix && !HasNoSuffix(name)) return;
    const std::string &folder = open_.folder.path;
    const std::string path = PathIn(folder, name);
    TFileIdentity identity;
    if (!IsFile(path, identity)) return;
    const auto known = open_.known.find(name);
    if (known != open_.known.end() && known->second == identity) {
        open_.known.erase(known);
        open_.has_fonts = true;
        return;
    }
    if (!has_suffix && !BeginsAsFont(path)) return;
    IndexedFile file = {identity, {}, 0, {}};
    if (RiskyReading::IsDeadly(progress_, path)) {
        Log(LogLevel::kWarning, "%s is let be: reading it has ended the crawler twice", path.c_str());
    } else {
        const RiskyReading reading(progress_, path);
        file = ReadFontNames(path, identity);
    }
    progress_.files_read.fetch_add(1, std::memory_order_relaxed);
    Change();
    index_.Put(folder, name, file);
    open_.known.erase(name);
    open_.has_fonts = true;
}

// What is still known was not met. A folder that has got its first fonts is read again, once it is watched.
void Crawler::Leave() {
    has_entries_ = false;
    for (const auto &[name, identity] : open_.known) {
        Change();
        index_.Remove(open_.folder.path, name);
    }
    if (open_.has_fonts && watches_.Add(open_.folder.path))
        waiting_.push_back({open_.folder.path, open_.folder.depth, false, open_.folder.may_be_far});
}

void Crawler::End() {
    is_whole_ = false;
    for (const std::string &folder : not_met_) {
        Change();
        index_.RemoveFolder(folder);
        watches_.Remove(folder);
    }
    not_met_.clear();
}

} // namespace vellum
