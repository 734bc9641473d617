// SPDX-License-Identifier: MIT
// Files of the user's. Descriptors are closed on exec, and whatever fails leaves no file of its own behind;
// a process that is killed may, and the next one to write takes it away.
#include "user_files.hpp"

#include "fontconfig.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr size_t kLongestFile = size_t{16} << 20;
constexpr std::chrono::milliseconds kBetweenTries{2};
constexpr mode_t kModeBits = S_IRWXU | S_IRWXG | S_IRWXO;

// What follows the name of a file while it is written. Nobody calls a file of his own so, as he may a copy
// that he keeps.
constexpr std::string_view kUnfinished = ".unfinished-";
constexpr std::string_view kAnyLetters = "XXXXXX";

class TDescriptor {
public:
    explicit TDescriptor(int file) noexcept : file_(file) {}
    ~TDescriptor() { Close(); }
    TDescriptor(const TDescriptor &) = delete;
    TDescriptor &operator=(const TDescriptor &) = delete;

    int Get() const noexcept { return file_; }

    // Whether everything written has been taken.
    bool Close() noexcept { return file_ < 0 || close(std::exchange(file_, -1)) == 0; }

private:
    int file_;
};

// A program that runs with more rights than its caller has does not write where the caller's environment
// says.
std::string UserFolder(const char *variable, const char *below_home) {
    const char *folder = secure_getenv(variable);
    if (folder && folder[0] == '/') return NormalPath(folder);
    const char *home = secure_getenv("HOME");
    return home && home[0] == '/' ? NormalPath(std::string(home) + below_home) : std::string();
}

bool WriteAll(int file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

std::string ResolveLink(const std::string &path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? std::string(real.get()) : path;
}

std::string FolderOf(const std::string &path) {
    return path.substr(0, path.rfind('/') + 1);
}

// Who may read a file is the user's to say. Where the file system knows no such thing, nothing is lost.
void KeepMode(int file, const std::string &former) noexcept {
    struct stat status = {};
    if (stat(former.c_str(), &status) == 0) static_cast<void>(fchmod(file, status.st_mode & kModeBits));
}

void SyncFolderOf(const std::string &path) {
    const TDescriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.Get() >= 0) fsync(folder.Get());
}

} // namespace

std::string ConfigHome() {
    return UserFolder("XDG_CONFIG_HOME", "/.config");
}

std::string DataHome() {
    return UserFolder("XDG_DATA_HOME", "/.local/share");
}

bool MakeFolders(const std::string &folder) {
    struct stat status = {};
    if (stat(folder.c_str(), &status) == 0) return S_ISDIR(status.st_mode);
    const size_t slash = folder.rfind('/');
    if (slash == std::string::npos || (slash > 0 && !MakeFolders(folder.substr(0, slash)))) return false;
    return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

std::optional<std::string> ReadSmallFile(const std::string &path) {
    const TDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.Get() < 0) return errno == ENOENT ? std::optional<std::string>("") : std::nullopt;
    struct stat status = {};
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    std::string bytes;
    char piece[8192];
    for (ssize_t count; (count = read(file.Get(), piece, sizeof piece)) != 0;) {
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        bytes.append(piece, static_cast<size_t>(count));
        if (bytes.size() > kLongestFile) return std::nullopt;
    }
    return bytes;
}

bool ReplaceFile(const std::string &path, std::string_view bytes) {
    if (bytes.size() > kLongestFile) return false;
    const std::string target = ResolveLink(path);
    std::string beside = target + std::string(kUnfinished).append(kAnyLetters);
    TDescriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (file.Get() < 0) return false;
    KeepMode(file.Get(), target);
    const bool is_written = WriteAll(file.Get(), bytes) && fsync(file.Get()) == 0 && file.Close();
    if (!is_written || rename(beside.c_str(), target.c_str()) != 0) {
        unlink(beside.c_str());
        return false;
    }
    SyncFolderOf(target);
    return true;
}

void RemoveUnfinished(const std::string &path) {
    const std::string target = ResolveLink(path);
    const std::string begin = target.substr(target.rfind('/') + 1) + std::string(kUnfinished);
    std::error_code error;
    std::filesystem::directory_iterator entry(FolderOf(target), error);
    for (const std::filesystem::directory_iterator end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.starts_with(begin) && name.size() == begin.size() + kAnyLetters.size())
            unlink(entry->path().c_str());
    }
}

TFileLock::TFileLock(const std::string &path, std::chrono::milliseconds patience)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    const auto until = std::chrono::steady_clock::now() + patience;
    while (file_ >= 0 && !is_held_) {
        is_held_ = flock(file_, LOCK_EX | LOCK_NB) == 0;
        if (is_held_ || (errno != EWOULDBLOCK && errno != EINTR)) return;
        if (std::chrono::steady_clock::now() >= until) return;
        std::this_thread::sleep_for(kBetweenTries);
    }
}

TFileLock::~TFileLock() {
    if (file_ >= 0) close(file_);
}

} // namespace vellum::legacy
