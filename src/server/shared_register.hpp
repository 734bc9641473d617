// SPDX-License-Identifier: MIT
// The register that the server holds: which files are in it, who wants them there, and what is disabled.
//
// A file is in the register as long as somebody wants it: the user, the session, or a folder in which it
// was found. Only the server's one thread uses it.
#pragma once

#include "server/saved_register.hpp"
#include "store/local_glyphary_imp.hpp"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vellum {

// Of several fonts that fit alike, the one of the highest priority is preferred. A process's own come
// first.
constexpr uint32_t kSessionPriority = 50'000;
constexpr uint32_t kUserPriority = 40'000;
constexpr uint32_t kLocalPriority = 30'000;  // installed on this machine by its administrator
constexpr uint32_t kSystemPriority = 20'000; // installed with the system

// How long a change lasts.
enum class Lasting { kForSession, kForUser };

class SharedRegister {
public:
    // Over what has been saved (borrowed).
    explicit SharedRegister(SavedRegister &saved) noexcept : saved_(saved) {}

    const TLocalGlypharyImp &Fonts() const noexcept { return fonts_; }

    // Registers what was saved, and disables what was, then and when it comes: a file with each call of the
    // result, which is true while there are more. Before the first change. Throws std::runtime_error.
    std::function<bool()> Load();

    // The same with what was saved for the user and is found between two changes; its folders aside.
    std::function<bool()> LoadLate(SavedState late);

    // ---- changes of one font; Save makes them last ----
    // A file that is registered for as long already is refused, and so is what is no font.
    bool Register(const ValURL *url, VLFontFlags flags, Lasting lasting);

    // Takes back a registration: for the user, and with that for the session; or for the session alone. A
    // folder means every file beneath it. Refused for files that somebody else wants there, and true for
    // what is not there anyway.
    bool Unregister(const ValURL *url, Lasting lasting);

    // True when there is such a font. What is disabled for the user cannot be enabled for the session.
    bool Enable(const ValURL *url, Lasting lasting);
    bool Disable(const ValURL *url, Lasting lasting);

    // Saves the changes since the last call. False when they could not be saved: they are taken back then.
    bool Save(bool on_disk);
    void TakeBack() noexcept;

    // Has the next Save save, or forget, that a folder is registered for the user.
    void KeepDirectory(const SavedDirectory &directory) {
        for_user_.added.directories.push_back(directory);
    }
    void ForgetDirectory(const std::string &path) { for_user_.removed.directories.push_back({path, 0, 0}); }

    // ---- what happens in folders that are watched; true when the register has changed ----
    bool Found(const std::string &path, VLFontFlags flags, uint32_t priority);
    bool Vanished(const std::string &path);
    bool LetGo(const std::string &path); // the folder is not one of ours any more; the file may be there

    // Whether somebody wants the file.
    bool IsWanted(const std::string &path) const { return !FilesAt(path).empty(); }

    // The wanted files beneath a folder, or the file of that path itself.
    std::vector<std::string> FilesAt(const std::string &path) const;

    // For whom a font is there: kVLScopeUser, kVLScopeSession, or both; the former for what was found. Of a
    // folder, for whom its fonts are.
    VLScope ScopeOf(const ValURL *url) const;

    // 0 for what is not there.
    uint32_t PriorityOf(const ValURL *url) const;

private:
    struct File {
        bool for_user = false;
        bool for_session = false;
        bool was_found = false;
        VLFontFlags flags = 0;
        uint32_t priority = 0; // of what was found
        std::string spelled;   // its path, as whoever came first has spelled it

        bool IsWanted() const noexcept { return for_user || for_session || was_found; }
    };

    StateChange &ChangeFor(Lasting lasting) noexcept {
        return lasting == Lasting::kForUser ? for_user_ : for_session_;
    }
    void LoadFile(const SavedFile &row, Lasting lasting);
    bool Add(const std::string &path, VLFontFlags flags);
    void TakeOut(const std::string &path);
    void DisableAgain(const std::string &path);
    bool UnregisterFile(const std::string &path, Lasting lasting);
    void PutBack(const std::string &path, const File &former);
    void KeepDisabled(const std::string &text, Lasting lasting);
    void ForgetDisabled(const std::string &text);
    Lasting *FindDisabled(const std::string &text);               // borrowed; null for what is not disabled
    std::vector<std::string> DisabledAt(const ValURL *url) const; // texts of the faces

    SavedRegister &saved_;
    StateChange for_user_, for_session_; // not saved yet
    TLocalGlypharyImp fonts_;
    std::map<std::string, File> files_; // by normalized path; each is wanted
    std::map<std::string, std::map<std::string, Lasting>>
        disabled_;                            // faces by path, and by their URLs' texts
    std::vector<std::function<void()>> undo_; // of what is not saved yet
};

} // namespace vellum
