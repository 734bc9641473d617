// SPDX-License-Identifier: MIT
// A record of the log, its limits, and how it reads on the way to the journal and to syslog.
#pragma once

#include "platform/log/log.hpp"
#include "platform/val/text_buffer.hpp"

#include <ctime>

namespace vellum {

// Together they keep a record well below what a socket takes at once by default.
inline constexpr size_t kMaximumLogText = 8192; // bytes of the text, and of one field's value
inline constexpr size_t kMaximumLogFields = 16;
inline constexpr size_t kMaximumLogKey = 64; // bytes; the journal refuses longer ones

struct LogRecord {
    std::string_view identifier; // of the program
    LogLevel level;
    std::string_view text;
    std::span<const LogField> fields;
};

// The beginning of a text, of `limit` bytes or up to three less: it ends between two characters.
std::string_view CutText(std::string_view text, size_t limit) noexcept;

// A datagram of the journal's native protocol. A value with a new line in it goes in the form that
// tells its length, so that no text can pretend to be another field.
void AppendJournalRecord(TextBuffer &out, const LogRecord &record) noexcept;

// A datagram of syslog's: one line, the fields in brackets behind the text. Control characters are
// blanks, so that no text can pretend to be another record.
void AppendSyslogRecord(TextBuffer &out, const LogRecord &record, std::time_t time) noexcept;

} // namespace vellum
