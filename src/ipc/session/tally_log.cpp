// SPDX-License-Identifier: MIT
#include "ipc/session/tally_log.hpp"

#include "platform/log/log.hpp"

#include <array>
#include <charconv>

namespace vellum {

namespace {

constexpr std::string_view kDomainKey = "com.orrery.message.domain";
constexpr std::string_view kSignatureKey = "com.orrery.message.signature";
constexpr std::string_view kValueKey = "com.orrery.message.value";
constexpr std::string_view kResultKey = "com.orrery.message.result";

constexpr size_t kMaximumFields = 4;

} // namespace

TTallyLog::TTallyLog(const char *domain, const char *signature) noexcept {
    if (!domain || !signature) return;
    try {
        record_ = std::make_unique<Record>(Record{domain, signature, {}, {}});
    } catch (...) { // memory is exhausted: there is no record
    }
}

void TTallyLog::SetValue(int value) noexcept {
    if (record_) record_->value = value;
}

void TTallyLog::SetResult(Result result) noexcept {
    if (record_) record_->result = result;
}

void TTallyLog::Log(const char *format, ...) const noexcept {
    va_list arguments;
    va_start(arguments, format);
    Logv(format, arguments);
    va_end(arguments);
}

void TTallyLog::Logv(const char *format, va_list arguments) const noexcept {
    if (!record_) return;
    std::array<LogField, kMaximumFields> fields{LogField{kDomainKey, record_->domain},
                                                LogField{kSignatureKey, record_->signature}};
    size_t count = 2;
    char value[16];
    if (record_->value) {
        const char *end = std::to_chars(value, value + sizeof value, *record_->value).ptr;
        fields[count++] = {kValueKey, {value, static_cast<size_t>(end - value)}};
    }
    if (record_->result)
        fields[count++] = {kResultKey, *record_->result == Result::kSuccess ? "success" : "failure"};
    LogV(LogLevel::kError, std::span(fields).first(count), format, arguments);
}

} // namespace vellum
