// SPDX-License-Identifier: MIT
#include "frame/exports/trace_listeners.hpp"

#include "frame/exports/guard.hpp"
#include "platform/fs/file.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "values/json.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace vellum {

namespace {

constexpr std::string_view kFileForm = "json:";

pthread_once_t sOnce = PTHREAD_ONCE_INIT;

// Open until the process ends, unless the program closes it; then it may be another file's.
int sTraceFile = -1;
TFileIdentity sTraceIdentity;
std::atomic<bool> sLastLineWasCut{false};

// Whether the descriptor is still the trace's. Regular files alone: nobody can keep a writer waiting, or
// end it, by not reading.
bool IsTraceFile(int file, const TFileIdentity *expected, TFileIdentity *found) noexcept {
    struct stat status;
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    const auto identity = TFileIdentity::Of(status);
    if (found) *found = identity;
    return !expected || (identity.device == expected->device && identity.inode == expected->inode);
}

// Keeps SIGXFSZ, which a file at its limit raises, from ending the process.
class FileLimitGuard {
public:
    FileLimitGuard() noexcept {
        ::sigemptyset(&signals_);
        ::sigaddset(&signals_, SIGXFSZ);
        ::pthread_sigmask(SIG_BLOCK, &signals_, &former_);
    }
    ~FileLimitGuard() {
        const timespec now{};
        while (!::sigismember(&former_, SIGXFSZ) && ::sigtimedwait(&signals_, nullptr, &now) == SIGXFSZ) {
        }
        ::pthread_sigmask(SIG_SETMASK, &former_, nullptr);
    }

private:
    sigset_t signals_{};
    sigset_t former_{};
};

void OpenNamedFile() noexcept {
    const char *value = GetEnvironment("VELLUM_TRACE");
    auto state = TraceFileState::kOff;
    if (value && std::string_view(value).starts_with(kFileForm)) {
        const char *path = value + kFileForm.size();
        sTraceFile = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
        if (sTraceFile < 0)
            Log(LogLevel::kWarning, "The trace can't be written to %s: %s", path, std::strerror(errno));
        else if (IsTraceFile(sTraceFile, nullptr, &sTraceIdentity))
            state = TraceFileState::kOn;
        else
            Log(LogLevel::kWarning, "The trace can't be written to %s: it is no regular file", path);
    }
    sTraceFileState.store(state, std::memory_order_release);
}

// One line a lookup, in one piece: the file may have several writers. What can't be written is lost, for
// nobody waits for a trace; the line after one that was cut begins anew.
void WriteLine(const ValDictionary *lookup) {
    if (!IsTraceFile(sTraceFile, &sTraceIdentity, nullptr))
        return sTraceFileState.store(TraceFileState::kOff, std::memory_order_release);
    const std::string line = (sLastLineWasCut ? "\n" : "") + ToJson(lookup) + '\n';
    const FileLimitGuard guard;
    ssize_t written = 0;
    do {
        written = ::write(sTraceFile, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    if (written != 0) sLastLineWasCut = written > 0 && static_cast<size_t>(written) < line.size();
}

} // namespace

TraceFileState OpenTraceFile() noexcept {
    ::pthread_once(&sOnce, OpenNamedFile);
    return sTraceFileState.load(std::memory_order_acquire);
}

void TellListeners(const ValDictionary *lookup) noexcept {
    if (sTraceFileState.load(std::memory_order_acquire) == TraceFileState::kOn) {
        Guard([&] {
            WriteLine(lookup);
            return true;
        });
    }
    const TraceListener listener = tTraceListener;
    if (!listener.callback || listener.is_told) return;
    tTraceListener.is_told = true;
    listener.callback(lookup, listener.context);
    tTraceListener.is_told = false;
}

} // namespace vellum

using namespace vellum;

void VLSetLookupTraceCallback(VLLookupTraceCallback callback, void *context) noexcept {
    tTraceListener.callback = callback;
    tTraceListener.context = context;
}
