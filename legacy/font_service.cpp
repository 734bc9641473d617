// SPDX-License-Identifier: MIT
// What is so, and how the configuration is made to fit it.
#include "font_service.hpp"

#include "current_configuration.hpp"
#include "registered_links.hpp"
#include "shared_links.hpp"
#include "user_list.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr int kMostTries = 3; // to read a configuration while nobody puts another in its place

std::vector<std::string> PathsOf(const std::vector<FontURL> &urls) {
    std::vector<std::string> paths;
    for (const FontURL &url : urls) paths.push_back(url.path);
    return paths;
}

} // namespace

// Fonts that are kept for other threads stay as the process ends. fontconfig hides their parts from a leak
// checker, though: under one they are given back.
TFontService &TFontService::Get() {
    static TFontService *const service = new TFontService;
#ifdef VELLUM_LEAK_CHECK
    static const int is_told = std::atexit([] { Get().application_.FreeRetired(); });
    static_cast<void>(is_told);
#endif
    return *service;
}

// Whether a file should be among the application fonts.
bool TFontService::IsWanted(FcConfig *config, const std::string &path) {
    return files_.IsShown(path) && !user_.IsFileDisabled(path) && !application_.SystemHas(config, path) &&
           !application_.SystemHas(config, LinkPathOf(path));
}

// `changed` are the files whose state may have changed; all are looked at when the configuration or the
// user's list is not what it was.
void TFontService::SettleIn(FcConfig *config, std::vector<std::string> changed) {
    for (std::string &path : memory_.ForgetLost()) {
        files_.Forget(path);
        changed.push_back(std::move(path));
    }
    const bool is_list_new = user_.Refresh();
    if (!application_.Follow(config) || is_list_new) {
        auto all = files_.InOrder();
        changed.insert(changed.end(), all.begin(), all.end());
    }
    std::unordered_set<std::string> unwanted;
    for (const std::string &path : changed) {
        if (application_.Owns(path) && !IsWanted(config, path)) unwanted.insert(path);
    }
    if (!unwanted.empty()) application_.Remove(config, unwanted);
    for (const std::string &path : changed) {
        if (!application_.Owns(path) && IsWanted(config, path)) application_.Add(config, path);
    }
}

void TFontService::SettleNow(std::vector<std::string> changed) {
    if (const ConfigurationRef config = CurrentConfiguration()) SettleIn(config.get(), std::move(changed));
}

// The registered files that URLs mean: those below a folder, too.
std::vector<std::string> TFontService::FilesOf(const std::vector<FontURL> &urls) const {
    std::vector<std::string> files;
    for (const FontURL &url : urls) {
        auto some = files_.At(url.path);
        std::move(some.begin(), some.end(), std::back_inserter(files));
    }
    return files;
}

// Taken between two calls, though it is then used beside others.
ConfigurationRef TFontService::LockedConfiguration() {
    const std::lock_guard lock(mutex_);
    return CurrentConfiguration();
}

// The new configuration is read beside the one that is in use, and has all application fonts before the
// program sees it. False when the program has meanwhile made another one its own, which may be as old.
bool TFontService::ReplaceConfiguration() {
    const ConfigurationRef former = LockedConfiguration();
    if (!former) return true;
    const ConfigurationRef fresh = ReadSuccessor(former.get());
    if (!fresh) return true;
    const std::lock_guard lock(mutex_);
    if (CurrentConfiguration() != former) return false;
    application_.CopyForeign(former.get(), fresh.get());
    SettleIn(fresh.get(), {});
    FcConfigSetCurrent(fresh.get());
    return true;
}

void TFontService::ReadConfigurationAnew() {
    for (int tries = 0; tries < kMostTries; ++tries) {
        if (ReplaceConfiguration()) return;
    }
}

// This process's configuration may have fonts by the links that go.
void TFontService::UnlinkFiles(const std::vector<FontURL> &urls) {
    const auto links = UnlinkForUser(urls);
    const auto is_stale = [&] {
        const std::lock_guard lock(mutex_);
        const ConfigurationRef config = CurrentConfiguration();
        return config && std::any_of(links.begin(), links.end(), [&](const std::string &link) {
                   return application_.SystemHas(config.get(), link);
               });
    };
    if (!links.empty() && is_stale()) ReadConfigurationAnew();
}

