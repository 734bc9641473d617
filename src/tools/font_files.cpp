// SPDX-License-Identifier: MIT
#include "tools/font_files.hpp"

#include "tools/text.hpp"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unordered_set>

namespace vellum::tool {

namespace {

namespace fs = std::filesystem;

constexpr const char *kFontExtensions[] = {".ttf", ".otf", ".ttc",  ".otc",   ".pfa",  ".pfb",
                                           ".pcf", ".bdf", ".woff", ".woff2", ".dfont"};

bool HasFontExtension(const fs::path &path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::ranges::find(kFontExtensions, extension) != std::end(kFontExtensions);
}

// A font tree also holds licences, metrics and caches: those are passed over without a word.
bool LooksLikeFont(const fs::path &path) {
    if (HasFontExtension(path)) return true;
    return static_cast<bool>(Adopt(VLCopyTypeIdentifier(FileURL(path.native()).Get())));
}

std::vector<std::string> FontFilesBelow(const fs::path &folder, std::error_code &error) {
    std::vector<std::string> found;
    fs::recursive_directory_iterator walk(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && walk != fs::recursive_directory_iterator(); walk.increment(error)) {
        std::error_code unreadable;
        if (walk->is_directory(unreadable)) continue;
        if (LooksLikeFont(walk->path())) found.push_back(walk->path().native());
    }
    std::ranges::sort(found);
    return found;
}

// An absolute path without "." and "..". Above a link lies the folder that its target is in, not the one in
// which the link stands; no other link is followed, so that a file keeps the path that it was named by.
fs::path WithoutDots(const fs::path &absolute) {
    fs::path path;
    for (const fs::path &part : absolute) {
        if (part == "..") {
            std::error_code error;
            const fs::path real = fs::is_symlink(path, error) ? fs::canonical(path, error) : path;
            path = (error ? path : real).parent_path();
        } else if (!part.empty() && part != ".") {
            path /= part;
        }
    }
    return path;
}

const char *WhatItIs(const fs::file_status &status) {
    switch (status.type()) {
    case fs::file_type::directory:
        return "it is a folder";
    case fs::file_type::fifo:
        return "it is a pipe, not a file";
    case fs::file_type::socket:
        return "it is a socket, not a file";
    case fs::file_type::character:
    case fs::file_type::block:
        return "it is a device, not a file";
    default:
        return nullptr;
    }
}

// Collects paths, each once.
class Collector {
public:
    void Add(const std::string &path) {
        if (seen_.insert(path).second) files_.paths.push_back(path);
    }

    void AddFolder(const std::string &folder) {
        std::error_code error;
        const auto found = FontFilesBelow(folder, error);
        for (const std::string &path : found) Add(path);
        if (error)
            Refuse(folder, error.message());
        else if (found.empty())
            Refuse(folder, "there are no fonts in this folder");
    }

    void Refuse(const std::string &path, std::string reason) {
        files_.refusals.push_back({.path = path, .reason = std::move(reason)});
    }

    void AddNamed(const std::string &named, const fs::path &absolute, Gone gone) {
        std::error_code error;
        const auto type = fs::status(absolute, error).type();
        const std::string path = WithoutDots(absolute).native();
        if (type == fs::file_type::directory)
            AddFolder(path);
        else if (type != fs::file_type::not_found || (gone == Gone::kKept && !fs::exists(path, error)))
            Add(path);
        else
            Refuse(named, "there is no such file");
    }

    FontFiles Take() { return std::move(files_); }

private:
    FontFiles files_;
    std::unordered_set<std::string> seen_;
};

} // namespace

FontFiles FindFontFiles(const std::vector<std::string> &paths, Gone gone) {
    Collector collector;
    for (const std::string &named : paths) {
        std::error_code error;
        const fs::path absolute = fs::absolute(named, error);
        if (error)
            collector.Refuse(named, "the folder that it is in is not known: " + error.message());
        else
            collector.AddNamed(named, absolute, gone);
    }
    return collector.Take();
}

Refusal ExplainRefusal(const std::string &path) {
    const auto no_font = [&](const char *reason) { return Refusal{path, reason, true, false}; };
    std::error_code error;
    const auto status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return {path, "there is no such file"};
    if (error) return {path, error.message(), false, error == std::errc::permission_denied};
    if (const char *what = WhatItIs(status)) return no_font(what);
    if (::access(path.c_str(), R_OK) != 0) return {path, std::strerror(errno), false, true};
    if (fs::file_size(path, error) == 0 && !error) return no_font("it is empty");
    if (!Adopt(VLCopyTypeIdentifier(FileURL(path).Get()))) return no_font("it is not a font");
    return no_font("it is damaged or cut short: no face of it can be read");
}

} // namespace vellum::tool
