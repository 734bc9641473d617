// SPDX-License-Identifier: MIT
#include "platform/app/main_bundle.hpp"

#include "platform/app/property_list.hpp"
#include "platform/fs/file.hpp"

#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>

namespace vellum {

namespace {

constexpr char kInfoFile[] = "/Info.vlist";
constexpr char kResourcesFolder[] = "/Resources";

bool Exists(const std::string &path) noexcept {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0;
}

// Anybody can put a file into a folder for all, above the folder of a program, and write into a file for
// all.
bool IsOfUserOrRoot(const std::string &path) noexcept {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && (status.st_uid == 0 || status.st_uid == ::geteuid()) &&
           (status.st_mode & S_IWOTH) == 0;
}

Ref<const ValDictionary> ReadInfo(const std::string &path) {
    const auto content = ReadWholeFile(path.c_str(), kMaximumPropertyListSize);
    if (!content) return nullptr;
    const auto list = ReadPropertyList(content->View().data(), content->Size());
    if (ValGetType(list.Get()) != kValTypeDictionary) return nullptr;
    return Retain(static_cast<const ValDictionary *>(list.Get()));
}

} // namespace

std::string MainBundle::ResourcePath(const std::string &name) const {
    std::string path = folder + kResourcesFolder;
    if (!name.empty()) path.append("/").append(name);
    return Exists(path) ? path : std::string();
}

std::optional<MainBundle> MainBundle::Of(const std::string &executable) {
    std::string folder = executable;
    while (!folder.empty()) {
        folder.resize(folder.rfind('/') == std::string::npos ? 0 : folder.rfind('/'));
        const std::string path = folder + kInfoFile;
        if (!Exists(path)) continue;
        auto info = IsOfUserOrRoot(path) ? ReadInfo(path) : nullptr;
        if (!info) return std::nullopt;
        return MainBundle{folder, std::move(info)};
    }
    return std::nullopt;
}

std::optional<MainBundle> MainBundle::OfProcess() {
    if (::getauxval(AT_SECURE) != 0) return std::nullopt;
    char path[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? Of(std::string(path, static_cast<size_t>(length))) : std::nullopt;
}

} // namespace vellum
