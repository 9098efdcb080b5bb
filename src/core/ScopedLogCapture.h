// Captures the program's log for the scope's life, in place of the sinks installed before, which
// come back at its end. For tests and the simulator's transcript.
#pragma once

#include <memory>
#include <vector>

#include "core/CapturingLogSink.h"

namespace orvane {

class ScopedLogCapture {
  public:
    ScopedLogCapture();
    ~ScopedLogCapture();
    ScopedLogCapture(const ScopedLogCapture&) = delete;
    ScopedLogCapture& operator=(const ScopedLogCapture&) = delete;

    CapturingLogSink& sink() { return *sink_; }

  private:
    std::shared_ptr<CapturingLogSink> sink_;
    std::vector<std::shared_ptr<LogSink>> previousSinks_;
};

}  // namespace orvane
