// SPDX-License-Identifier: MIT
// Records of the log that count something: what happened, how it went and how often, in fields that a
// program can read.
#pragma once

#include <cstdarg>
#include <memory>
#include <optional>
#include <string>

namespace vellum {

// A record under construction. When it could not be made, for want of memory or of a name, there is
// none, and nothing is set or logged; the same holds of a log that was moved away.
class TTallyLog {
public:
    enum class Result { kSuccess, kFailure };

    // Which family of events it belongs to, and which event it is.
    TTallyLog(const char *domain, const char *signature) noexcept;

    void SetValue(int value) noexcept;
    void SetResult(Result result) noexcept;

    // Sends the record at error level with a text, made as FormatString makes it (platform/val/format.hpp).
    // It may be set and sent again.
    void Log(const char *format, ...) const noexcept;
    void Logv(const char *format, va_list arguments) const noexcept;

private:
    struct Record {
        std::string domain;
        std::string signature;
        std::optional<int> value;
        std::optional<Result> result;
    };

    std::unique_ptr<Record> record_;
};

} // namespace vellum
