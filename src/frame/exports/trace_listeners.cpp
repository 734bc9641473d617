// SPDX-License-Identifier: MIT
#include "frame/exports/trace_listeners.hpp"

#include "frame/exports/guard.hpp"
#include "platform/fs/file.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"
#include "values/json.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace vellum {

namespace {

constexpr std::string_view kFileForm = "json:";

pthread_once_t sOnce = PTHREAD_ONCE_INIT;
int sTraceFile = -1; // open until the process ends

void OpenNamedFile() noexcept {
    const char *value = GetEnvironment("VELLUM_TRACE");
    auto state = TraceFileState::kOff;
    if (value && std::string_view(value).starts_with(kFileForm)) {
        const char *path = value + kFileForm.size();
        sTraceFile = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
        if (sTraceFile >= 0)
            state = TraceFileState::kOn;
        else
            Log(LogLevel::kWarning, "The trace can't be written to %s: %s", path, std::strerror(errno));
    }
    sTraceFileState.store(state, std::memory_order_release);
}

// One line a lookup, in one piece: the file may have several writers.
void WriteLine(const ValDictionary *lookup) {
    const std::string line = ToJson(lookup) + '\n';
    for (size_t at = 0; at < line.size();) {
        const ssize_t written = ::write(sTraceFile, line.data() + at, line.size() - at);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return; // what can't be written is lost: nobody waits for a trace
        at += static_cast<size_t>(written);
    }
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
