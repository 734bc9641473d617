// SPDX-License-Identifier: MIT
// From a format to a record, and from a record to the sink or to the log of the system.
#include "platform/log/log.hpp"

#include "platform/log/system_log.hpp"
#include "platform/val/format.hpp"

#include <errno.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

namespace vellum {
namespace {

constinit std::mutex sMutex;
constinit LogSinkEntry sEntry; // guarded by sMutex, which is never held while the sink runs
// Whether there is a sink: without one nobody takes the mutex, not even in a process that was forked
// while it was held.
constinit std::atomic<bool> sHasSink{false};

// Logging is no part of what the caller is about.
class KeptErrno {
public:
    KeptErrno() noexcept : errno_(errno) {}
    ~KeptErrno() { errno = errno_; }
    KeptErrno(const KeptErrno &) = delete;
    KeptErrno &operator=(const KeptErrno &) = delete;

private:
    const int errno_;
};

LogSinkEntry CurrentSink() noexcept {
    if (!sHasSink.load(std::memory_order_acquire)) return {};
    const std::lock_guard lock(sMutex);
    return sEntry;
}

// The text as UTF-8: bytes that are no characters become U+FFFD.
void AppendAsUTF8(TextBuffer &out, std::string_view text) noexcept {
    while (!text.empty()) {
        const Character c = DecodeCharacter(text);
        out.AppendCharacter(IsScalar(c.value) ? c.value : U'\uFFFD');
        text.remove_prefix(c.length);
    }
}

void Deliver(LogLevel level, std::string_view text, std::span<const LogField> fields) noexcept {
    if (const LogSinkEntry entry = CurrentSink(); entry.sink)
        return entry.sink(entry.context, level, text, fields);
    const std::string_view program = CutText(::program_invocation_short_name, kMaximumLogText);
    SendToSystemLog({}, {program, level, text, fields});
}

} // namespace

LogSinkEntry SetLogSink(LogSinkEntry entry) noexcept {
    const std::lock_guard lock(sMutex);
    const LogSinkEntry former = sEntry;
    sEntry = entry;
    sHasSink.store(entry.sink != nullptr, std::memory_order_release);
    return former;
}

void SendLogRecord(LogLevel level, std::string_view text, std::span<const LogField> fields) noexcept {
    const KeptErrno kept;
    std::array<LogField, kMaximumLogFields> cut_fields;
    const size_t count = std::min(fields.size(), cut_fields.size());
    for (size_t i = 0; i < count; ++i)
        cut_fields[i] = {fields[i].key, CutText(fields[i].value, kMaximumLogText)};
    text = CutText(text, kMaximumLogText);
    TextBuffer readable;
    if (!ScanText(text).is_unicode) {
        AppendAsUTF8(readable, text);
        if (!readable.Failed()) text = CutText(readable.View(), kMaximumLogText);
    }
    Deliver(level, text, std::span(cut_fields).first(count));
}

void LogV(LogLevel level, std::span<const LogField> fields, const char *format,
          va_list arguments) noexcept {
    const KeptErrno kept;
    TextBuffer text;
    // A character more than is sent, so that the cut sees where the last one ends.
    AppendFormatV(text, kMaximumLogText + 4, format, arguments);
    SendLogRecord(level, text.View(), fields);
}

void LogV(LogLevel level, const char *format, va_list arguments) noexcept {
    LogV(level, {}, format, arguments);
}

void Log(LogLevel level, const char *format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    LogV(level, format, arguments);
    va_end(arguments);
}

} // namespace vellum
