// SPDX-License-Identifier: MIT
// What is so, and how the configuration is made to fit it.
#include "font_service.hpp"

#include "current_configuration.hpp"
#include "freetype_faces.hpp"
#include "registered_links.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace vellum::legacy {
namespace {

std::vector<std::string> PathsOf(const std::vector<FontURL> &urls) {
    std::vector<std::string> paths;
    for (const FontURL &url : urls) paths.push_back(url.path);
    return paths;
}

// The folders whose files the system has, disabled ones too.
std::unordered_set<std::string> FontFolders(FcConfig *config) {
    std::unordered_set<std::string> folders;
    const std::unique_ptr<FcStrList, decltype(&FcStrListDone)> list(FcConfigGetFontDirs(config),
                                                                    FcStrListDone);
    if (!list) return folders;
    while (const FcChar8 *folder = FcStrListNext(list.get())) folders.emplace(AsText(folder));
    return folders;
}

std::string FolderOf(const std::string &path) {
    return path.substr(0, path.rfind('/'));
}

} // namespace

TFontService &TFontService::Get() {
    static TFontService *const service = new TFontService;
    return *service;
}

void TFontService::AddFile(const std::string &path) {
    File &file = files_[path];
    if (++file.times == 1) file.number = ++last_number_;
}

void TFontService::RemoveFile(const std::string &path) {
    const auto found = files_.find(path);
    if (found == files_.end() || --found->second.times > 0) return;
    files_.erase(found);
    hidden_.erase(path);
}

std::vector<std::string> TFontService::FilesInOrder() const {
    std::vector<std::pair<uint64_t, std::string>> numbered;
    for (const auto &[path, file] : files_) numbered.emplace_back(file.number, path);
    std::sort(numbered.begin(), numbered.end());
    std::vector<std::string> paths;
    for (auto &entry : numbered) paths.push_back(std::move(entry.second));
    return paths;
}

// Whether a file should be among the application fonts.
bool TFontService::IsWanted(FcConfig *config, const std::string &path) {
    return files_.contains(path) && !hidden_.contains(path) && !user_.IsFileDisabled(path) &&
           !application_.SystemHas(config, path) && !application_.SystemHas(config, LinkPathOf(path));
}

// `changed` are the files whose state may have changed; all are looked at when the configuration or the
// user's list is not what it was.
void TFontService::SettleIn(FcConfig *config, std::vector<std::string> changed) {
    const bool is_list_new = user_.Refresh();
    if (!application_.Follow(config) || is_list_new) {
        auto all = FilesInOrder();
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

// The new configuration has all application fonts before the program sees it.
void TFontService::ReadConfigurationAnew() {
    const ConfigurationRef current = CurrentConfiguration();
    if (!current) return;
    const ConfigurationRef fresh = ReadSuccessor(current.get());
    if (!fresh) return;
    application_.CopyForeign(current.get(), fresh.get());
    SettleIn(fresh.get(), {});
    FcConfigSetCurrent(fresh.get());
}

bool TFontService::LinkFiles(const std::vector<FontURL> &urls) {
    const ConfigurationRef config = CurrentConfiguration();
    if (!config) return false;
    const auto folders = FontFolders(config.get());
    bool is_linked = false;
    for (const FontURL &url : urls) {
        if (!folders.contains(FolderOf(url.path)) && IsFontFile(url.path)) is_linked |= AddLink(url.path);
    }
    return is_linked;
}

// Whether this process's configuration has a font by a link that is gone.
bool TFontService::UnlinkFiles(const std::vector<FontURL> &urls) {
    const ConfigurationRef config = CurrentConfiguration();
    bool is_stale = false;
    for (const FontURL &url : urls) {
        if (RemoveLink(url.path))
            is_stale |= config && application_.SystemHas(config.get(), LinkPathOf(url.path));
    }
    return is_stale;
}

void TFontService::RegisterFiles(const std::vector<FontURL> &urls, VLScope scope) {
    const std::lock_guard lock(mutex_);
    for (const FontURL &url : urls) AddFile(url.path);
    if ((scope & kVLScopeUser) && LinkFiles(urls)) user_.WriteConfiguration();
    SettleNow(PathsOf(urls));
}

void TFontService::WithdrawFiles(const std::vector<FontURL> &urls, VLScope scope) {
    const std::lock_guard lock(mutex_);
    for (const FontURL &url : urls) RemoveFile(url.path);
    if ((scope & kVLScopeUser) && UnlinkFiles(urls)) ReadConfigurationAnew();
    SettleNow(PathsOf(urls));
}

// Fonts are read before the user's files are locked, and before anything changes.
void TFontService::EnableFonts(const std::vector<FontURL> &urls, bool enables, VLScope scope) {
    std::vector<SelectedFont> fonts;
    for (const FontURL &url : urls) fonts.push_back(Select(url));
    const std::lock_guard lock(mutex_);
    const bool is_for_user = scope & kVLScopeUser;
    if (!is_for_user || (scope & kVLScopeProcess)) EnableHere(fonts, enables);
    if (is_for_user && user_.SetEnabled(fonts, enables)) ReadConfigurationAnew();
    SettleNow(PathsOf(urls));
}

void TFontService::EnableHere(const std::vector<SelectedFont> &fonts, bool enables) {
    for (const SelectedFont &font : fonts) {
        if (enables)
            hidden_.erase(font.path);
        else if (font.is_whole_file && files_.contains(font.path))
            hidden_.insert(font.path);
    }
}

uint32_t TFontService::RegisterMemory(std::span<const uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    TMemoryFile file(bytes);
    if (bytes.empty() || !file) return 0;
    const std::string path = file.Path();
    AddFile(path);
    SettleNow({path});
    const size_t faces = application_.FacesOf(path);
    if (faces > 0) return memory_.Add(std::move(file), faces);
    RemoveFile(path);
    return 0;
}

uint32_t TFontService::WithdrawMemory(uint32_t container) {
    const std::lock_guard lock(mutex_);
    const std::string path = memory_.PathOf(container);
    if (path.empty()) return 0;
    RemoveFile(path);
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
    if (!files_.empty()) SettleNow({});
}

} // namespace vellum::legacy
