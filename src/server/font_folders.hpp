// SPDX-License-Identifier: MIT
// The folders in which the server finds fonts are watched: what comes, goes or changes there does so in the
// register. What cannot be watched is looked at from time to time.
#pragma once

#include "server/folder_reading.hpp"
#include "server/folder_watch.hpp"
#include "server/font_roots.hpp"
#include "server/shared_register.hpp"
#include "service/event_loop.hpp"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vellum {

// What happened to fonts, by the texts of their URLs.
struct FolderNews {
    std::vector<std::string> came;
    std::vector<std::string> went;
};

class FontFolders {
public:
    using Tell = std::function<void(const FolderNews &news)>;

    // `tell` is called with what happened in folders, when it has.
    FontFolders(EventLoop &loop, SharedRegister &fonts, Tell tell);

    // Takes in the folders of the system and of the user, and those that are saved, without telling: as
    // work, which is to come before any other.
    EventLoop::Slice Load(const std::vector<SavedDirectory> &saved);

    // Registers a folder for the user, and saves that: its files, and those of the folders below unless bit
    // 0 of its options is set and as far as kMostFolders, are in the register as long as it is registered.
    // They come with the work that this call adds to the loop's. False for what is no folder of files, for
    // one that is registered already, and when it could not be saved.
    bool Register(const SavedDirectory &directory, bool on_disk);

    // False for what is not registered, and when that could not be saved.
    bool Unregister(const std::string &path, bool on_disk);

private:
    // A folder that was taken in.
    struct Folder {
        struct File {
            FileState state; // when it was looked at last
            uint64_t reading = 0;
        };
        FolderDepth depth = FolderDepth::kAlone;
        bool is_polled = false;
        uint64_t reading = 0; // the last one: what it did not see of the files has gone
        std::map<std::string, File> files;
    };

    // Whether a folder that was taken in is read once more.
    enum class Again { kNo, kAlone, kWithThoseBelow };
    struct FolderToRead {
        std::string path;
        FolderDepth depth;
        Again again;
    };
    struct FileToLookAt {
        std::string path;
        bool has_changed; // for certain; else only if its state has
    };

    // All that are looked into: each takes a watch, of which the user's other programs want some, too.
    static constexpr size_t kMostFolders = 16'384;

    // Changes that are being made, slice by slice.
    struct Round {
        std::deque<FileToLookAt> files;
        std::unique_ptr<FolderReading> reading; // of the folder that comes first
        bool has_names = false;                 // all of them
        std::deque<FolderToRead> folders;
        uint64_t begin = 0; // whatever was read since then needs no reading again
        FolderNews news;

        void Add(std::string path, bool has_changed);
        void Read(std::string path, FolderDepth depth, Again again) {
            folders.push_back({std::move(path), depth, again});
        }
    };

    // ---- font_folders.cpp: roots, events ----
    void Enter(FontRoot &root, Round &round);
    bool Await(FontRoot &root);
    void LookForAwaited(const std::string &path, Round &round);
    void LetGo(const std::string &path, Round &round);
    void Unwatch(const std::string &path) noexcept;
    void HandleEvents(const std::vector<FolderEvent> &events);
    void HandleEvent(const FolderEvent &event, Round &round);
    void HandleEntryEvent(const Folder &folder, const std::string &path, const FolderEvent &event,
                          Round &round);
    void ReadAllAgain(Round &round);

    // ---- font_folder_rounds.cpp: what rounds do ----
    bool Slice(Round &round);
    void FinishLater(Round round, std::function<void()> then = {});
    bool IsToBeRead(const FolderToRead &folder, const Round &round);
    bool Begin(Round &round);
    void SayThatItIsScarce(const std::string &path);
    bool ReadOn(Round &round);
    void EndReading(const Folder &folder, Round &round);
    void LookAt(const FileToLookAt &file, FolderNews &news);
    void PollLater();
    void Poll();
    void PollNext();

    EventLoop &loop_;
    SharedRegister &register_;
    const Tell tell_;
    FolderWatch watch_;
    FontRoots roots_;
    std::map<std::string, SavedDirectory> registered_;
    std::map<std::string, Folder> folders_; // by path
    std::set<std::string> awaited_;         // folders that are watched for a root to come beneath them
    std::set<std::string> links_;           // among the files
    uint64_t last_reading_ = 0;
    std::vector<std::string> to_poll_;
    bool is_full_ = false, is_scarce_ = false; // which has been said
};

} // namespace vellum