void TFontService::RegisterFiles(const std::vector<FontURL> &urls, VLScope scope) {
    if (scope & kVLScopeUser) {
        const std::lock_guard users(user_mutex_);
        if (const ConfigurationRef config = LockedConfiguration()) LinkForUser(config.get(), urls);
    }
    const std::lock_guard lock(mutex_);
    for (const FontURL &url : urls) files_.Add(url.path, scope);
    SettleNow(PathsOf(urls));
}

void TFontService::WithdrawFiles(const std::vector<FontURL> &urls, VLScope scope) {
    std::unique_lock users(user_mutex_, std::defer_lock);
    if (scope & kVLScopeUser) users.lock();
    std::unique_lock lock(mutex_);
    const auto changed = FilesOf(urls);
    for (const FontURL &url : urls) files_.Remove(url.path, scope);
    if (users) {
        lock.unlock();
        UnlinkFiles(urls);
        lock.lock();
    }
    SettleNow(changed);
}

// Whether fontconfig has another file to read now.
bool TFontService::ChangeForUser(const std::vector<SelectedFont> &fonts, bool enables) {
    const Outcome outcome = ChangeUserList(fonts, enables);
    const std::lock_guard lock(mutex_);
    user_.Remember(fonts, enables, outcome != Outcome::Failed);
    return outcome == Outcome::Rewritten;
}

// Fonts are read before the user's files are locked, and before anything changes.
void TFontService::EnableFonts(const std::vector<FontURL> &urls, bool enables, VLScope scope) {
    std::vector<SelectedFont> fonts;
    for (const FontURL &url : urls) fonts.push_back(Select(url));
    if (scope & kVLScopeUser) {
        const std::lock_guard users(user_mutex_);
        if (ChangeForUser(fonts, enables)) ReadConfigurationAnew();
    }
    const std::lock_guard lock(mutex_);
    if (!(scope & kVLScopeUser) || (scope & kVLScopeProcess)) EnableHere(fonts, enables);
    SettleNow(FilesOf(urls));
}

void TFontService::EnableHere(const std::vector<SelectedFont> &fonts, bool enables) {
    for (const SelectedFont &font : fonts) {
        if (enables || font.is_whole_file) files_.Hide(font.path, !enables);
    }
}

uint32_t TFontService::RegisterMemory(std::span<const uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    TMemoryFile file(bytes);
    if (bytes.empty() || !file) return 0;
    SettleNow({}); // a file that is lost may have been where this one is
    const std::string path = file.Path();
    files_.Add(path, kVLScopeProcess);
    uint32_t container = 0;
    try {
        SettleNow({path});
        const size_t faces = application_.FacesOf(path);
        if (faces > 0) container = memory_.Add(std::move(file), faces);
    } catch (...) { // memory is exhausted: there is no container
    }
    if (container != 0) return container;
    files_.Forget(path);
    SettleNow({path});
    return 0;
}

uint32_t TFontService::WithdrawMemory(uint32_t container) {
    const std::lock_guard lock(mutex_);
    if (!memory_.Has(container)) return 0;
    const std::string path = memory_.PathOf(container);
    files_.Forget(path);
    SettleNow({path}); // while the file is still what the path leads to
    memory_.Remove(container);
    return container;
}

uint32_t TFontService::FontsOf(uint32_t container, std::span<uint32_t> fonts) {
    const std::lock_guard lock(mutex_);
    const auto found = memory_.FontsOf(container);
    std::copy_n(found.begin(), std::min(found.size(), fonts.size()), fonts.begin());
    return static_cast<uint32_t>(found.size());
}

uint32_t TFontService::ContainerOf(uint32_t font) {
    const std::lock_guard lock(mutex_);
    return memory_.ContainerOf(font);
}

void TFontService::Settle() {
    const std::lock_guard lock(mutex_);
    if (!files_.IsEmpty()) SettleNow({});
}

} // namespace vellum::legacy
