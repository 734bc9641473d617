// SPDX-License-Identifier: MIT
#include "server/saved_register.hpp"

#include "platform/log/log.hpp"
#include "server/session_boot.hpp"
#include "server/state_folders.hpp"

#include <exception>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace vellum {

namespace {

namespace fs = std::filesystem;

// What a database and its log of changes hold, in a place where nothing can be written: only a copy can be
// put together. `folder` is made for it, and goes.
SavedState ReadCopy(const std::string &path, const std::string &folder, SavedState &noted) noexcept {
    SavedState state;
    std::error_code error;
    try {
        const std::string copy = folder + "/copy.db";
        fs::remove_all(folder, error);
        fs::create_directory(folder);
        fs::permissions(folder, fs::perms::owner_all);
        for (const char *part : {"", "-wal"}) {
            if (!fs::exists(path + part, error)) continue;
            fs::copy_file(path + part, copy + part);
            fs::permissions(copy + part, fs::perms::owner_read | fs::perms::owner_write);
        }
        const StateDatabase database(copy);
        noted = database.LoadNoted();
        state = database.Load();
    } catch (const std::exception &problem) {
        Log(LogLevel::kWarning, "What is registered for the user cannot be read: %s", problem.what());
    }
    fs::remove_all(folder, error);
    return state;
}

std::unique_ptr<StateDatabase> OpenForSession(const std::string &path) {
    ForgetFormerBoot(path);
    try {
        return std::make_unique<StateDatabase>(path);
    } catch (const std::runtime_error &problem) {
        Log(LogLevel::kWarning, "What is registered for the session is lost when the server ends: %s",
            problem.what());
        return std::make_unique<StateDatabase>(":memory:");
    }
}

template <class Row, class KeyOf>
void EraseAllOf(const std::vector<Row> &gone, std::vector<Row> &rows, KeyOf key_of) {
    std::set<std::string_view> keys;
    for (const Row &row : gone) keys.insert(key_of(row));
    std::erase_if(rows, [&](const Row &row) { return keys.contains(key_of(row)); });
}

// Takes out of `state` what is in `gone`.
void TakeOut(SavedState &state, const SavedState &gone) {
    constexpr auto path = [](const auto &row) { return std::string_view(row.path); };
    EraseAllOf(gone.files, state.files, path);
    EraseAllOf(gone.directories, state.directories, path);
    EraseAllOf(gone.disabled, state.disabled,
               [](const std::string &text) { return std::string_view(text); });
}

} // namespace

SavedRegister::SavedRegister(const std::string &name, const std::string &folder)
    : name_(name), session_(OpenForSession(folder + "/" + name + ".session.db")) {
    std::string path;
    try {
        path = UserStateFile(name);
        user_ = std::make_unique<StateDatabase>(path);
        noted_ = user_->LoadNoted();
    } catch (const std::runtime_error &problem) {
        user_.reset();
        Log(LogLevel::kWarning, "Nothing can be registered for the user, since it cannot be saved: %s",
            problem.what());
        if (!path.empty()) read_ = ReadCopy(path, folder + "/" + name + ".copy", noted_);
    }
    FinishEarlier(false);
}

SavedState SavedRegister::LoadForUser() const {
    return user_ ? user_->Load() : read_;
}

SavedState SavedRegister::LoadForSession() const {
    SavedState state = session_->Load();
    TakeOut(state, noted_);
    return state;
}

// Once more does no harm, as long as the session has not changed since.
bool SavedRegister::FinishEarlier(bool on_disk) noexcept {
    if (noted_.IsEmpty()) return true;
    StateChange change;
    std::swap(change.removed, noted_);
    const bool is_done = session_->Apply(change, on_disk);
    const bool is_finished = is_done && (!user_ || user_->ForgetNoted());
    if (!is_finished) std::swap(change.removed, noted_);
    return is_finished;
}

// What the database has noted was done when it was read; the session may have changed since.
bool SavedRegister::CanSaveForUser(const SavedState &removed) noexcept {
    if (user_) return true;
    try {
        auto database = std::make_unique<StateDatabase>(UserStateFile(name_));
        SavedState late = database->Load();
        TakeOut(late, read_);
        TakeOut(late, removed);
        if (noted_.IsEmpty() && !database->ForgetNoted()) return false;
        if (!late.IsEmpty() && found_late_) found_late_(std::move(late));
        user_ = std::move(database);
        read_ = SavedState();
    } catch (const std::exception &) { // as the log has said
        return false;
    }
    Log(LogLevel::kNotice, "What is registered for the user is saved again");
    return true;
}

bool SavedRegister::Save(const StateChange &user, const StateChange &session, bool on_disk) noexcept {
    if (user.IsEmpty())
        return session.IsEmpty() || (FinishEarlier(on_disk) && session_->Apply(session, on_disk));
    if (!CanSaveForUser(user.removed)) return false;
    try {
        SavedState noted = noted_;
        noted.files.insert(noted.files.end(), session.removed.files.begin(), session.removed.files.end());
        noted.disabled.insert(noted.disabled.end(), session.removed.disabled.begin(),
                              session.removed.disabled.end());
        if (!user_->Apply(user, on_disk, session.removed)) return false;
        noted_ = std::move(noted);
    } catch (const std::bad_alloc &) {
        return false;
    }
    FinishEarlier(on_disk);
    return true;
}

} // namespace vellum
