// SPDX-License-Identifier: MIT
// Files of the user's. Descriptors are closed on exec, and whatever fails leaves no file of its own behind.
#include "user_files.hpp"

#include "fontconfig.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <thread>
#include <utility>

namespace vellum::legacy {
namespace {

constexpr size_t kLongestFile = size_t{16} << 20;
constexpr std::chrono::milliseconds kBetweenTries{2};

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

std::string UserFolder(const char *variable, const char *below_home) {
    const char *folder = std::getenv(variable);
    if (folder && folder[0] == '/') return NormalPath(folder);
    const char *home = std::getenv("HOME");
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

void SyncFolderOf(const std::string &path) noexcept {
    const TDescriptor folder(
        open(path.substr(0, path.rfind('/') + 1).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
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
    std::string beside = target + ".XXXXXX";
    TDescriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (file.Get() < 0) return false;
    const bool is_written = WriteAll(file.Get(), bytes) && fsync(file.Get()) == 0 && file.Close();
    if (!is_written || rename(beside.c_str(), target.c_str()) != 0) {
        unlink(beside.c_str());
        return false;
    }
    SyncFolderOf(target);
    return true;
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
