// SPDX-License-Identifier: MIT
// What a process can take from itself before it becomes a server: rights, room, a part of the file system.
#pragma once

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace vellum::test {

// Modes of files count from the next program on, though it is root's.
inline bool BeBoundByModes() {
    for (const auto right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH})
        ::prctl(PR_CAPBSET_DROP, right, 0, 0, 0); // others than root have none to lose
    return true;
}

// Writing beyond what LimitFiles says is an error, and no signal.
inline bool OutliveLimits() {
    return ::signal(SIGXFSZ, SIG_IGN) != SIG_ERR;
}

// From now on no file of a process can be written at this offset or behind it, as if the disk were full.
inline bool LimitFiles(pid_t process, rlim_t size) {
    rlimit limit;
    if (::prlimit(process, RLIMIT_FSIZE, nullptr, &limit) != 0) return false;
    limit.rlim_cur = size;
    return ::prlimit(process, RLIMIT_FSIZE, &limit, nullptr) == 0;
}

// In namespaces of its own the process may do more. False where the system does not let it have any.
inline bool LiveApart(int namespaces) {
    const std::string user = std::to_string(::geteuid()), group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWUSER | namespaces) != 0) return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user << " " << user << " 1";
    std::ofstream("/proc/self/gid_map") << group << " " << group << " 1";
    return true;
}

inline bool MakeReadOnly(const std::string &folder) {
    const char *path = folder.c_str();
    return ::mount(path, path, nullptr, MS_BIND, nullptr) == 0 &&
           ::mount(nullptr, path, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

// What the program says goes to a file.
inline bool SpeakTo(const std::string &path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    return file >= 0 && ::dup2(file, STDERR_FILENO) >= 0;
}

} // namespace vellum::test
