// SPDX-License-Identifier: MIT
#include "server/shared_register.hpp"

#include "platform/font/font_cache.hpp"
#include "store/font_path_index.hpp"
#include "values/val_array.hpp"
#include "values/val_url.hpp"

#include <deque>
#include <utility>

namespace vellum {

namespace {

// How the server calls its own register: the legacy service has been told by whoever asked.
constexpr VLScope kOwnScope = kVLScopeProcess | kVLScopeLegacyTold;

// Where the fonts lie is for the client to decide: it has copied what it wanted copied.
constexpr VLFontFlags kOwnFlags = ~VLFontFlags{kVLFontFlagCopyToStable};

// As the URL spells it; empty for what is no file.
std::string SpelledPathOf(const ValURL *url) {
    const TValURL absolute = TValURL(Retain(url)).Absolute();
    if (absolute.Scheme().View() != "file") return {};
    return std::string(absolute.Path().View());
}

// By which the file is known here, however it is spelled.
std::string PathOf(const ValURL *url) {
    return NormalizePath(SpelledPathOf(url));
}

std::string PathOfText(const std::string &text) {
    return PathOf(TValURL::FromText(text).Get());
}

// True for the path itself, and for what lies beneath it.
bool IsAt(std::string_view path, std::string_view folder) noexcept {
    while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
    if (!path.starts_with(folder)) return false;
    return path.size() == folder.size() || path[folder.size()] == '/' || folder == "/";
}

std::vector<std::string> TextsOf(const ValArray *urls) {
    std::vector<std::string> texts;
    for (const void *item : Elements(urls)) texts.emplace_back(TValURL(Retain(Cast<ValURL>(item))).Text());
    return texts;
}

} // namespace

// What is disabled must be known before the first file comes.
std::function<bool()> SharedRegister::Load() {
    SavedState for_user = saved_.LoadForUser(), for_session = saved_.LoadForSession();
    for (const std::string &text : for_user.disabled)
        disabled_[PathOfText(text)].emplace(text, Lasting::kForUser);
    for (const std::string &text : for_session.disabled)
        disabled_[PathOfText(text)].emplace(text, Lasting::kForSession);
    std::deque<std::pair<SavedFile, Lasting>> files;
    for (SavedFile &row : for_user.files) files.emplace_back(std::move(row), Lasting::kForUser);
    for (SavedFile &row : for_session.files) files.emplace_back(std::move(row), Lasting::kForSession);
    fonts_.GetIndex(kPostScriptNameIndex); // will be asked for: so the files are not opened again for it
    return [this, files = std::move(files)]() mutable {
        if (files.empty()) return false;
        LoadFile(files.front().first, files.front().second);
        files.pop_front();
        return true;
    };
}

std::function<bool()> SharedRegister::LoadLate(SavedState late) {
    return [this, late = std::move(late), next = size_t{0}]() mutable {
        for (const std::string &text : std::exchange(late.disabled, {})) {
            disabled_[PathOfText(text)][text] = Lasting::kForUser;
            fonts_.DisableFont(TValURL::FromText(text).Get(), kOwnScope);
        }
        if (next == late.files.size()) return false;
        const SavedFile &row = late.files[next++];
        const auto known = files_.find(row.path);
        if (known == files_.end() || !known->second.for_user) LoadFile(row, Lasting::kForUser);
        return true;
    };
}

void SharedRegister::LoadFile(const SavedFile &row, Lasting lasting) {
    File &file = files_[row.path];
    const bool is_there = file.IsWanted();
    (lasting == Lasting::kForUser ? file.for_user : file.for_session) = true;
    file.flags = row.flags;
    file.spelled = row.path;
    if (!is_there) Add(row.path, row.flags); // a file that cannot be read just now may come back
}

bool SharedRegister::Add(const std::string &path, VLFontFlags flags) {
    if (!fonts_.RegisterFont(TValURL::FromPath(path).Get(), nullptr, flags & kOwnFlags, kOwnScope))
        return false;
    DisableAgain(path);
    return true;
}

void SharedRegister::TakeOut(const std::string &path) {
    const TValURL url = TValURL::FromPath(path);
    fonts_.UnregisterFont(url.Get(), kOwnScope);
    FacetFontPurgeCaches(url.Path().Get());
}

void SharedRegister::DisableAgain(const std::string &path) {
    for (const std::string &text : DisabledAt(TValURL::FromPath(path).Get()))
        fonts_.DisableFont(TValURL::FromText(text).Get(), kOwnScope);
}

// Brings a file to what it was.
void SharedRegister::PutBack(const std::string &path, const File &former) {
    const auto found = files_.find(path);
    const bool is_there = found != files_.end();
    if (former.IsWanted()) {
        files_[path] = former;
        if (!is_there) Add(former.spelled, former.flags);
    } else if (is_there) {
        const std::string spelled = found->second.spelled;
        files_.erase(found);
        TakeOut(spelled);
    }
}

bool SharedRegister::Register(const ValURL *url, VLFontFlags flags, Lasting lasting) {
    const std::string path = PathOf(url);
    const auto found = files_.find(path);
    const File former = found == files_.end() ? File() : found->second;
    if (path.empty() || former.for_user || (lasting == Lasting::kForSession && former.for_session))
        return false;
    const std::string spelled = former.IsWanted() ? former.spelled : SpelledPathOf(url);
    if (!former.IsWanted() && !Add(spelled, flags)) return false;
    File &file = files_[path];
    file.spelled = spelled;
    (lasting == Lasting::kForUser ? file.for_user : file.for_session) = true;
    file.flags = flags;
    ChangeFor(lasting).added.files.push_back({path, flags});
    undo_.push_back([this, path, former] { PutBack(path, former); });
    return true;
}

std::vector<std::string> SharedRegister::FilesAt(const std::string &spelled) const {
    const std::string path = NormalizePath(spelled);
    std::vector<std::string> paths;
    if (path.empty()) return paths;
    for (auto at = files_.lower_bound(path); at != files_.end() && at->first.starts_with(path); ++at)
        if (IsAt(at->first, path)) paths.push_back(at->second.spelled);
    return paths;
}

bool SharedRegister::Unregister(const ValURL *url, Lasting lasting) {
    bool is_done = true;
    for (const std::string &file : FilesAt(PathOf(url)))
        is_done &= UnregisterFile(NormalizePath(file), lasting);
    return is_done;
}

bool SharedRegister::UnregisterFile(const std::string &path, Lasting lasting) {
    File &file = files_.at(path);
    const File former = file;
    if (lasting == Lasting::kForSession ? !file.for_session : !(file.for_user || file.for_session))
        return false;
    if (former.for_session) for_session_.removed.files.push_back({path, 0});
    if (former.for_user && lasting == Lasting::kForUser) for_user_.removed.files.push_back({path, 0});
    file.for_session = false;
    if (lasting == Lasting::kForUser) file.for_user = false;
    undo_.push_back([this, path, former] { PutBack(path, former); });
    if (file.IsWanted()) return true;
    files_.erase(path);
    TakeOut(former.spelled);
    return true;
}

std::vector<std::string> SharedRegister::DisabledAt(const ValURL *url) const {
    const TValURL asked = TValURL(Retain(url)).Absolute();
    const bool is_face = asked.Fragment().Get() != nullptr;
    std::vector<std::string> texts;
    const auto file = disabled_.find(PathOf(url));
    if (file == disabled_.end()) return texts;
    for (const auto &[text, lasting] : file->second)
        if (!is_face || text == asked.Text()) texts.push_back(text);
    return texts;
}

Lasting *SharedRegister::FindDisabled(const std::string &text) {
    const auto file = disabled_.find(PathOfText(text));
    if (file == disabled_.end()) return nullptr;
    const auto face = file->second.find(text);
    return face == file->second.end() ? nullptr : &face->second;
}

void SharedRegister::ForgetDisabled(const std::string &text) {
    const auto file = disabled_.find(PathOfText(text));
    if (file == disabled_.end()) return;
    file->second.erase(text);
    if (file->second.empty()) disabled_.erase(file);
}

void SharedRegister::KeepDisabled(const std::string &text, Lasting lasting) {
    Lasting *former = FindDisabled(text);
    if (former && (*former == Lasting::kForUser || *former == lasting)) return;
    ChangeFor(lasting).added.disabled.push_back(text);
    if (former) {
        for_session_.removed.disabled.push_back(text);
        *former = lasting;
        undo_.push_back([this, text] { disabled_[PathOfText(text)][text] = Lasting::kForSession; });
        return;
    }
    disabled_[PathOfText(text)][text] = lasting;
    undo_.push_back([this, text] {
        ForgetDisabled(text);
        fonts_.EnableFont(TValURL::FromText(text).Get(), kOwnScope);
    });
}

bool SharedRegister::Disable(const ValURL *url, Lasting lasting) {
    std::vector<std::string> texts = TextsOf(fonts_.CopyFontsForURL(url, kOwnScope).Get());
    const bool is_done = fonts_.DisableFont(url, kOwnScope);
    for (const std::string &text : DisabledAt(url))
        texts.push_back(text); // for the session until now, perhaps
    const size_t steps = undo_.size();
    for (const std::string &text : texts) KeepDisabled(text, lasting);
    return is_done || undo_.size() > steps;
}

bool SharedRegister::Enable(const ValURL *url, Lasting lasting) {
    const auto texts = DisabledAt(url);
    for (const std::string &text : texts)
        if (lasting == Lasting::kForSession && *FindDisabled(text) == Lasting::kForUser) return false;
    const bool is_done = fonts_.EnableFont(url, kOwnScope);
    for (const std::string &text : texts) {
        const Lasting former = *FindDisabled(text);
        ChangeFor(former).removed.disabled.push_back(text);
        ForgetDisabled(text);
        undo_.push_back([this, text, former] {
            disabled_[PathOfText(text)][text] = former;
            fonts_.DisableFont(TValURL::FromText(text).Get(), kOwnScope);
        });
    }
    return is_done;
}

bool SharedRegister::Save(bool on_disk) {
    const bool is_saved = saved_.Save(for_user_, for_session_, on_disk);
    if (!is_saved) TakeBack();
    for_session_ = for_user_ = StateChange();
    undo_.clear();
    return is_saved;
}

void SharedRegister::TakeBack() noexcept {
    for (auto step = undo_.rbegin(); step != undo_.rend(); ++step) {
        try {
            (*step)();
        } catch (const std::bad_alloc &) { // this font stays as it is until the server starts anew
        }
    }
    for_session_ = for_user_ = StateChange();
    undo_.clear();
}

bool SharedRegister::Found(const std::string &spelled, VLFontFlags flags, uint32_t priority) {
    const std::string path = NormalizePath(spelled);
    const auto known = files_.find(path);
    const File former = known == files_.end() ? File() : known->second;
    const bool is_there = former.IsWanted() && fonts_.IsFontRegistered(TValURL::FromPath(path).Get());
    const bool is_new =
        !is_there && (former.IsWanted() ? Add(former.spelled, former.flags) : Add(spelled, flags));
    if (!is_new && !former.IsWanted()) return false; // no font, or a font under another name already
    File &file = files_[path];
    if (!former.IsWanted()) {
        file.spelled = spelled;
        file.flags = flags;
    }
    file.was_found = true;
    file.priority = priority;
    return is_new;
}

// What somebody has registered may come back: it is still wanted.
bool SharedRegister::Vanished(const std::string &path) {
    const auto found = files_.find(NormalizePath(path));
    if (found == files_.end()) return false;
    const std::string spelled = found->second.spelled;
    found->second.was_found = false;
    if (!found->second.IsWanted()) files_.erase(found);
    const bool was_there = fonts_.IsFontRegistered(TValURL::FromPath(spelled).Get());
    TakeOut(spelled);
    return was_there;
}

bool SharedRegister::LetGo(const std::string &path) {
    const auto found = files_.find(NormalizePath(path));
    if (found == files_.end()) return false;
    found->second.was_found = false;
    return !found->second.IsWanted() && Vanished(path);
}

VLScope SharedRegister::ScopeOf(const ValURL *url) const {
    if (!fonts_.GetFontScope(url)) return 0;
    VLScope scope = 0;
    for (const std::string &spelled : FilesAt(PathOf(url))) {
        const File &file = files_.at(NormalizePath(spelled));
        if (file.for_user || file.was_found) scope |= kVLScopeUser;
        if (file.for_session) scope |= kVLScopeSession;
    }
    return scope;
}

uint32_t SharedRegister::PriorityOf(const ValURL *url) const {
    const auto found = files_.find(PathOf(url));
    if (found == files_.end()) return 0;
    const File &file = found->second;
    return file.for_session ? kSessionPriority : file.for_user ? kUserPriority : file.priority;
}

} // namespace vellum
