// SPDX-License-Identifier: MIT
// The records that this process logs, kept for a test to look at.
#pragma once

#include "platform/log/log.hpp"

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

struct CapturedRecord {
    LogLevel level;
    std::string text;
    std::map<std::string, std::string> fields;
};

// Takes every record from when it is made until it dies; any thread may log meanwhile, and must have
// ended before it dies. Then the sink that was there before gets them again.
class CapturedLog {
public:
    CapturedLog() : former_(SetLogSink({Take, this})) {}
    ~CapturedLog() { SetLogSink(former_); }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;

    std::vector<CapturedRecord> Records() const {
        const std::lock_guard lock(mutex_);
        return records_;
    }

    // The texts of the records, in the order in which they came.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        for (CapturedRecord &record : Records()) lines.push_back(std::move(record.text));
        return lines;
    }

private:
    static void Take(void *context, LogLevel level, std::string_view text,
                     std::span<const LogField> fields) {
        CapturedRecord record{level, std::string(text), {}};
        for (const LogField &field : fields) record.fields.emplace(field.key, field.value);
        auto *log = static_cast<CapturedLog *>(context);
        const std::lock_guard lock(log->mutex_);
        log->records_.push_back(std::move(record));
    }

    mutable std::mutex mutex_; // guards records_
    std::vector<CapturedRecord> records_;
    const LogSinkEntry former_;
};

} // namespace vellum::test
