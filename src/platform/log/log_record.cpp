// SPDX-License-Identifier: MIT
// Records as the journal and syslog read them.
#include "platform/log/log_record.hpp"

#include "platform/process/process.hpp"

#include <syslog.h>

#include <cstdint>
#include <cstdio>

namespace vellum {
namespace {

// Not strftime's: those follow the locale.
constexpr const char *kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The journal's names are of capitals, digits and "_".
constexpr char JournalCharacter(char c) noexcept {
    if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ? c : '_';
}

// Eight bytes, the lowest first.
void AppendLength(TextBuffer &out, uint64_t length) noexcept {
    for (unsigned shift = 0; shift < 64; shift += 8) out.AppendByte(static_cast<char>(length >> shift));
}

void AppendJournalField(TextBuffer &out, std::string_view key, std::string_view value) noexcept {
    if (key.empty()) return;
    for (char c : key.substr(0, kMaximumLogKey)) out.AppendByte(JournalCharacter(c));
    if (value.find('\n') == std::string_view::npos) {
        out.Append("=");
    } else {
        out.Append("\n");
        AppendLength(out, value.size());
    }
    out.Append(value);
    out.Append("\n");
}

void AppendHeader(TextBuffer &out, LogLevel level, std::time_t time) noexcept {
    std::tm local{};
    ::localtime_r(&time, &local);
    char header[96];
    std::snprintf(header, sizeof header, "<%d>%s %2d %02d:%02d:%02d ",
                  LOG_MAKEPRI(LOG_USER, static_cast<int>(level)), kMonths[local.tm_mon], local.tm_mday,
                  local.tm_hour, local.tm_min, local.tm_sec);
    out.Append(header);
}

void AppendInOneLine(TextBuffer &out, std::string_view text) noexcept {
    for (char c : text) out.AppendByte(static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c);
}

} // namespace

std::string_view CutText(std::string_view text, size_t limit) noexcept {
    if (text.size() <= limit) return text;
    while (!IsCharacterBoundary(text, limit)) --limit;
    return text.substr(0, limit);
}

void AppendJournalRecord(TextBuffer &out, const LogRecord &record) noexcept {
    const char level = static_cast<char>('0' + static_cast<int>(record.level));
    AppendJournalField(out, "MESSAGE", record.text);
    AppendJournalField(out, "PRIORITY", {&level, 1});
    AppendJournalField(out, "SYSLOG_IDENTIFIER", record.identifier);
    for (const LogField &field : record.fields) AppendJournalField(out, field.key, field.value);
}

void AppendSyslogRecord(TextBuffer &out, const LogRecord &record, std::time_t time) noexcept {
    TextBuffer body;
    body.Append(record.text);
    for (const LogField &field : record.fields) {
        body.Append(" [");
        body.Append(field.key);
        body.Append("=");
        body.Append(field.value);
        body.Append("]");
    }
    if (body.Failed()) return out.Fail();
    AppendHeader(out, record.level, time);
    char process[16];
    std::snprintf(process, sizeof process, "[%u]: ", GetProcessID());
    AppendInOneLine(out, record.identifier);
    out.Append(process);
    AppendInOneLine(out, CutText(body.View(), kMaximumLogText));
}

} // namespace vellum
