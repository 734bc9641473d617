// SPDX-License-Identifier: MIT
// Who listens to lookups: a callback of the thread's, and the file that VELLUM_TRACE names.
#pragma once

#include <vellum/vellum.h>

#include <atomic>

namespace vellum {

// What a thread has set with VLSetLookupTraceCallback.
struct TraceListener {
    VLLookupTraceCallback callback = nullptr;
    void *context = nullptr;
    bool is_told = false; // it is being called: what it asks meanwhile, it is not told
};
inline constinit thread_local TraceListener tTraceListener;

// Whether lookups are written to a file; not known before the first of them.
enum class TraceFileState : int { kUnknown, kOff, kOn };
inline constinit std::atomic<TraceFileState> sTraceFileState{TraceFileState::kUnknown};

// Reads the environment, once in a process.
TraceFileState OpenTraceFile() noexcept;

inline bool IsLookupTraced() noexcept {
    auto state = sTraceFileState.load(std::memory_order_relaxed);
    if (state == TraceFileState::kUnknown) [[unlikely]]
        state = OpenTraceFile();
    return state == TraceFileState::kOn || (tTraceListener.callback && !tTraceListener.is_told);
}

// Tells everybody of a lookup that is over.
void TellListeners(const ValDictionary *lookup) noexcept;

} // namespace vellum
