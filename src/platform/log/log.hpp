// SPDX-License-Identifier: MIT
// The system log. A record goes to the journal when there is one, else to syslog; it never waits for
// either of them, and one that cannot be sent is lost. Nothing stays open between records.
#pragma once

#include <cstdarg>
#include <span>
#include <string_view>

namespace vellum {

// As syslog counts them.
enum class LogLevel : int { kError = 3, kWarning = 4, kNotice = 5, kInfo = 6, kDebug = 7 };

// One more fact about a record, beside its text.
struct LogField {
    std::string_view key;
    std::string_view value;
};

// Sends one record. Text and values are cut to 8 KiB each, between two characters; of the fields, the
// first 16 count. In the text, bytes that are no UTF-8 are replaced. errno is kept.
void SendLogRecord(LogLevel level, std::string_view text, std::span<const LogField> fields) noexcept;

// Formats as FormatString does (platform/val/format.hpp: printf, and "%@" for a value), and sends the
// text. The compiler cannot check the arguments, since it does not know "%@".
void Log(LogLevel level, const char *format, ...) noexcept;
void LogV(LogLevel level, const char *format, va_list arguments) noexcept;

// The same, with fields.
void LogV(LogLevel level, std::span<const LogField> fields, const char *format, va_list arguments) noexcept;

// Where records go while it is set, and nowhere else. It may log itself, and may be called on several
// threads at once; a call that began before the sink was changed may still be running afterwards.
using LogSink = void (*)(void *context, LogLevel level, std::string_view text,
                         std::span<const LogField> fields);

struct LogSinkEntry {
    LogSink sink = nullptr; // null: records go to the log of the system
    void *context = nullptr;
};

// Sets the sink of this process and returns the former one.
LogSinkEntry SetLogSink(LogSinkEntry entry) noexcept;

} // namespace vellum
