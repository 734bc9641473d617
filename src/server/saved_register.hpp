// SPDX-License-Identifier: MIT
// What is saved of the register: for the user in one database, for the session in another, and a change of
// both as one.
//
// A change of both is made with the user's part, which notes what the session's database has to forget;
// that is made up for until it is done, by the next server if need be.
#pragma once

#include "server/state_database.hpp"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace vellum {

class SavedRegister {
public:
    // Of the server of this name, with the session's database in `folder`, the user's alone. Where the
    // user's database cannot be written, it is read, if it can be, and changes for the user fail until it
    // can: each tries. Where there is no room for the session's, it lasts as long as this object. The log
    // says so.
    SavedRegister(const std::string &name, const std::string &folder);

    // Is told of what was saved for the user and could not be read at the beginning, once it can be: in the
    // midst of a change, which takes none of it away.
    using FoundLate = std::function<void(SavedState late)>;
    void SayWhatIsFoundLate(FoundLate say) { found_late_ = std::move(say); }

    // What is saved now, in the order in which it was saved. Throws std::runtime_error.
    SavedState LoadForUser() const;
    SavedState LoadForSession() const;

    // Saves what changes for the user and what does for the session, all or nothing; a change for the user
    // takes things from the session and gives it none. False when it could not be saved.
    bool Save(const StateChange &user, const StateChange &session, bool on_disk) noexcept;

private:
    bool FinishEarlier(bool on_disk) noexcept;
    bool CanSaveForUser(const SavedState &removed) noexcept;

    const std::string name_;              // of the server
    std::unique_ptr<StateDatabase> user_; // null for one that cannot be written
    SavedState read_;                     // what it holds, then
    std::unique_ptr<StateDatabase> session_;
    SavedState noted_; // what the session's database has still to forget
    FoundLate found_late_;
};

} // namespace vellum
