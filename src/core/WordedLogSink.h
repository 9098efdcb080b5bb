// A log sink that hands every record on in a desktop's wording, with the lines that tell of an
// absence the desktop always has lowered to debug: the log a user reads names only what their
// desktop has.
#pragma once

#include <memory>

#include "core/LogSink.h"
#include "core/Wording.h"

namespace orvane {

class WordedLogSink final : public LogSink {
  public:
    WordedLogSink(std::shared_ptr<LogSink> destination, Wording wording);
    void write(const LogRecord& record) override;

  private:
    std::shared_ptr<LogSink> destination_;
    Wording wording_;
};

}  // namespace orvane
