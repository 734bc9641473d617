// SPDX-License-Identifier: MIT
// The folders in which the server finds fonts: the system's, the user's own, and those that were
// registered. They are watched: what comes, goes or changes there does so in the register.
#pragma once

#include "server/event_loop.hpp"
#include "server/shared_register.hpp"

#include <deque>
#include <functional>
#include <map>
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

    // `tell` is called with what happened in folders, when it has. Throws std::system_error.
    FontFolders(EventLoop &loop, SharedRegister &fonts, Tell tell);
    ~FontFolders();
    FontFolders(const FontFolders &) = delete;
    FontFolders &operator=(const FontFolders &) = delete;

    // Takes in the folders of the system and of the user, and those that are saved, without telling: as
    // work, which is to come before any other.
    EventLoop::Slice Load(const std::vector<SavedDirectory> &saved);

    // Registers a folder for the user: its files, and those of the folders below unless bit 0 of its
    // options is set and as far as kMostFolders, are in the register as long as it is registered. They come
    // with the work that this call adds to the loop's. False for what is no folder of files, and for one
    // that is registered already. SharedRegister::Save makes it last.
    bool Register(const SavedDirectory &directory);

    // False for what is not registered.
    bool Unregister(const std::string &path);

private:
    enum class Depth {
        kFolderAlone,
        kTree,
        kWaiting, // for a folder below it that is not there yet
    };
    struct Folder {
        int number; // of the watch; -1 when the system has no room for it
        Depth depth;
    };
    struct Root {
        Depth depth;
        uint32_t priority; // of the fonts
        VLFontFlags flags;
        bool is_registered = false;
    };
    struct FolderToRead {
        std::string path;
        Depth depth;
    };

    // All that are looked into: each takes a watch, of which the user's other programs want some, too.
    static constexpr size_t kMostFolders = 16'384;

    // A change that is being made, slice by slice: files that have gone, folders to be read, and files that
    // are there.
    struct Round {
        std::deque<std::string> gone, there;
        std::deque<FolderToRead> folders;
        bool lets_go = false; // of files that may be there all the same
        FolderNews news;

        bool IsEmpty() const noexcept { return gone.empty() && there.empty() && folders.empty(); }
    };

    static Root RootFor(const SavedDirectory &directory) noexcept;
    void AddRoot(const std::string &path, const Root &root, Round &round);
    const Root *RootOf(const std::string &file) const;
    void AwaitRoot(const std::string &path);
    bool HasRootOver(const std::string &path) const;
    void Watch(const std::string &path, Depth depth);
    void TakeIn(std::string path, Depth depth, Round &round);
    void Read(const FolderToRead &folder, Round &round);
    void LetGo(const std::string &path, Round &round);
    void LookAgain(Round &round);
    void ReadEvents();
    void HandleEvent(int number, uint32_t mask, const char *name, Round &round);

    bool Slice(Round &round);
    void FinishLater(Round round);
    void FileCame(const std::string &path, FolderNews &news);
    void FileWent(const std::string &path, bool lets_go, FolderNews &news);

    EventLoop &loop_;
    SharedRegister &register_;
    const Tell tell_;
    TDescriptor inotify_;
    std::map<std::string, Folder> folders_; // those that were taken in, by path
    std::map<int, std::string> paths_;      // of the folders that are watched, by number
    std::map<std::string, Root> roots_;
    std::map<std::string, SavedDirectory> registered_;
    bool is_full_ = false; // which has been said
};

} // namespace vellum
