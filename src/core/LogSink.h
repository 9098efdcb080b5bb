// Where rendered log lines go: standard error, a test's capture, a journal.
#pragma once

#include "core/LogRecord.h"

namespace orvane {

class LogSink {
  public:
    virtual ~LogSink() = default;
    // Called with the sink's registry lock held, on whatever thread logged.
    virtual void write(const LogRecord& record) = 0;
};

}  // namespace orvane
