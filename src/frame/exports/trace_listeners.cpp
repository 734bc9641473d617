// SPDX-License-Identifier: MIT
#include "frame/exports/trace_listeners.hpp"

#include "frame/exports/guard.hpp"
#include "platform/fs/line_file.hpp"
#include "platform/log/log.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/process.hpp"
#include "values/json.hpp"

#include <pthread.h>

#include <cerrno>
#include <cstring>
#include <string_view>

namespace vellum {

namespace {

constexpr std::string_view kFileForm = "json:";

pthread_once_t sOnce = PTHREAD_ONCE_INIT;
constinit TLineFile sTraceFile;

void OpenNamedFile() noexcept {
    const char *value = GetEnvironment("VELLUM_TRACE");
    auto state = TraceFileState::kOff;
    if (value && std::string_view(value).starts_with(kFileForm)) {
        const char *path = value + kFileForm.size();
        if (sTraceFile.Open(path))
            state = TraceFileState::kOn;
        else
            Log(LogLevel::kWarning, "The trace can't be written to %s: %s", path, std::strerror(errno));
    }
    sTraceFileState.store(state, std::memory_order_release);
}

// One line a lookup.
void WriteLine(const ValDictionary *lookup) {
    if (!sTraceFile.Append(ToJson(lookup)))
        sTraceFileState.store(TraceFileState::kOff, std::memory_order_release);
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
    const OutsideLibrary calling;
    listener.callback(lookup, listener.context);
    tTraceListener.is_told = false;
}

} // namespace vellum

using namespace vellum;

void VLSetLookupTraceCallback(VLLookupTraceCallback callback, void *context) noexcept {
    tTraceListener.callback = callback;
    tTraceListener.context = context;
}
