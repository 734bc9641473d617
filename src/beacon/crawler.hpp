// SPDX-License-Identifier: MIT
// Looks through folders for font files, and keeps the index like them.
//
// Work is done in slices, each of them one change of the index. A crawl begins anew at any time and needs
// nothing of the one before: what is known of a file that has not changed stays.
#pragma once

#include "beacon/crawl_progress.hpp"
#include "beacon/crawl_roots.hpp"
#include "beacon/folder_watches.hpp"
#include "beacon/name_index.hpp"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace vellum {

class Crawler {
public:
    Crawler(NameIndex &index, CrawlProgress &progress);
    Crawler(const Crawler &) = delete;
    Crawler &operator=(const Crawler &) = delete;

    // Looks through everything from the roots on, and lets go of what is known and not there. With
    // `reads_all` every file is read, whether it has changed or not.
    void Begin(CrawlRoots roots, bool reads_all);

    bool HasWork() const noexcept {
        return !waiting_.empty() || has_entries_ || is_whole_ || has_lost_changes_;
    }

    // Does a little of the work. Throws DatabaseError and std::bad_alloc; what was done is to be begun anew
    // then.
    void Work();

    // Readable when something has changed in a folder that is watched; then Follow is to be called.
    int ChangesDescriptor() const noexcept { return watches_.Descriptor(); }
    void Follow() { watches_.Handle(); }

private:
    struct WaitingFolder {
        std::string path;
        uint32_t depth = 0;      // below its root
        bool has_inner = true;   // the folders in it are wanted too
        bool may_be_far = false; // on another machine
    };

    // The folder that is being read: what was known of its files and has not been met yet, and those to
    // meet.
    struct OpenFolder {
        WaitingFolder folder;
        std::map<std::string, TFileIdentity> known;
        std::vector<std::string> names;
        size_t next = 0;
        bool has_fonts = false;
    };

    bool Step();
    void Enter(WaitingFolder folder);
    bool IsWanted(const WaitingFolder &folder) const;
    void Leave();
    void Meet(const std::string &name);
    void End();
    void Change();
    void FolderWent(const std::string &folder);
    const CrawlRoot *RootOf(const std::string &folder) const noexcept;
    void AddIfBelowRoot(const std::string &folder, bool has_inner);
    void ShowProgress();
    void ShowCounts();

    NameIndex &index_;
    CrawlProgress &progress_;
    CrawlRoots roots_;
    FolderWatches watches_;
    std::vector<WaitingFolder> waiting_; // the last is next
    OpenFolder open_;
    bool has_entries_ = false;      // open_ is being read
    bool is_whole_ = false;         // a crawl of everything is under way
    std::set<std::string> not_met_; // folders of the index that it has not come to
    bool has_lost_changes_ = false;
    size_t written_ = 0; // in the change that is under way
};

} // namespace vellum
