// SPDX-License-Identifier: MIT
#include "platform/app/preferences_file.hpp"

#include "platform/app/property_list.hpp"
#include "platform/fs/file_limit_guard.hpp"
#include "platform/log/log.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/val/data.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <thread>

namespace vellum {

namespace {

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0600;

// Who holds the lock writes one small file to the disk. Who is stopped in it must not stop everybody else.
constexpr std::chrono::seconds kLongestWait{30};
constexpr std::chrono::milliseconds kPause{3};

constexpr int kMostBrokenFiles = 100;

std::string FolderOf(const std::string &path) {
    return path.substr(0, path.rfind('/'));
}

// The file itself where a symbolic link leads to it: the link stays when the file is replaced.
std::string WithoutLinks(const std::string &path) {
    char real[PATH_MAX];
    return ::realpath(path.c_str(), real) ? real : path;
}

int MakeFolders(const std::string &path) {
    if (path.empty() || ::mkdir(path.c_str(), kFolderMode) == 0 || errno == EEXIST) return 0;
    if (errno != ENOENT) return errno;
    if (const int error = MakeFolders(FolderOf(path))) return error;
    return ::mkdir(path.c_str(), kFolderMode) == 0 || errno == EEXIST ? 0 : errno;
}

int WriteFully(int descriptor, std::string_view bytes) noexcept {
    const FileLimitGuard guard;
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return 0;
}

// What is left of a writer that was killed is overwritten by the next one, who holds the lock now.
int WriteFile(const std::string &path, std::string_view bytes) noexcept {
    const TDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, kFileMode));
    if (!file.IsOpen()) return errno;
    if (const int error = WriteFully(file.Get(), bytes)) return error;
    return ::fsync(file.Get()) == 0 ? 0 : errno;
}

// The name of a file lasts once its folder is on the disk. Not every file system can say so.
void SyncFolder(const std::string &path) noexcept {
    const TDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsOpen()) ::fsync(folder.Get());
}

// Gives the file a second name, under which it stays. 0, or the errno of the failure.
int KeepBroken(const std::string &path) {
    for (int n = 1; n <= kMostBrokenFiles; ++n) {
        const std::string kept = path + ".broken-" + std::to_string(n);
        if (::link(path.c_str(), kept.c_str()) == 0) {
            Log(LogLevel::kWarning, "The preferences <%s> were no property list; they are kept as <%s>",
                path.c_str(), kept.c_str());
            return 0;
        }
        if (errno != EEXIST) return errno;
    }
    return EEXIST;
}

// EACCES and the like; 0 where there is no file at all, which is no failure.
int WhyUnreadable(const std::string &path) noexcept {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
    if (!S_ISREG(status.st_mode)) return EISDIR;
    if (static_cast<uint64_t>(status.st_size) > kMaximumPropertyListSize) return EFBIG;
    return ::access(path.c_str(), R_OK) == 0 ? EIO : errno;
}

} // namespace

PreferencesContent ReadPreferences(const std::string &path) {
    PreferencesContent result;
    if (path.empty()) return result;
    const auto content = ReadWholeFile(path.c_str(), kMaximumPropertyListSize);
    if (!content) {
        result.error = WhyUnreadable(path);
        return result;
    }
    const uint32_t failures = tPassingFailures;
    const auto list = ReadPropertyList(content->View().data(), content->Size());
    if (!list && failures != tPassingFailures) {
        result.error = ENOMEM;
    } else if (ValGetType(list.Get()) == kValTypeDictionary) {
        result.values = Retain(static_cast<const ValDictionary *>(list.Get()));
    } else {
        result.is_broken = true;
    }
    return result;
}

int WritePreferences(const std::string &path, const ValDictionary *values, bool keeps_former) {
    const uint32_t failures = tPassingFailures;
    const auto list = WritePropertyList(values);
    if (!list) return failures == tPassingFailures ? EINVAL : ENOMEM;
    const std::string place = WithoutLinks(path);
    const std::string fresh = place + ".new";
    int error = WriteFile(fresh, Bytes(list.Get()));
    if (!error && keeps_former) error = KeepBroken(place);
    if (!error && ::rename(fresh.c_str(), place.c_str()) != 0) error = errno;
    if (error)
        ::unlink(fresh.c_str());
    else
        SyncFolder(FolderOf(place));
    return error;
}

// A child that was forked meanwhile has the descriptor too: to close ours is not enough.
PreferencesLock::~PreferencesLock() {
    if (lock_.IsOpen()) ::flock(lock_.Get(), LOCK_UN);
}

int PreferencesLock::Take(const std::string &path) {
    if (const int error = MakeFolders(FolderOf(path))) return error;
    lock_ =
        TDescriptor(::open((path + ".lock").c_str(),
                           O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, kFileMode));
    if (!lock_.IsOpen()) return errno;
    const auto end = std::chrono::steady_clock::now() + kLongestWait;
    while (::flock(lock_.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return errno;
        if (std::chrono::steady_clock::now() >= end) return ETIMEDOUT;
        std::this_thread::sleep_for(kPause);
    }
    return 0;
}

} // namespace vellum
