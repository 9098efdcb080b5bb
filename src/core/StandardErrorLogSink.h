// The default log sink: one line per record on standard error, from a minimum level up.
#pragma once

#include "core/LogSink.h"

namespace orvane {

class StandardErrorLogSink final : public LogSink {
  public:
    explicit StandardErrorLogSink(LogLevel minimumLevel = LogLevel::info);
    void write(const LogRecord& record) override;

  private:
    LogLevel minimumLevel_;
};

}  // namespace orvane
