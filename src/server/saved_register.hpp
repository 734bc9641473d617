// SPDX-License-Identifier: MIT
// What is saved of the register: for the user in one database, for the session in another, and a change of
// both as one.
//
// A change of both is made with the user's part, which notes what the session's database has to forget;
// that is made up for until it is done, by the next server if need be.
#pragma once

#include "server/state_database.hpp"

#include <memory>
#include <string>

namespace vellum {

class SavedRegister {
public:
    // Of the server of this name, with the session's database in `folder`, the user's alone. Where the
    // user's database cannot be written, it is read, if it can be, and changes for the user fail; where
    // there is no room for the session's, it lasts as long as this object. The log says so.
    SavedRegister(const std::string &name, const std::string &folder);

    // What is saved now, in the order in which it was saved. Throws std::runtime_error.
    SavedState LoadForUser() const;
    SavedState LoadForSession() const;

    // Saves what changes for the user and what does for the session, all or nothing; a change for the user
    // takes things from the session and gives it none. False when it could not be saved.
    bool Save(const StateChange &user, const StateChange &session, bool on_disk) noexcept;

private:
    bool FinishEarlier(bool on_disk) noexcept;

    std::unique_ptr<StateDatabase> user_; // null for one that cannot be written
    SavedState read_;                     // what it holds, then
    std::unique_ptr<StateDatabase> session_;
    SavedState noted_; // what the session's database has still to forget
};

} // namespace vellum
