#include "core/CapturingLogSink.h"

#include <utility>

namespace orvane {

void CapturingLogSink::write(const LogRecord& record) {
    std::lock_guard lock(mutex_);
    records_.push_back(record);
}

std::vector<LogRecord> CapturingLogSink::records() const {
    std::lock_guard lock(mutex_);
    return records_;
}

std::vector<LogRecord> CapturingLogSink::takeRecords() {
    std::lock_guard lock(mutex_);
    return std::exchange(records_, {});
}

std::vector<std::string> CapturingLogSink::messages() const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> result;
    result.reserve(records_.size());
    for (const auto& record : records_) {
        result.push_back(record.message);
    }
    return result;
}

std::vector<std::string> CapturingLogSink::messages(LogCategory category) const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> result;
    for (const auto& record : records_) {
        if (record.category == category) {
            result.push_back(record.message);
        }
    }
    return result;
}

void CapturingLogSink::clear() {
    std::lock_guard lock(mutex_);
    records_.clear();
}

}  // namespace orvane
