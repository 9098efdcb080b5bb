// A log sink that keeps every record in memory, for tests and transcripts.
#pragma once

#include <mutex>
#include <vector>

#include "core/LogSink.h"

namespace orvane {

class CapturingLogSink final : public LogSink {
  public:
    void write(const LogRecord& record) override;

    // A copy of everything captured so far, in order.
    std::vector<LogRecord> records() const;
    // Hands over what was captured and forgets it.
    std::vector<LogRecord> takeRecords();
    // The messages alone, optionally of one category.
    std::vector<std::string> messages() const;
    std::vector<std::string> messages(LogCategory category) const;
    void clear();

  private:
    mutable std::mutex mutex_;
    std::vector<LogRecord> records_;
};

}  // namespace orvane
