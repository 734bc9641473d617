// SPDX-License-Identifier: MIT
// Making and taking away of links. Another process may do the same at the same time.
#include "registered_links.hpp"

#include "folders.hpp"
#include "user_files.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr size_t kLongestName = 100;

// FNV-1a: the same in every process, now and later.
uint64_t HashOf(std::string_view path) noexcept {
    uint64_t hash = 0xCBF29CE484222325;
    for (const char c : path) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

constexpr bool IsPlain(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-';
}

std::string LinkName(const std::string &path) {
    char hash[17];
    std::snprintf(hash, sizeof hash, "%016llx", static_cast<unsigned long long>(HashOf(path)));
    std::string name = path.substr(path.rfind('/') + 1);
    if (name.size() > kLongestName) name.erase(0, name.size() - kLongestName);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !IsPlain(c); }, '_');
    return std::string(hash) + '-' + name;
}

// Empty when there is no such link.
std::string TargetOf(const std::string &link) {
    char target[PATH_MAX];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return length < 0 ? std::string() : std::string(target, static_cast<size_t>(length));
}

bool Leads(const std::string &link, const std::string &path) {
    return !link.empty() && TargetOf(link) == path;
}

// Empty without a data folder.
std::string LinksFolder() {
    const std::string home = DataHome();
    return home.empty() ? home : home + '/' + kRegisteredFontsFolder;
}

} // namespace

std::string LinkPathOf(const std::string &path) {
    const std::string folder = LinksFolder();
    return folder.empty() ? folder : folder + '/' + LinkName(path);
}

bool AddLink(const std::string &path) {
    const std::string link = LinkPathOf(path);
    if (link.empty() || !MakeFolders(link.substr(0, link.rfind('/')))) return false;
    if (Leads(link, path)) return true;
    unlink(link.c_str());
    return symlink(path.c_str(), link.c_str()) == 0 || (errno == EEXIST && Leads(link, path));
}

bool RemoveLink(const std::string &path) {
    const std::string link = LinkPathOf(path);
    return Leads(link, path) && unlink(link.c_str()) == 0;
}

std::vector<RegisteredLink> RegisteredLinks() {
    std::vector<RegisteredLink> links;
    const std::string folder = LinksFolder();
    if (folder.empty()) return links;
    for (const std::string &name : NamesIn(folder)) {
        std::string target = TargetOf(folder + '/' + name);
        if (target.starts_with('/') && LinkName(target) == name)
            links.push_back({folder + '/' + name, std::move(target)});
    }
    std::sort(links.begin(), links.end(), [](const auto &a, const auto &b) { return a.path < b.path; });
    return links;
}

bool HasLinks() {
    const std::string folder = LinksFolder();
    return !folder.empty() && !NamesIn(folder).empty();
}

} // namespace vellum::legacy
