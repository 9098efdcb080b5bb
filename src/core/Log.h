// The program's one log: routes every rendered record to the installed sinks. Standard error is
// the sink until someone installs others. The only global of the program.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "core/LogRecord.h"
#include "core/LogSink.h"

namespace orvane {

class Log {
  public:
    static Log& shared();

    // Safe from any thread; sinks are called in installation order.
    void write(const LogRecord& record);

    // Installs these sinks instead of the current ones and returns the ones replaced.
    std::vector<std::shared_ptr<LogSink>> replaceSinks(std::vector<std::shared_ptr<LogSink>> sinks);

  private:
    Log();

    std::mutex mutex_;
    std::vector<std::shared_ptr<LogSink>> sinks_;
};

}  // namespace orvane
